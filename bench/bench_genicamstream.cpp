// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The GigE Vision stream of our frame source against Aravis's own test tool, side by side on the
// same camera: Aravis's fake GigE Vision camera (built with the tests as fake-gige-camera) on the
// loopback adapter of a network namespace of its own, 512 x 512 Mono8, at its top rate and at 25
// frames a second. For each rate, one line per figure, for ours and for arv-camera-test-0.8 run
// twice: with the stream settings nearest to ours (a plain UDP socket with a receive buffer sized
// for the frames), and with its defaults (a packet socket, which needs the privilege that the
// namespace gives but a user does not have outside it, so our source never uses one):
//  - frames a second delivered (goal: at least 0.98 of the tool's with the same socket), over the
//    steady state: ours after a second's warm-up, the tool's per-second lines but the first;
//  - CPU time per complete frame (user and system, getrusage), over the whole run of each, from
//    opening the camera to closing it;
//  - missing packets and incomplete frames (goal: none at 25 frames a second with our default
//    settings).
// Not a test: run it by hand, e.g.  build/bin/bench_genicamstream
// It runs itself again under "unshare -rn" and sends nothing outside that namespace; where no
// namespace can be made it says so and does nothing. We open the camera by its address only. The
// tool is given the address as its camera name, and Aravis looks for a camera of that name with
// a discovery broadcast before it opens the address: that broadcast stays in the namespace, where
// nothing but the fake camera exists.

#include "NamespaceBench.h"

#include <kivcam/IFrameListener.h>
#include <kivcam/genicam/CGenICamFrameSource.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QThread>

#include <arv.h>
#include <atomic>
#include <cstdio>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace kiv;
using namespace kiv::cam;

constexpr const char* Address = "127.0.0.1";
constexpr int WarmUpMs = 1000;
constexpr int MeasureMs = 8000;

struct SFigures {
    double framesPerSecond = 0;
    double cpuMsPerFrame = 0;
    std::uint64_t missingPackets = 0;
    std::uint64_t incompleteFrames = 0;
};

