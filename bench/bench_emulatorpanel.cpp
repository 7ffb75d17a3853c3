// Live pictures from an emulated camera to the sample plugin's panel: the default world's
// Jasper640 (640 x 512, 14 bits, 60 images a second), connected as a host connects it and shown
// in the panel in a window, for ten seconds (or the number of seconds given). It reports
//  - the images the camera took, the ones the panel showed, and those it missed;
//  - the GUI thread's time per picture: handing the finished picture to the model and
//    everything that runs on it (the properties, the bindings, the picture item);
//  - the GUI thread's time per drawn window, where the scene graph renders on it (software);
//  - on the stream's side, how late each image reaches a listener after it was due (the time
//    to render the scene), and the time one reduction of such an image takes.
// Not a test: run it by hand, e.g.
//   QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software build/bin/bench_emulatorpanel

#include <kiv/CImage.h>
#include <kiv/PixelType.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/IFrameListener.h>
#include <kivcam/IFrameSource.h>
#include <kivcamui/plugin/IControllerModelFactory.h>
#include <kivcamui/plugin/InitPlugin.h>
#include <kivreduce/CFilterFactory.h>

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>
#include <QtConcurrent>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <vector>

using namespace kiv;
using namespace kiv::cam;

namespace {

struct SStatistics {
    std::vector<double> values; // milliseconds

    void print(const char* what) const
    {
        if (values.empty()) {
            std::printf("%-44s no samples\n", what);
            return;
        }
        std::vector<double> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        double sum = 0;
        for (const double value : sorted)
            sum += value;
        std::printf("%-44s mean %.3f  median %.3f  p99 %.3f  max %.3f ms  (%zu)\n", what,
            sum / static_cast<double>(sorted.size()), sorted[sorted.size() / 2],
            sorted[sorted.size() * 99 / 100], sorted.back(), sorted.size());
    }
};

// Times every queued call that the panel's model and its children (its live picture) receive:
// the announcements of finished pictures.
class CTimedApplication : public QGuiApplication {
public:
    using QGuiApplication::QGuiApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (event->type() != QEvent::MetaCall || (receiver != model && receiver->parent() != model))
            return QGuiApplication::notify(receiver, event);
        QElapsedTimer timer;
        timer.start();
        const bool handled = QGuiApplication::notify(receiver, event);
        handover.values.push_back(timer.nsecsElapsed() / 1e6);
        return handled;
    }

    QObject* model = nullptr;
    SStatistics handover;
};

// How late images reach a listener after they were due.
class CLatency : public IFrameListener {
public:
    void streamStarted(const SCameraInfo&) override { }
    void frameArrived(const TSharedPtr<const CImage>& frame) override
    {
        const auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(
            std::chrono::steady_clock::now().time_since_epoch())
                             .count();
        const std::lock_guard lock(mutex);
        late.values.push_back((now - frame->timestamp) / 1e6);
        lastNumber = frame->frameNumber;
    }
    void streamStopped() override { }

    std::mutex mutex;
    SStatistics late;
    std::uint64_t lastNumber = 0;
};

// One reduction of a 640 x 512 14-bit image with the camera's filter, many times.
SStatistics reduction()
{
    const TSharedPtr<CImage> image = CImage::Create(640, 512, ParsePixelType(CString("Mono14")));
    image->adBits = 14;
    for (int y = 0; y < 512; ++y) {
        for (int x = 0; x < 640; ++x)
            image->row<std::uint16_t>(y)[x] = static_cast<std::uint16_t>((x * 25 + y * 7) & 0x3FFF);
    }
    const TSharedPtr<const CImage> frame = image;
    const reduce::FilterFunction filter = reduce::filterFactory()->filterByName("Linear16");
    SStatistics times;
    for (int i = 0; i < 200; ++i) {
        QElapsedTimer timer;
        timer.start();
        const TSharedPtr<const CImage> display = filter(frame);
        times.values.push_back(timer.nsecsElapsed() / 1e6);
    }
    return times;
}

} // namespace

