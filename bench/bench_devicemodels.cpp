// What the two device discovery models cost the GUI thread, on an emulated world written for the
// purpose: a transport that carries control and video with 10,000 devices of two parameters
// each, and one that carries control only with as many.
//  (a) taking a search's result: the device objects made, sorted and listed, per device;
//  (b) starting the next search: the lists emptied and the old objects deleted, per device.
// Not a test: run it by hand, e.g.  QT_QPA_PLATFORM=offscreen build/bin/bench_devicemodels

#include <kivcamui/custom/CustomCameraSelectorModel.h>
#include <kivcamui/device/DeviceFinderModel.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThreadPool>

#include <cstdio>

namespace {

constexpr int devicesPerTransport = 10000;

void writeTransport(QTextStream& out, const char* name, const char* channels)
{
    out << "<interface name=\"" << name << "\" icon=\"Serial\" baseType=\"Serial\" " << channels
        << " emulator=\"false\"><defaultDevice><parameters>"
           "<parameter name=\"Control\" type=\"string\" value=\"COM1\"/></parameters>"
           "</defaultDevice>\n";
    // Written in falling order, so that the sort has work to do.
    for (int device = devicesPerTransport; device > 0; --device) {
        out << "<device><deviceName>Port " << device << "</deviceName><parameters>"
            << "<parameter name=\"Control\" type=\"string\" value=\"P" << device << "\"/>"
            << "<parameter name=\"BaudRate\" type=\"enum\" value=\"9600\">"
               "<item name=\"9600\" value=\"9600\"/><item name=\"19200\" value=\"19200\"/>"
               "</parameter></parameters></device>\n";
    }
    out << "</interface>\n";
}

QString writeWorld(const QTemporaryDir& dir)
{
    const QString path = dir.filePath("bench-world.xml");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    QTextStream out(&file);
    out << "<world>\n";
    writeTransport(out, "Both", "comm=\"true\" video=\"true\"");
    writeTransport(out, "Control", "comm=\"true\"");
    out << "</world>\n";
    return path;
}

// The GUI thread's share of one search: the search itself ends first, then its result is taken.
template <typename Model> void measure(const char* name, Model& model)
{
    model.scan();
    QThreadPool::globalInstance()->waitForDone();
    QElapsedTimer taking;
    taking.start();
    while (model.scanning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const qint64 taken = taking.nsecsElapsed();

    QElapsedTimer clearing;
    clearing.start();
    model.scan();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const qint64 cleared = clearing.nsecsElapsed();
    QThreadPool::globalInstance()->waitForDone();
    while (model.scanning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);

    const double devices = 2.0 * devicesPerTransport;
    std::printf("%s: (a) %.1f ms, %.2f us per device; (b) %.1f ms, %.2f us per device\n", name,
        double(taken) / 1e6, double(taken) / 1e3 / devices, double(cleared) / 1e6,
        double(cleared) / 1e3 / devices);
}

} // namespace

int main(int argc, char** argv)
{
    QTemporaryDir dir;
    qputenv("KIVCAM_EMULATOR_WORLD", writeWorld(dir).toUtf8());
    QCoreApplication app(argc, argv);

    DeviceFinderModel finder;
    finder.setSupportedDevices({"Both", "Control"});
    finder.setDefaultControl("COM7");
    finder.setDefaultBaudRate(19200);
    measure("DeviceFinderModel", finder);

    kiv::cam::ui::CustomCameraSelectorModel selector;
    measure("CustomCameraSelectorModel", selector);
    return 0;
}
