// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// Load time against the number of parameters, which must grow linearly:
//  (a) the time and peak memory of loading a description and a world as large as their bounds;
//  (b) building a parameter list with CParameters::Add, 1k to 1M entries;
//  (c) loading an emulator world file with one device of 1k, 10k and 100k parameters;
//  (d) loading a camera description of 1k and 10k parameters from memory (100k parameters take
//      more than the 4 MB a description may have, so they are measured through a world, whose
//      bound is 32 MB, in (c));
//  (e) loading a saved camera description of the usual size, from a file and from memory,
//      against pugixml's own parse of the same text;
//  (f) loading an emulator world of 10,000 cameras, each with a control and a video device of two
//      parameters: what the first use of a catalogue costs the thread that makes it.
// Not a test: run it by hand, e.g.  build/bin/bench_loading

#include <kiv/CMemFile.h>
#include <kiv/Platform.h>
#include <kivcam/CParameters.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/emulator/CEmulatorWorld.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <pugixml.hpp>
#include <string>
#include <sys/resource.h>

using namespace kiv;
using namespace kiv::cam;

namespace {

// The best of five runs, in seconds.
double best(const std::function<void()>& run)
{
    double fastest = 1e30;
    for (int i = 0; i < 5; ++i) {
        QElapsedTimer timer;
        timer.start();
        run();
        fastest = std::min(fastest, double(timer.nsecsElapsed()) / 1e9);
    }
    return fastest;
}

// Parameters in their XML form: every tenth an enumeration of three items.
std::string parameters(int count)
{
    std::string text = "<parameters>";
    for (int i = 0; i < count; ++i) {
        const std::string n = std::to_string(i);
        if (i % 10 == 9) {
            text += "<parameter name=\"Mode" + n + "\" displayName=\"Mode " + n
                + "\" description=\"Operating mode\" editLevel=\"1\" type=\"enum\" value=\"b\">"
                  "<item name=\"a\" value=\"0\"/><item name=\"b\" value=\"1\"/>"
                  "<item name=\"c\" value=\"2\"/></parameter>";
        } else {
            text += "<parameter name=\"Value" + n + "\" displayName=\"Value " + n
                + "\" description=\"A number\" editLevel=\"2\" type=\"uint32\" value=\"" + n
                + "\"/>";
        }
    }
    return text + "</parameters>";
}

std::string world(int count)
{
    return "<world><interface name=\"Emu\" comm=\"true\"><device><deviceName>Emu 0</deviceName>"
        + parameters(count) + "</device></interface></world>";
}

std::string description(int count)
{
    return "<camera><name>Nova</name><comm><deviceName>COM1</deviceName>" + parameters(count)
        + "</comm></camera>";
}

// The largest text of make(count) within bound, to a percent.
std::string largest(std::string (*make)(int), std::uint64_t bound)
{
    int count = int(bound / 100);
    std::string text = make(count);
    while (text.size() > bound) {
        count -= count / 100;
        text = make(count);
    }
    return text;
}

bool loadDescription(std::string& text)
{
    TSharedPtr<CMemFile> file = CMemFile::Create();
    file->Attach(reinterpret_cast<unsigned char*>(text.data()), text.size(), false);
    SCameraInfo camera;
    return camera.Load(TSharedPtr<IFile>(file));
}

// A camera as the camera finder reports it: control and video devices with a few parameters.
SCameraInfo usualCamera()
{
    SCameraInfo camera;
    camera.iconName = "Kelvin";
    camera.name = "Kelvin640";
    camera.displayName = "Kelvin 640";
    camera.baseModel = "Kelvin";
    camera.model = "Kelvin 640 LW";
    camera.serial = "K640-0042";
    camera.identity = "Bench camera";
    camera.controller = "Thermal";
    camera.reduceFilter = "Float32";
    camera.vendor = "Trellmark Sensors";
    camera.width = 640;
    camera.height = 512;
    camera.adBits = 14;
    for (SDeviceInfo* device : {&camera.comm, &camera.video}) {
        device->interfaceName = "EmuSerial";
        device->deviceName = "COM1";
        device->baseType = "Serial";
        device->iconName = "Serial";
        device->description = "On-board serial port";
        device->parameters.Add({"Control", "Port", "The serial port to open",
            CParameters::EDIT_ALWAYS, CVariant(CString("COM1"))});
        TArray<CVariant::SEnumItem> rates;
        for (const long long rate : {9600, 19200, 38400, 57600, 115200, 921600})
            rates.add({CString(std::to_string(rate)), rate});
        device->parameters.Add({"BaudRate", "Baud rate", "Serial line speed",
            CParameters::EDIT_CUSTOM, CVariant::Enum(rates, 115200)});
        device->parameters.Add({"Timeout", "Timeout", "Milliseconds to wait for an answer",
            CParameters::EDIT_INTERNAL, CVariant(2500u)});
        device->parameters.Add(
            {"Gain", "Gain", "Analogue gain", CParameters::EDIT_ALWAYS, CVariant(1.5)});
    }
    return camera;
}

std::string richWorld(int cameras)
{
    const std::string parameters = "<parameters><parameter name=\"Control\" type=\"string\" "
                                   "value=\"P\"/><parameter name=\"BaudRate\" type=\"enum\" "
                                   "value=\"9600\"><item name=\"9600\" value=\"9600\"/>"
                                   "<item name=\"19200\" value=\"19200\"/></parameter>"
                                   "</parameters>";
    std::string text = "<world><controller name=\"Generic\"/><cameraType name=\"Many\" "
                       "controller=\"Generic\"/><interface name=\"Grabbers\" video=\"true\">";
    const int devices = cameras / 100;
    for (int device = 0; device < devices; ++device)
        text += "<device><deviceName>G" + std::to_string(device) + "</deviceName>" + parameters
            + "</device>";
    text += "</interface><interface name=\"Fast\" comm=\"true\">";
    for (int device = 0; device < devices; ++device) {
        text += "<device><deviceName>D" + std::to_string(device) + "</deviceName>" + parameters;
        for (int camera = 0; camera < 100; ++camera)
            text += "<camera type=\"Many\" video=\"Grabbers/G" + std::to_string(device)
                + "\"><serial>" + std::to_string(device * 100 + camera) + "</serial></camera>";
        text += "</device>";
    }
    return text + "</interface></world>";
}

long peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

void row(const char* what, int count, std::size_t bytes, double seconds)
{
    std::printf("%-12s %8d parameters %10.1f kB %9.2f ms %7.0f ns per parameter\n", what, count,
        double(bytes) / 1024, seconds * 1e3, seconds * 1e9 / count);
}

} // namespace