int main(int argc, char** argv)
{
    qunsetenv("KIVCAM_EMULATOR_WORLD");
    qputenv("KIVCAMUI_WHITELIST", "libkivcamuiEmulator.so");
    CTimedApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(1, atoi(argv[1])) : 10;
    kivcamuiInitPlugin();

    // The camera, found as the finder finds it, and its panel, asked of the factory.
    interfaces()->setEnableEmulators(true);
    const TSharedPtr<IInterface> transport = interfaces()->interfaceByName("EmuCameraLink");
    TArray<SCameraInfo> cameras;
    transport->findCameras(cameras, {});
    SCameraInfo camera;
    for (const SCameraInfo& found : cameras) {
        if (found.name == CString("Jasper640"))
            camera = found;
    }
    const TSharedPtr<IDevice> device = transport->createDevice();
    if (camera.name.empty() || !device->open(camera.comm, true)) {
        std::fprintf(stderr, "bench: the default world's Jasper640 cannot be opened\n");
        return 1;
    }
    const TSharedPtr<IController> controller
        = controllerFactory()->createController(camera.controller);
    QObject* model = nullptr;
    QString qml;
    if (!controller
        || !kiv::cam::ui::controllerModelFactory()->CreateModel(controller, &app, &model, &qml)) {
        std::fprintf(stderr, "bench: the emulator plugin gave no panel\n");
        return 1;
    }
    app.model = model;

    QQmlEngine engine;
    QQmlComponent component(&engine, QUrl(qml));
    auto* panel = qobject_cast<QQuickItem*>(
        component.createWithInitialProperties({{"cameraModel", QVariant::fromValue(model)}}));
    if (!panel) {
        std::fprintf(stderr, "bench: %s\n", qPrintable(component.errorString()));
        return 1;
    }
    QQuickWindow window;
    window.resize(1000, 600);
    panel->setParentItem(window.contentItem());
    panel->setSize(QSizeF(1000, 600));
    QElapsedTimer renderTimer;
    SStatistics rendering;
    QObject::connect(
        &window, &QQuickWindow::beforeSynchronizing, &window, [&] { renderTimer.start(); },
        Qt::DirectConnection);
    QObject::connect(
        &window, &QQuickWindow::frameSwapped, &window,
        [&] {
            if (renderTimer.isValid())
                rendering.values.push_back(renderTimer.nsecsElapsed() / 1e6);
        },
        Qt::DirectConnection);
    window.show();

    CLatency latency;
    controller->frameSource()->subscribe(&latency);
    QFuture<bool> connected
        = QtConcurrent::run([&] { return controller->connect(device, camera); });
    connected.waitForFinished();
    if (!connected.result()) {
        std::fprintf(stderr, "bench: the camera did not connect\n");
        return 1;
    }
    std::printf("bench_emulatorpanel: %s, %d x %d, %d bits, %.0f images a second, for %d s (%s)\n",
        camera.name.data(), camera.width, camera.height, camera.adBits,
        controller->frameSource()->frameRate(), seconds,
        qPrintable(window.rendererInterface()->graphicsApi() == QSGRendererInterface::Software
                ? QString("software rendering")
                : QString("hardware rendering")));

    QTimer::singleShot(seconds * 1000, &app, &QCoreApplication::quit);
    app.exec();
    const double measuredRate = model->property("measuredFrameRate").toDouble();
    controller->disconnect();
    controller->frameSource()->unsubscribe(&latency);
    QCoreApplication::processEvents();

    const std::uint64_t taken = latency.lastNumber + 1;
    const qint64 shown = model->property("frameCount").toLongLong();
    const qint64 missed = model->property("droppedFrames").toLongLong();
    std::printf("images taken by the camera                   %llu\n",
        static_cast<unsigned long long>(taken));
    std::printf(
        "pictures shown by the panel                  %lld\n", static_cast<long long>(shown));
    std::printf(
        "images missed by the panel                   %lld\n", static_cast<long long>(missed));
    std::printf("panel's measured frame rate at the end       %.1f\n", measuredRate);
    app.handover.print("GUI thread per picture (model and bindings)");
    rendering.print("GUI thread per drawn window (scene graph)");
    latency.late.print("image due to listener (scene rendering)");
    reduction().print("one reduction, 640 x 512 Mono14 (Linear16)");
    delete panel;
    return 0;
}
