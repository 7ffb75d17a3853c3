// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The time from StandaloneModel::connect to `connected`, on an emulated camera whose device
// opens and whose controller connects at once, against the latency of the global thread pool
// itself: an empty task started with QtConcurrent::run and seen finished through a
// QFutureWatcher. A connect is two such round trips (device, then controller), so the figure to
// watch is the connect time minus twice the pool's.
// Not a test: run it by hand, e.g.  QT_QPA_PLATFORM=offscreen build/bin/bench_standalonemodel

#include <kivcam/CInterfaces.h>
#include <kivcamui/camera/CameraInfo.h>
#include <kivcamui/standalone/StandaloneModel.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFutureWatcher>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr int rounds = 2000;
constexpr int warmUp = 20;

QString writeWorld(const QTemporaryDir& dir)
{
    const QString path = dir.filePath("bench-world.xml");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write("<world><controller name=\"Instant\"/>\n"
               "<cameraType name=\"Quick\" iconName=\"Nova\" controller=\"Instant\"/>\n"
               "<interface name=\"Fast\" icon=\"Emulator\" baseType=\"CamEmu\" comm=\"true\">\n"
               "<device><deviceName>Port 0</deviceName>"
               "<camera type=\"Quick\"><serial>Q-1</serial></camera></device>\n"
               "</interface></world>\n");
    return path;
}

void waitUntil(const std::function<bool()>& done)
{
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void report(const char* what, std::vector<qint64> times)
{
    std::sort(times.begin(), times.end());
    std::printf("%s: median %.3f ms, 99th percentile %.3f ms, worst %.3f ms (%zu rounds)\n", what,
        double(times[times.size() / 2]) / 1e6, double(times[times.size() * 99 / 100]) / 1e6,
        double(times.back()) / 1e6, times.size());
}

std::vector<qint64> poolRoundTrips()
{
    std::vector<qint64> times;
    QFutureWatcher<bool> watcher;
    bool finished = false;
    QObject::connect(&watcher, &QFutureWatcher<bool>::finished, [&] { finished = true; });
    for (int round = 0; round < warmUp + rounds; ++round) {
        finished = false;
        QElapsedTimer timer;
        timer.start();
        watcher.setFuture(QtConcurrent::run(QThreadPool::globalInstance(), [] { return true; }));
        waitUntil([&] { return finished; });
        if (round >= warmUp)
            times.push_back(timer.nsecsElapsed());
    }
    return times;
}

std::vector<qint64> connectTimes(kiv::cam::ui::CameraInfo& camera)
{
    using kiv::cam::ui::StandaloneModel;
    StandaloneModel model;
    std::vector<qint64> times;
    QElapsedTimer timer;
    qint64 elapsed = 0;
    QObject::connect(&model, &StandaloneModel::connectedChanged, [&] {
        if (model.connected())
            elapsed = timer.nsecsElapsed();
    });
    for (int round = 0; round < warmUp + rounds; ++round) {
        timer.start();
        model.connect(&camera);
        waitUntil([&] { return !model.connecting(); });
        if (!model.connected()) {
            std::printf("the camera did not connect\n");
            return {};
        }
        if (round >= warmUp)
            times.push_back(elapsed);
        model.disconnect();
    }
    return times;
}

} // namespace

int main(int argc, char** argv)
{
    QTemporaryDir dir;
    qputenv("KIVCAM_EMULATOR_WORLD", writeWorld(dir).toUtf8());
    QCoreApplication app(argc, argv);

    kiv::TArray<kiv::cam::SCameraInfo> found;
    kiv::cam::interfaces()->interfaceByName("Fast")->findCameras(found, {});
    if (found.empty()) {
        std::printf("the bench world has no camera\n");
        return 1;
    }
    kiv::cam::ui::CameraInfo camera(found[0], nullptr);

    const std::vector<qint64> pool = poolRoundTrips();
    const std::vector<qint64> connects = connectTimes(camera);
    if (connects.empty())
        return 1;
    report("pool round trip (empty task)", pool);
    report("connect to connected (two round trips)", connects);
    return 0;
}