double cpuSeconds(const rusage& usage)
{
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

class CCounter : public IFrameListener {
public:
    void streamStarted(const SCameraInfo&) override { }
    void frameArrived(const TSharedPtr<const CImage>&) override { ++frames; }
    void streamStopped() override { }

    std::atomic<std::uint64_t> frames{0};
};

ArvDevice* openCamera()
{
    GInetAddress* address = g_inet_address_new_from_string(Address);
    ArvDevice* device = arv_gv_device_new(address, address, nullptr);
    g_object_unref(address);
    return device;
}

double topRate()
{
    ArvDevice* device = openCamera();
    double low = 0;
    double high = 0;
    if (device) {
        arv_device_get_float_feature_bounds(device, "AcquisitionFrameRate", &low, &high, nullptr);
        g_object_unref(device);
    }
    return high;
}

bool ours(double rate, SFigures& figures)
{
    rusage before{};
    getrusage(RUSAGE_SELF, &before);
    ArvDevice* device = openCamera();
    if (!device)
        return false;
    arv_device_set_float_feature_value(device, "AcquisitionFrameRate", rate, nullptr);
    CGenICamFrameSource source;
    CCounter counter;
    source.subscribe(&counter);
    SCameraInfo camera;
    camera.displayName = "the fake camera";
    CString error;
    if (!source.start(device, camera, error)) {
        std::printf("our stream does not start: %s\n", error.data());
        g_object_unref(device);
        return false;
    }
    QThread::msleep(WarmUpMs);
    const std::uint64_t first = counter.frames;
    QElapsedTimer window;
    window.start();
    QThread::msleep(MeasureMs);
    const std::uint64_t last = counter.frames;
    figures.framesPerSecond = double(last - first) / (double(window.nsecsElapsed()) / 1e9);
    source.stop(device);
    source.unsubscribe(&counter);
    g_object_unref(device);
    rusage after{};
    getrusage(RUSAGE_SELF, &after);
    const SFrameStatistics statistics = source.statistics();
    figures.cpuMsPerFrame = (cpuSeconds(after) - cpuSeconds(before)) * 1e3
        / double(std::max<std::uint64_t>(1, statistics.completeFrames + statistics.lateFrames));
    figures.missingPackets = statistics.missingPackets;
    figures.incompleteFrames = statistics.incompleteFrames;
    return true;
}

bool tool(double rate, bool packetSocket, SFigures& figures)
{
    int out[2];
    if (pipe(out) != 0)
        return false;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, out[0]);
    const QByteArray frequency = QByteArray::number(rate);
    const QByteArray duration = QByteArray::number((WarmUpMs + MeasureMs) / 1000.0);
    std::vector<const char*> arguments{"arv-camera-test-0.8", "--name", Address, "--frequency",
        frequency.constData(), "--duration", duration.constData()};
    if (!packetSocket) {
        arguments.push_back("--no-packet-socket");
        arguments.push_back("--auto"); // the receive buffer sized for a frame
    }
    arguments.push_back(nullptr);
    pid_t child = 0;
    const int spawned = posix_spawnp(&child, arguments[0], &actions, nullptr,
        const_cast<char* const*>(arguments.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    QByteArray output;
    char chunk[4096];
    for (ssize_t size; spawned == 0 && (size = read(out[0], chunk, sizeof chunk)) > 0;)
        output.append(chunk, size);
    close(out[0]);
    int status = 0;
    rusage usage{};
    if (spawned != 0 || wait4(child, &status, 0, &usage) != child || !WIFEXITED(status)
        || WEXITSTATUS(status) != 0) {
        std::printf(
            "arv-camera-test-0.8 fails (is aravis-tools installed?):\n%s\n", output.constData());
        return false;
    }
    // " 25 frames/s -    6.55 MiB/s" each second, then "n_completed_buffers    = 98" and so on.
    const QRegularExpression second(QStringLiteral("^\\s*(\\d+) frames?/s"));
    std::vector<double> perSecond;
    std::uint64_t completed = 0;
    for (const QByteArray& line : output.split('\n')) {
        const QRegularExpressionMatch match = second.match(QString::fromLatin1(line));
        if (match.hasMatch())
            perSecond.push_back(match.captured(1).toDouble());
        const QList<QByteArray> field = line.split('=');
        if (field.size() != 2)
            continue;
        const QByteArray name = field[0].trimmed();
        const std::uint64_t value = field[1].trimmed().toULongLong();
        if (name == "n_completed_buffers")
            completed = value;
        else if (name == "n_missing_packets")
            figures.missingPackets = value;
        else if (name == "n_failures")
            figures.incompleteFrames = value;
    }
    if (perSecond.size() < 2) {
        std::printf("arv-camera-test-0.8 said:\n%s\n", output.constData());
        return false;
    }
    double sum = 0;
    for (std::size_t i = 1; i < perSecond.size(); ++i)
        sum += perSecond[i];
    figures.framesPerSecond = sum / double(perSecond.size() - 1);
    figures.cpuMsPerFrame = cpuSeconds(usage) * 1e3 / double(std::max<std::uint64_t>(1, completed));
    return true;
}

QByteArray load()
{
    QFile file(QStringLiteral("/proc/loadavg"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray("unknown");
}

} // namespace

int main(int argc, char** argv)
{
    if (const int code = netns::reenter(argv); code >= 0)
        return code;
    QCoreApplication app(argc, argv);
    if (const int code = namespaceBenchReady(); code >= 0)
        return code;
    const auto camera = gigetest::startCameras({QStringLiteral("%1,BENCH").arg(Address)});
    if (!camera) {
        std::printf("the fake camera does not start\n");
        return 1;
    }
#ifdef NDEBUG
    std::printf("build: optimised (NDEBUG); load average before: %s\n", load().constData());
#else
    std::printf("build: debug; load average before: %s\n", load().constData());
#endif
    const double top = topRate();
    for (const double rate : {top, 25.0}) {
        SFigures our;
        SFigures udp;
        SFigures packet;
        if (!ours(rate, our) || !tool(rate, false, udp) || !tool(rate, true, packet))
            return 1;
        const QByteArray label
            = QByteArray::number(rate) + " frames/s" + (rate == top ? " (top rate)" : "");
        std::printf("%s: frames a second, ours %.1f; arv-camera-test %.1f with a UDP socket "
                    "(ours %.3f of it, goal 0.98), %.1f with a packet socket (ours %.3f of it)\n",
            label.constData(), our.framesPerSecond, udp.framesPerSecond,
            udp.framesPerSecond > 0 ? our.framesPerSecond / udp.framesPerSecond : 0,
            packet.framesPerSecond,
            packet.framesPerSecond > 0 ? our.framesPerSecond / packet.framesPerSecond : 0);
        std::printf("%s: CPU time per frame, ours %.3f ms; arv-camera-test %.3f ms with a UDP "
                    "socket, %.3f ms with a packet socket\n",
            label.constData(), our.cpuMsPerFrame, udp.cpuMsPerFrame, packet.cpuMsPerFrame);
        std::printf("%s: missing packets, ours %llu; arv-camera-test %llu with a UDP socket, %llu "
                    "with a packet socket\n",
            label.constData(), static_cast<unsigned long long>(our.missingPackets),
            static_cast<unsigned long long>(udp.missingPackets),
            static_cast<unsigned long long>(packet.missingPackets));
        std::printf("%s: incomplete frames, ours %llu; arv-camera-test %llu with a UDP socket, "
                    "%llu with a packet socket\n",
            label.constData(), static_cast<unsigned long long>(our.incompleteFrames),
            static_cast<unsigned long long>(udp.incompleteFrames),
            static_cast<unsigned long long>(packet.incompleteFrames));
    }
    std::printf("load average after: %s\n", load().constData());
    return 0;
}
