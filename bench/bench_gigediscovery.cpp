// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// GigE Vision discovery on the loopback adapter of a network namespace of its own, against
// Aravis's fake cameras (built with the tests as fake-gige-camera):
//  (a) how long a discovery takes beyond its configured wait, with 0, 1 and 8 cameras
//      answering, for waits of 200 ms and 1000 ms (goal: under 10 ms beyond the wait);
//  (b) the longest stall of the GUI event loop, measured with a 1 ms timer, while a camera
//      finder model searches 8 cameras with a 1000 ms wait.
// Not a test: run it by hand, e.g.  build/bin/bench_gigediscovery
// It runs itself again under "unshare -rn" and sends nothing outside that namespace; where no
// namespace can be made it says so and does nothing.

#include "NamespaceBench.h"

#include <kivcam/CInterfaces.h>
#include <kivcamui/camera/CameraFinderModel.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int Rounds = 10;

QStringList cameraSpecs(int count)
{
    QStringList specs;
    for (int i = 1; i <= count; ++i)
        specs << QStringLiteral("127.0.0.%1,BENCH-%1,02000000000%1").arg(i);
    return specs;
}

// Milliseconds beyond the wait: the median and the largest of Rounds discoveries.
std::pair<double, double> discoveryOverhead(int waitMs, int expected)
{
    qputenv("KIVCAM_GIGE_DISCOVERY_MS", QByteArray::number(waitMs));
    const kiv::TSharedPtr<kiv::cam::IInterface> gige
        = kiv::cam::interfaces()->interfaceByName("GigE");
    std::vector<double> beyond;
    for (int round = 0; round < Rounds; ++round) {
        kiv::TArray<kiv::cam::SCameraInfo> cameras;
        QElapsedTimer timer;
        timer.start();
        gige->findCameras(cameras, {});
        beyond.push_back(double(timer.nsecsElapsed()) / 1e6 - waitMs);
        if (cameras.count() != expected)
            std::printf(
                "    round %d found %d cameras, not %d\n", round, cameras.count(), expected);
    }
    std::sort(beyond.begin(), beyond.end());
    return {beyond[beyond.size() / 2], beyond.back()};
}

} // namespace

int main(int argc, char** argv)
{
    if (const int code = netns::reenter(argv); code >= 0)
        return code;
    QCoreApplication app(argc, argv);
    if (const int code = namespaceBenchReady(); code >= 0)
        return code;
    for (int i = 2; i <= 8; ++i)
        netns::ip({"addr", "add", QStringLiteral("127.0.0.%1/8").arg(i), "dev", "lo"});
    qputenv("KIVCAM_GIGE_INTERFACES", "lo");

    std::printf("(a) discovery time beyond the wait, median and largest of %d rounds\n", Rounds);
    for (const int count : {0, 1, 8}) {
        std::unique_ptr<gigetest::CPeer> cameras;
        if (count > 0 && !(cameras = gigetest::startCameras(cameraSpecs(count)))) {
            std::printf("the fake cameras do not start\n");
            return 1;
        }
        for (const int wait : {200, 1000}) {
            const auto [median, largest] = discoveryOverhead(wait, count);
            std::printf("    %d cameras, wait %4d ms: +%.2f ms median, +%.2f ms largest\n", count,
                wait, median, largest);
        }
    }

    const auto cameras = gigetest::startCameras(cameraSpecs(8));
    qputenv("KIVCAM_GIGE_DISCOVERY_MS", "1000");
    kiv::cam::ui::CameraFinderModel model;
    QTimer ticker;
    ticker.setInterval(1);
    QElapsedTimer sinceTick;
    qint64 longest = 0;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        longest = std::max(longest, sinceTick.nsecsElapsed());
        sinceTick.restart();
    });
    // The first search also builds the catalogues; the second shows the steady state.
    for (const char* which : {"first", "second"}) {
        longest = 0;
        QElapsedTimer search;
        search.start();
        sinceTick.start();
        ticker.start();
        model.scan();
        while (model.scanning())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        ticker.stop();
        std::printf("(b) %s finder search of %.3f s found %d cameras: longest event-loop stall "
                    "%.2f ms\n",
            which, double(search.nsecsElapsed()) / 1e9, model.cameras()->size(),
            double(longest) / 1e6);
    }
    return 0;
}
