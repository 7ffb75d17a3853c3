// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

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
#include <QTextStream>

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

bool measure(bench::MeteredApplication& app, const char* world, int count)
{
    kiv::cam::ui::CameraFinderModel model;
    model.setEnableEmulators(true);
    return bench::measure(app, "CameraFinderModel", model, *model.cameras(), "cameras",
        "item.identity + ' ' + item.serial + ' ' + item.userFriendlyInterfaceName + ' ' + "
        "item.comm.deviceName + ' ' + item.comm.parameters.size + ' ' + item.canConnect",
        count, world, count);
}

} // namespace

int main(int argc, char** argv)
{
    return bench::main(argc, argv, "camera", writeWorld, measure);
}