int main()
{
    platform::SetDebugOutputHandler([](const char* text) { std::fputs(text, stdout); });

    // Peak memory at the bounds, largest last, as the peak only grows.
    std::printf("(a) at the bounds; the process's peak memory before: %ld MB\n", peakMegabytes());
    std::string atBound = largest(description, SCameraInfo::maxFileSize);
    QElapsedTimer timer;
    timer.start();
    const bool described = loadDescription(atBound);
    std::printf("description of %.1f MB: %s in %.0f ms, peak %ld MB\n",
        double(atBound.size()) / (1 << 20), described ? "loaded" : "refused",
        double(timer.nsecsElapsed()) / 1e6, peakMegabytes());
    const std::string largeWorld = largest(world, CEmulatorWorld::maxFileSize);
    timer.restart();
    const auto loadedWorld = CEmulatorWorld::Load(largeWorld.data(), largeWorld.size(), "bound");
    std::printf("world of %.1f MB: %s in %.0f ms, peak %ld MB\n",
        double(largeWorld.size()) / (1 << 20),
        loadedWorld->interfaces().empty() ? "refused" : "loaded",
        double(timer.nsecsElapsed()) / 1e6, peakMegabytes());

    std::printf("(b) CParameters::Add\n");
    for (const int count : {1000, 10000, 100000, 1000000}) {
        const double seconds = best([count] {
            CParameters list;
            for (int i = 0; i < count; ++i)
                list.Add(
                    {CString(std::to_string(i)), "", "", CParameters::EDIT_ALWAYS, CVariant(i)});
        });
        row("Add", count, 0, seconds);
    }

    std::printf("(c) emulator world file, one device\n");
    QTemporaryDir folder;
    for (const int count : {1000, 10000, 100000}) {
        const std::string text = world(count);
        const QString path = folder.filePath(QString("world-%1.xml").arg(count));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)
            || file.write(text.data(), qint64(text.size())) != qint64(text.size()))
            return 1;
        file.close();
        const CString name(path.toUtf8().constData());
        bool loaded = true;
        const double seconds = best([&] {
            const auto loadedWorld = CEmulatorWorld::LoadFile(name);
            loaded = loaded && loadedWorld->interfaces().count() == 1
                && loadedWorld->interfaces()[0]->devices()[0].info.parameters.count()
                    == unsigned(count);
        });
        if (!loaded)
            return 1;
        row("world", count, text.size(), seconds);
    }

    std::printf("(d) camera description from memory\n");
    for (const int count : {1000, 10000}) {
        std::string text = description(count);
        bool loaded = true;
        const double seconds = best([&] { loaded = loaded && loadDescription(text); });
        if (!loaded)
            return 1;
        row("description", count, text.size(), seconds);
    }

    std::printf("(e) a saved camera description of the usual size, per load\n");
    const QString saved = folder.filePath("camera.xml");
    if (!usualCamera().Save(CStringW(saved.toStdWString().c_str())))
        return 1;
    QFile savedFile(saved);
    if (!savedFile.open(QIODevice::ReadOnly))
        return 1;
    const QByteArray savedBytes = savedFile.readAll();
    std::string usual(savedBytes.constData(), std::size_t(savedBytes.size()));
    const CStringW savedPath(saved.toStdWString().c_str());
    constexpr int loads = 2000;
    bool usualLoaded = true;
    const double fromFile = best([&] {
        for (int i = 0; i < loads; ++i) {
            SCameraInfo camera;
            usualLoaded = usualLoaded && camera.Load(savedPath);
        }
    });
    const double fromMemory = best([&] {
        for (int i = 0; i < loads; ++i)
            usualLoaded = usualLoaded && loadDescription(usual);
    });
    const double parseOnly = best([&] {
        for (int i = 0; i < loads; ++i) {
            std::string copy = usual;
            pugi::xml_document document;
            usualLoaded = usualLoaded && document.load_buffer_inplace(copy.data(), copy.size());
        }
    });
    if (!usualLoaded)
        return 1;
    std::printf("%zu bytes: from a file %.1f us, from memory %.1f us, pugixml's parse %.1f us "
                "(memory / parse %.2f)\n",
        usual.size(), fromFile * 1e6 / loads, fromMemory * 1e6 / loads, parseOnly * 1e6 / loads,
        fromMemory / parseOnly);

    std::printf("(f) an emulator world of 10,000 cameras with devices of two parameters\n");
    const std::string many = richWorld(10000);
    bool manyLoaded = true;
    const double manySeconds = best([&] {
        const auto loadedWorld = CEmulatorWorld::Load(many.data(), many.size(), "rich");
        manyLoaded = manyLoaded && loadedWorld->interfaces().count() == 2;
    });
    if (!manyLoaded)
        return 1;
    std::printf("world of %.1f MB: %.1f ms\n", double(many.size()) / (1 << 20), manySeconds * 1e3);
    return 0;
}
