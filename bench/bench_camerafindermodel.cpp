// What the camera finder model costs the GUI thread over a whole cycle (a search started with
// results on screen, its results in a visible ListView, a second search, its results), on
// emulated worlds written for the purpose: a bare one, whose cameras have a control device
// without parameters, and a rich one, whose cameras have a control and a video device of two
// parameters each, one of them an enumeration; 1,000 and 10,000 cameras of each. It prints the
// longest event of the GUI thread and the GUI thread's own CPU time per camera, the best of three
// runs.
// Not a test: run it by hand, e.g.  build-release/bin/bench_camerafindermodel

#include "GuiThreadMeter.h"

#include <kivcamui/camera/CameraFinderModel.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <cstring>

namespace {

constexpr int camerasPerDevice = 100;

void writeParameters(QTextStream& out, int device)
{
    out << "<parameters><parameter name=\"Control\" type=\"string\" value=\"P" << device << "\"/>"
        << "<parameter name=\"BaudRate\" type=\"enum\" value=\"9600\">"
           "<item name=\"9600\" value=\"9600\"/><item name=\"19200\" value=\"19200\"/>"
           "<item name=\"115200\" value=\"115200\"/></parameter></parameters>";
}

QString writeWorld(const QTemporaryDir& dir, bool rich, int cameras)
{
    const QString path = dir.filePath("bench-world.xml");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    QTextStream out(&file);
    const int devices = cameras / camerasPerDevice;
    out << "<world><controller name=\"Generic\"/>\n"
           "<cameraType name=\"Many\" iconName=\"Nova\" controller=\"Generic\"/>\n";
    if (rich) {
        out << "<interface name=\"Grabbers\" icon=\"Emulator\" baseType=\"GrabEmu\" "
               "video=\"true\">\n";
        for (int device = 0; device < devices; ++device) {
            out << "<device><deviceName>Grabber " << device << "</deviceName>";
            writeParameters(out, device);
            out << "</device>\n";
        }
        out << "</interface>\n";
    }
    out << "<interface name=\"Fast\" icon=\"Emulator\" baseType=\"CamEmu\" comm=\"true\">\n";
    for (int device = 0; device < devices; ++device) {
        out << "<device><deviceName>Device " << device << "</deviceName>\n";
        if (rich)
            writeParameters(out, device);
        for (int camera = 0; camera < camerasPerDevice; ++camera) {
            out << "<camera type=\"Many\"";
            if (rich)
                out << " video=\"Grabbers/Grabber " << device << "\"";
            out << "><serial>" << device * camerasPerDevice + camera << "</serial></camera>\n";
        }
        out << "</device>\n";
    }
    out << "</interface></world>\n";
    return path;
}

int child(int argc, char** argv)
{
    const bool rich = std::strcmp(argv[2], "rich") == 0;
    const int count = std::atoi(argv[3]);
    QTemporaryDir dir;
    qputenv("KIVCAM_EMULATOR_WORLD", writeWorld(dir, rich, count).toUtf8());
    bench::MeteredApplication app(argc, argv);

    kiv::cam::ui::CameraFinderModel model;
    model.setEnableEmulators(true);
    QQmlApplicationEngine engine;
    if (!bench::showList(engine, &model, "cameras",
            "item.identity + ' ' + item.serial + ' ' + item.userFriendlyInterfaceName + ' ' "
            "+ item.comm.deviceName + ' ' + item.comm.parameters.size + ' ' + item.canConnect"))
        return 1;
    const bench::SFigures figures = bench::cycle(app, model);
    if (model.cameras()->size() != count)
        return 1;
    bench::report("CameraFinderModel", argv[2], count, figures);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 4 && std::strcmp(argv[1], "child") == 0)
        return child(argc, argv);
    QCoreApplication app(argc, argv);
    return bench::runChildren(QCoreApplication::applicationFilePath(), "camera");
}
