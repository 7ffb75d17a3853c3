// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// What the two device discovery models cost the GUI thread over a whole cycle (a search
// started with results on screen, its results in a visible ListView, a second search, its
// results), on emulated worlds written for the purpose: a transport that carries control and
// video and one that carries control only, with half of the devices each; bare devices without
// parameters, or rich ones with two parameters, one of them an enumeration; 1,000 and 10,000
// devices of each. It prints the longest event of the GUI thread and the GUI thread's own CPU
// time per device.
// Not a test: run it by hand, e.g.  build-release/bin/bench_devicemodels

#include "GuiThreadMeter.h"

#include <kivcamui/custom/CustomCameraSelectorModel.h>
#include <kivcamui/device/DeviceFinderModel.h>

#include <QFile>
#include <QTextStream>

namespace {

void writeTransport(QTextStream& out, const char* name, const char* channels, bool rich, int count)
{
    out << "<interface name=\"" << name << "\" icon=\"Serial\" baseType=\"Serial\" " << channels
        << " emulator=\"false\"><defaultDevice><parameters>"
           "<parameter name=\"Control\" type=\"string\" value=\"COM1\"/></parameters>"
           "</defaultDevice>\n";
    // Written in falling order, so that the sort has work to do.
    for (int device = count; device > 0; --device) {
        out << "<device><deviceName>Port " << device << "</deviceName>";
        if (rich) {
            out << "<parameters><parameter name=\"Control\" type=\"string\" value=\"P" << device
                << "\"/><parameter name=\"BaudRate\" type=\"enum\" value=\"9600\">"
                   "<item name=\"9600\" value=\"9600\"/><item name=\"19200\" value=\"19200\"/>"
                   "</parameter></parameters>";
        }
        out << "</device>\n";
    }
    out << "</interface>\n";
}

QString writeWorld(const QTemporaryDir& dir, bool rich, int count)
{
    const QString path = dir.filePath("bench-world.xml");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    QTextStream out(&file);
    out << "<world>\n";
    writeTransport(out, "Both", "comm=\"true\" video=\"true\"", rich, count / 2);
    writeTransport(out, "Control", "comm=\"true\"", rich, count / 2);
    out << "</world>\n";
    return path;
}

bool measure(bench::MeteredApplication& app, const char* world, int count)
{
    const QByteArray row = "item.deviceName + ' ' + item.interfaceName + ' ' + "
                           "item.parameters.size + ' ' + item.isFound";
    // Every device and the two placeholders.
    const int listed = count + 2;
    DeviceFinderModel finder;
    finder.setSupportedDevices({"Both", "Control"});
    finder.setDefaultControl("COM7");
    finder.setDefaultBaudRate(19200);
    kiv::cam::ui::CustomCameraSelectorModel selector;
    return bench::measure(app, "DeviceFinderModel", finder, *finder.devices(), "devices", row,
               listed, world, count)
        && bench::measure(app, "CustomCameraSelectorModel", selector, *selector.commDevices(),
            "commDevices", row, listed, world, count);
}

} // namespace

int main(int argc, char** argv)
{
    return bench::main(argc, argv, "device", writeWorld, measure);
}
