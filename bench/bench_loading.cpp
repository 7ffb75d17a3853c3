// Load time against the number of parameters, which must grow linearly:
//  (a) the time and peak memory of loading a description and a world as large as their bounds;
//  (b) building a parameter list with CParameters::Add, 1k to 1M entries;
//  (c) loading an emulator world file with one device of 1k, 10k and 100k parameters;
//  (d) loading a camera description of 1k and 10k parameters from memory (100k parameters take
//      more than the 4 MB a description may have, so they are measured through a world, whose
//      bound is 32 MB, in (c)).
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

    return 0;
}
