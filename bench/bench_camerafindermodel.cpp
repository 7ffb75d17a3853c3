// Two figures of the camera finder model, on an emulated world written for the purpose:
//  (a) the time the GUI thread spends turning found cameras into CameraInfo objects in
//      `cameras`, per camera, for 10,000 cameras;
//  (b) the longest stall of the GUI event loop during a search whose emulated transport takes
//      two seconds to answer, measured with a 1 ms timer.
// Not a test: run it by hand, e.g.  QT_QPA_PLATFORM=offscreen build/bin/bench_camerafindermodel

#include <kivcamui/camera/CameraFinderModel.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int manyCameras = 10000;

// A fast transport with 10,000 cameras of type "Many", and a slow one with one camera of type
// "Slow".
QString writeWorld(const QTemporaryDir& dir)
{
    const QString path = dir.filePath("bench-world.xml");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    QTextStream out(&file);
    out << "<world><controller name=\"Generic\"/>\n"
           "<cameraType name=\"Many\" iconName=\"Nova\" controller=\"Generic\"/>\n"
           "<cameraType name=\"Slow\" iconName=\"Kelvin\" controller=\"Generic\"/>\n"
           "<interface name=\"Fast\" icon=\"Emulator\" baseType=\"CamEmu\" comm=\"true\">\n";
    for (int device = 0; device < manyCameras / 100; ++device) {
        out << "<device><deviceName>Device " << device << "</deviceName>\n";
        for (int camera = 0; camera < 100; ++camera)
            out << "<camera type=\"Many\"><serial>" << device * 100 + camera
                << "</serial></camera>\n";
        out << "</device>\n";
    }
    out << "</interface>\n"
           "<interface name=\"Slow\" icon=\"Emulator\" baseType=\"CamEmu\" comm=\"true\" "
           "scanDelay=\"2000\"><device><deviceName>Slow 0</deviceName>"
           "<camera type=\"Slow\"><serial>S</serial></camera></device></interface></world>\n";
    return path;
}

void waitForEnd(kiv::cam::ui::CameraFinderModel& model)
{
    while (model.scanning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

} // namespace

int main(int argc, char** argv)
{
    QTemporaryDir dir;
    qputenv("KIVCAM_EMULATOR_WORLD", writeWorld(dir).toUtf8());
    QCoreApplication app(argc, argv);

    kiv::cam::ui::CameraFinderModel model;
    model.setEnableEmulators(true);

    // (b): the longest gap between ticks of a 1 ms timer while a slow search runs.
    model.setSupportedCameras({"Slow"});
    QTimer ticker;
    ticker.setInterval(1);
    QElapsedTimer sinceTick;
    qint64 longest = 0;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        longest = std::max(longest, sinceTick.nsecsElapsed());
        sinceTick.restart();
    });
    QElapsedTimer search;
    search.start();
    sinceTick.start();
    ticker.start();
    model.scan();
    waitForEnd(model);
    ticker.stop();
    std::printf("(b) search of %.1f s: longest event-loop stall %.2f ms\n",
        double(search.nsecsElapsed()) / 1e9, double(longest) / 1e6);

    // (a): from the first camera in the list to the end of the search.
    model.setSupportedCameras({"Many"});
    QElapsedTimer conversion;
    const auto firstCamera = QObject::connect(model.cameras(), &ObjectListModel::sizeChanged, [&] {
        if (model.cameras()->size() == 1)
            conversion.start();
    });
    qint64 converted = 0;
    const auto end
        = QObject::connect(&model, &kiv::cam::ui::CameraFinderModel::scanningChanged, [&] {
              if (!model.scanning())
                  converted = conversion.nsecsElapsed();
          });
    model.scan();
    waitForEnd(model);
    QObject::disconnect(firstCamera);
    QObject::disconnect(end);
    std::printf("(a) %d cameras into CameraInfo objects: %.1f us per camera on the GUI thread\n",
        model.cameras()->size(), double(converted) / 1000.0 / manyCameras);

    return 0;
}
