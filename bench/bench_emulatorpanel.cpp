// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// Live pictures from an emulated camera to its controller panel: the default world's Jasper640
// (640 x 512, 14 bits, 60 images a second) in the sample plugin's panel, or, with "genicam", the
// emulated GenICam camera GC-0001 (512 x 512 Mono8, set to 120 images a second, twice what a
// screen shows) in the GenICam panel; connected as a host connects it and shown in the panel in a
// window, for ten seconds (or the number of seconds given). It reports
//  - the images the camera took, the ones the panel showed, and those it missed;
//  - the GUI thread's time per picture shown: handing the finished picture to the model and
//    everything that runs on it (the properties, the bindings, the picture item), and the calls
//    and timers of pictures that waited for the screen's next refresh;
//  - the GUI thread's time per drawn window, where the scene graph renders on it (software);
//  - on the stream's side, how late each image reaches a listener after it was due (the time
//    to render the scene), and the time one reduction of such an image takes.
// Not a test: run it by hand, e.g.
//   QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software build/bin/bench_emulatorpanel 10 genicam

#include <kiv/CImage.h>
#include <kiv/PixelType.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/IFrameListener.h>
#include <kivcam/IFrameSource.h>
#include <kivcam/IGenICamController.h>
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
#include <future>
#include <mutex>
#include <optional>
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

// Times every queued call and timer that the panel's model and the objects under it (its live
// picture) receive: the announcements of finished pictures, and the pictures that waited for the
// screen's next refresh.
class CTimedApplication : public QGuiApplication {
public:
    using QGuiApplication::QGuiApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if ((event->type() != QEvent::MetaCall && event->type() != QEvent::Timer)
            || !underModel(receiver))
            return QGuiApplication::notify(receiver, event);
        QElapsedTimer timer;
        timer.start();
        const bool handled = QGuiApplication::notify(receiver, event);
        handover.values.push_back(timer.nsecsElapsed() / 1e6);
        return handled;
    }

    QObject* model = nullptr;
    SStatistics handover;

private:
    bool underModel(const QObject* object) const
    {
        for (; object; object = object->parent()) {
            if (object == model)
                return true;
        }
        return false;
    }
};

// How late images reach a listener after they were due, where their timestamps are the
// emulator's (steady clock) rather than a camera's own, and the images the camera took.
class CLatency : public IFrameListener {
public:
    void streamStarted(const SCameraInfo&) override { }
    void frameArrived(const TSharedPtr<const CImage>& frame) override
    {
        const auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(
            std::chrono::steady_clock::now().time_since_epoch())
                             .count();
        const std::lock_guard lock(mutex);
        if (steadyTimestamps)
            late.values.push_back((now - frame->timestamp) / 1e6);
        if (!firstNumber)
            firstNumber = frame->frameNumber;
        lastNumber = frame->frameNumber;
    }
    void streamStopped() override { }

    bool steadyTimestamps = true;
    std::mutex mutex;
    SStatistics late;
    std::optional<std::uint64_t> firstNumber;
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
    CTimedApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(1, atoi(argv[1])) : 10;
    const bool genicam = argc > 2 && QByteArray(argv[2]) == "genicam";
    kivcamuiInitPlugin();

    // The camera, found as the finder finds it, and its panel, asked of the factory.
    interfaces()->setEnableEmulators(true);
    const TSharedPtr<IInterface> transport
        = interfaces()->interfaceByName(genicam ? "GenICamEmulator" : "EmuCameraLink");
    const CString wanted(genicam ? "GC-0001" : "Jasper640");
    TArray<SCameraInfo> cameras;
    transport->findCameras(cameras, {});
    SCameraInfo camera;
    for (const SCameraInfo& found : cameras) {
        if ((genicam ? found.serial : found.name) == wanted)
            camera = found;
    }
    const TSharedPtr<IDevice> device = transport->createDevice();
    if (camera.name.empty() || !device->open(camera.comm, true)) {
        std::fprintf(stderr, "bench: the default world's %s cannot be opened\n", wanted.data());
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
    latency.steadyTimestamps = !genicam;
    controller->frameSource()->subscribe(&latency);
    QFuture<bool> connected
        = QtConcurrent::run([&] { return controller->connect(device, camera); });
    connected.waitForFinished();
    if (!connected.result()) {
        std::fprintf(stderr, "bench: the camera did not connect\n");
        return 1;
    }
    // The panel's pictures: the model's own, or its live picture's.
    QObject* live = model->property("live").value<QObject*>();
    if (!live)
        live = model;
    if (genicam) {
        QFuture<bool> faster = QtConcurrent::run([&] {
            std::promise<bool> written;
            dynamic_cast<IGenICamController*>(controller.get())
                ->setFeature("AcquisitionFrameRate", "120",
                    [&](const SGenICamResult& result) { written.set_value(result.ok); });
            return written.get_future().get();
        });
        faster.waitForFinished();
        if (!faster.result()) {
            std::fprintf(stderr, "bench: the camera refused 120 images a second\n");
            return 1;
        }
    }
    std::printf("bench_emulatorpanel: %s, %d x %d, %d bits, %.0f images a second, for %d s (%s)\n",
        camera.name.data(), camera.width, camera.height, camera.adBits,
        controller->frameSource()->frameRate(), seconds,
        qPrintable(window.rendererInterface()->graphicsApi() == QSGRendererInterface::Software
                ? QString("software rendering")
                : QString("hardware rendering")));

    QTimer::singleShot(seconds * 1000, &app, &QCoreApplication::quit);
    app.exec();
    const double measuredRate = live->property("measuredFrameRate").toDouble();
    controller->disconnect();
    controller->frameSource()->unsubscribe(&latency);
    QCoreApplication::processEvents();

    const std::uint64_t taken
        = latency.firstNumber ? latency.lastNumber - *latency.firstNumber + 1 : 0;
    const qint64 shown = live->property("frameCount").toLongLong();
    const qint64 missed = live->property("droppedFrames").toLongLong();
    std::printf("images taken by the camera                   %llu\n",
        static_cast<unsigned long long>(taken));
    std::printf(
        "pictures shown by the panel                  %lld\n", static_cast<long long>(shown));
    std::printf(
        "images missed by the panel                   %lld\n", static_cast<long long>(missed));
    std::printf("panel's measured frame rate at the end       %.1f\n", measuredRate);
    app.handover.print("GUI thread per call or timer of the model");
    double handoverTotal = 0;
    for (const double value : app.handover.values)
        handoverTotal += value;
    std::printf("%-44s %.3f ms\n", "GUI thread per picture shown (all of them)",
        shown > 0 ? handoverTotal / static_cast<double>(shown) : 0.0);
    rendering.print("GUI thread per drawn window (scene graph)");
    if (latency.steadyTimestamps)
        latency.late.print("image due to listener (scene rendering)");
    reduction().print("one reduction, 640 x 512 Mono14 (Linear16)");
    delete panel;
    return 0;
}
