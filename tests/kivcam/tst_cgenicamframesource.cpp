// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "GigETest.h"
#include "StreamTest.h"

#include <kiv/PixelType.h>
#include <kivcam/genicam/CGenICamFrameSource.h>

#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <algorithm>
#include <arv.h>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <vector>

using namespace streamtest;

namespace {

// Aravis's fake camera in this process, through its own GenICam file: no network.
struct SFakeCamera {
    SFakeCamera()
    {
        device = arv_fake_device_new("KIVFAKE", nullptr);
        // Small images at a high rate keep the tests short.
        setSize(128, 96);
        setRate(200);
    }
    ~SFakeCamera() { g_object_unref(device); }

    void setSize(int width, int height) const
    {
        arv_device_set_integer_feature_value(device, "Width", width, nullptr);
        arv_device_set_integer_feature_value(device, "Height", height, nullptr);
    }
    void setRate(double rate) const
    {
        arv_device_set_float_feature_value(device, "AcquisitionFrameRate", rate, nullptr);
    }
    bool setFormat(const char* format) const
    {
        GError* error = nullptr;
        arv_device_set_string_feature_value(device, "PixelFormat", format, &error);
        const bool ok = !error;
        g_clear_error(&error);
        return ok;
    }

    ArvDevice* device = nullptr;
    SCameraInfo info = [] {
        SCameraInfo camera;
        camera.displayName = "Fake camera";
        camera.pixelType = ParsePixelType("Mono16");
        camera.reduceFilter = "Linear16";
        return camera;
    }();
};

// The stream-lost messages a source gave.
struct SLostMessages {
    void attach(CGenICamFrameSource& source)
    {
        source.setStreamLost([this](const CString& message) {
            const std::lock_guard lock(mutex);
            messages.push_back(QByteArray(message.c_str()));
        });
    }
    std::vector<QByteArray> taken() const
    {
        const std::lock_guard lock(mutex);
        return messages;
    }

    mutable std::mutex mutex;
    std::vector<QByteArray> messages;
};

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        QTest::qSleep(10);
    }
    return true;
}

// Runs the traffic control program in the test's network namespace; false, with what it said.
bool tc(const QStringList& arguments, QString& output)
{
    const QString program = QStandardPaths::findExecutable(
        QStringLiteral("tc"), {QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")});
    if (program.isEmpty()) {
        output = QStringLiteral("tc (iproute2) is not installed");
        return false;
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool ok = process.waitForFinished(10000) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
    output = QString::fromLocal8Bit(process.readAll()).trimmed();
    return ok;
}

// A GigE Vision camera simulated by Aravis in a peer process on the namespace's loopback,
// opened by its address.
struct SGigECamera {
    SGigECamera()
    {
        if (!netns::ip({"link", "set", "lo", "up"})
            || !(peer = gigetest::startCameras({QStringLiteral("127.0.0.1,KIVGV")})))
            return;
        GInetAddress* address = g_inet_address_new_from_string("127.0.0.1");
        device = arv_gv_device_new(address, address, nullptr);
        g_object_unref(address);
    }
    ~SGigECamera()
    {
        if (device)
            g_object_unref(device);
    }

    std::unique_ptr<gigetest::CPeer> peer;
    ArvDevice* device = nullptr;
};

// A frame source with a recorder subscribed, which outlives the source's calls.
struct SStream {
    SStream() { source.subscribe(&recorder); }
    ~SStream() { source.unsubscribe(&recorder); }

    // Starts the camera's stream; false, saying why, when it does not start.
    bool start(ArvDevice* device, const SCameraInfo& camera)
    {
        CString error;
        const bool started = source.start(device, camera, error);
        if (!started)
            qWarning("%s", error.c_str());
        return started;
    }

    CRecorder recorder;
    CGenICamFrameSource source;
};

} // namespace

// The frame source of GenICam cameras: Aravis's fake camera in this process, and its GigE Vision
// camera in a network namespace of the test's own.
class tst_CGenICamFrameSource : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void framesArriveInTheCamerasFormat()
    {
        SFakeCamera camera;
        camera.setSize(100, 60);
        QVERIFY(camera.setFormat("Mono8"));
        SStream stream;
        QVERIFY(stream.start(camera.device, camera.info));
        QVERIFY(stream.source.isStreaming());
        // The record tells the format the camera streams, not the one it had.
        QCOMPARE(stream.recorder.started().size(), std::size_t{1});
        const SCameraInfo started = stream.recorder.started()[0];
        QCOMPARE(started.width, std::uint16_t{100});
        QCOMPARE(started.height, std::uint16_t{60});
        QCOMPARE(str(PixelTypeToString(started.pixelType)), QByteArray("Mono8"));
        QCOMPARE(started.dataType, DATA_TYPE_UINT8);
        QCOMPARE(started.adBits, 8);
        QVERIFY(started.reduceFilter.empty());
        QCOMPARE(str(started.displayName), QByteArray("Fake camera"));
        QVERIFY(stream.recorder.waitForFrames(5));
        for (const TSharedPtr<const CImage>& frame : stream.recorder.frames()) {
            QCOMPARE(frame->width(), 100);
            QCOMPARE(frame->height(), 60);
            QVERIFY(frame->pixelType() == started.pixelType);
            QVERIFY(frame->timestamp > 0);
        }
        stream.source.stop(camera.device);
        QVERIFY(!stream.source.isStreaming());
        QCOMPARE(stream.recorder.stops(), 1);
        QCOMPARE(stream.recorder.strays.load(), 0);
        const SFrameStatistics statistics = stream.source.statistics();
        QVERIFY(statistics.completeFrames >= 5);
        QCOMPARE(statistics.incompleteFrames, std::uint64_t{0});
        QCOMPARE(statistics.missingPackets, std::uint64_t{0});
    }

    void everyFormatOfTheCamera_data()
    {
        QTest::addColumn<QByteArray>("format");
        QTest::addColumn<int>("adBits");
        for (const char* format : {"Mono8", "Mono16", "RGB8", "BayerRG8", "BayerBG8"})
            QTest::newRow(format) << QByteArray(format)
                                  << (QByteArray(format) == "Mono16" ? 16 : 8);
    }
    void everyFormatOfTheCamera()
    {
        QFETCH(QByteArray, format);
        QFETCH(int, adBits);
        SFakeCamera camera;
        QVERIFY(camera.setFormat(format.constData()));
        SStream stream;
        QVERIFY(stream.start(camera.device, camera.info));
        QVERIFY(stream.recorder.waitForFrames(2));
        const TSharedPtr<const CImage> frame = stream.recorder.frames()[0];
        QCOMPARE(str(PixelTypeToString(frame->pixelType())), format);
        QCOMPARE(frame->adBits, adBits);
        QCOMPARE(frame->width(), 128);
        // The Mono16 record keeps its filter; the others lose it.
        QCOMPARE(stream.recorder.started()[0].reduceFilter.empty(), format != "Mono16");
        stream.source.stop(camera.device);
    }

    // Aravis's fake camera counts its 16-bit frame ids from 65400 and wraps at 65535.
    void frameNumbersKeepIncreasing()
    {
        SFakeCamera camera;
        camera.setRate(1000);
        SStream stream;
        QVERIFY(stream.start(camera.device, camera.info));
        QVERIFY(stream.recorder.waitForFrames(200));
        stream.source.stop(camera.device);
        const std::vector<TSharedPtr<const CImage>> frames = stream.recorder.frames();
        for (std::size_t i = 1; i < frames.size(); ++i) {
            QVERIFY2(frames[i]->frameNumber > frames[i - 1]->frameNumber,
                qPrintable(QStringLiteral("%1 after %2")
                               .arg(frames[i]->frameNumber)
                               .arg(frames[i - 1]->frameNumber)));
        }
        QVERIFY(frames.back()->frameNumber > 65535);
    }

    void subscribeWhileRunning()
    {
        SFakeCamera camera;
        CRecorder recorder;
        CGenICamFrameSource source;
        CString error;
        QVERIFY2(source.start(camera.device, camera.info, error), error.c_str());
        source.subscribe(&recorder);
        QCOMPARE(recorder.started().size(), std::size_t{1});
        QCOMPARE(recorder.started()[0].width, std::uint16_t{128});
        QVERIFY(recorder.waitForFrames(3));
        // Subscribing twice adds nothing.
        source.subscribe(&recorder);
        QCOMPARE(recorder.started().size(), std::size_t{1});
        source.stop(camera.device);
        QCOMPARE(recorder.stops(), 1);
    }

    void unsubscribeFromWithinACall()
    {
        SFakeCamera camera;
        SStream stream;
        stream.recorder.onFrame = [&] { stream.source.unsubscribe(&stream.recorder); };
        QVERIFY(stream.start(camera.device, camera.info));
        QVERIFY(stream.recorder.waitForFrames(1));
        QTest::qWait(100);
        QCOMPARE(stream.recorder.frameCount(), std::size_t{1});
        stream.source.stop(camera.device);
        QCOMPARE(stream.recorder.stops(), 0);
    }

    void unsubscribeWaitsForTheCallInProgress()
    {
        SFakeCamera camera;
        SStream stream;
        stream.recorder.delay = std::chrono::milliseconds(50);
        QVERIFY(stream.start(camera.device, camera.info));
        QVERIFY(waitUntil([&] { return stream.recorder.inside.load(); }, std::chrono::seconds(5)));
        stream.source.unsubscribe(&stream.recorder);
        QVERIFY(!stream.recorder.inside);
        const std::size_t count = stream.recorder.frameCount();
        QTest::qWait(100);
        QCOMPARE(stream.recorder.frameCount(), count);
        stream.source.stop(camera.device);
    }

    // A listener slower than the camera gets the newest frame each time it is free; the
    // frames in between are counted, never queued.
    void slowListenerGetsTheNewestFrame()
    {
        SFakeCamera camera;
        SStream stream;
        stream.recorder.delay = std::chrono::milliseconds(50);
        QVERIFY(stream.start(camera.device, camera.info));
        QVERIFY(stream.recorder.waitForFrames(8));
        stream.source.unsubscribe(&stream.recorder);
        const SFrameStatistics statistics = stream.source.statistics();
        stream.source.stop(camera.device);
        const std::vector<TSharedPtr<const CImage>> frames = stream.recorder.frames();
        // At 200 frames a second, ten frames come while the listener spends 50 ms on one.
        const std::uint64_t span = frames.back()->frameNumber - frames[1]->frameNumber;
        const std::uint64_t steps = frames.size() - 2;
        QVERIFY2(span >= 4 * steps,
            qPrintable(QStringLiteral("%1 frames apart in %2 steps").arg(span).arg(steps)));
        QVERIFY(statistics.lateFrames >= 3 * steps);
        QCOMPARE(statistics.completeFrames, std::uint64_t(frames.size()));
    }

    void stopAndStartAgain()
    {
        SFakeCamera camera;
        SStream stream;
        QVERIFY(stream.start(camera.device, camera.info));
        QVERIFY(stream.recorder.waitForFrames(3));
        stream.source.stop(camera.device);
        QCOMPARE(stream.recorder.stops(), 1);
        const std::size_t count = stream.recorder.frameCount();
        QTest::qWait(50);
        QCOMPARE(stream.recorder.frameCount(), count);
        // A second stop tells nobody anything.
        stream.source.stop(camera.device);
        QCOMPARE(stream.recorder.stops(), 1);
        camera.setSize(64, 32);
        QVERIFY(stream.start(camera.device, camera.info));
        QCOMPARE(stream.recorder.started().size(), std::size_t{2});
        QCOMPARE(stream.recorder.started()[1].width, std::uint16_t{64});
        QVERIFY(stream.recorder.waitForFrames(count + 3));
        QCOMPARE(stream.recorder.frames().back()->width(), 64);
        // Starting again stops the running stream first; each stream counts from 0.
        QVERIFY(stream.start(camera.device, camera.info));
        QCOMPARE(stream.recorder.stops(), 2);
        QVERIFY(stream.source.statistics().completeFrames < 3);
        stream.source.stop(camera.device);
        QCOMPARE(stream.recorder.stops(), 3);
        QCOMPARE(stream.recorder.strays.load(), 0);
    }

    void stopFromWithinACall()
    {
        SFakeCamera camera;
        SStream stream;
        std::atomic<bool> onDeliveryThread{false};
        stream.recorder.onFrame = [&] {
            onDeliveryThread = stream.source.isDeliveryThread();
            stream.source.stop(camera.device);
        };
        QVERIFY(stream.start(camera.device, camera.info));
        QVERIFY(!stream.source.isDeliveryThread());
        QVERIFY(waitUntil([&] { return stream.recorder.stops() == 1; }, std::chrono::seconds(5)));
        QVERIFY(onDeliveryThread);
        QTest::qWait(50);
        QCOMPARE(stream.recorder.frameCount(), std::size_t{1});
        // The stream runs on until the worker stops it.
        QVERIFY(stream.source.isStreaming());
        stream.source.stop(camera.device);
        QVERIFY(!stream.source.isStreaming());
        QCOMPARE(stream.recorder.stops(), 1);
    }

    void destroyingARunningSourceStopsIt()
    {
        SFakeCamera camera;
        CRecorder recorder;
        auto source = std::make_unique<CGenICamFrameSource>();
        source->subscribe(&recorder);
        CString error;
        QVERIFY2(source->start(camera.device, camera.info, error), error.c_str());
        QVERIFY(recorder.waitForFrames(2));
        source.reset();
        QCOMPARE(recorder.stops(), 1);
        QVERIFY(!recorder.inside);
        arv_device_execute_command(camera.device, "AcquisitionStop", nullptr);
    }

    void noDeviceNoStream()
    {
        CRecorder recorder;
        CGenICamFrameSource source;
        source.subscribe(&recorder);
        CString error;
        QVERIFY(!source.start(nullptr, SFakeCamera().info, error));
        QVERIFY2(str(error).contains("Fake camera"), error.c_str());
        QVERIFY(!source.isStreaming());
        QVERIFY(recorder.started().empty());
        source.unsubscribe(&recorder);
    }

    void rates()
    {
        SFakeCamera camera;
        SStream stream;
        QCOMPARE(stream.source.frameRate(), 0.0);
        QVERIFY(stream.start(camera.device, camera.info));
        // Unknown to the controller, the rate is measured.
        QVERIFY(waitUntil([&] { return stream.source.frameRate() > 0; }, std::chrono::seconds(5)));
        QTest::qWait(200);
        QVERIFY2(stream.source.frameRate() > 100 && stream.source.frameRate() < 300,
            qPrintable(QString::number(stream.source.frameRate())));
        stream.source.setCameraRate(200);
        QCOMPARE(stream.source.frameRate(), 200.0);
        // Without a writer the rate cannot be set.
        QVERIFY(!stream.source.setFrameRate(50));
        std::vector<double> written;
        stream.source.setRateWriter([&](double rate) {
            written.push_back(rate);
            return rate != 60;
        });
        QVERIFY(stream.source.setFrameRate(50));
        QVERIFY(!stream.source.setFrameRate(60));
        for (const double rate : {0.0, -1.0, 1000.5, std::numeric_limits<double>::quiet_NaN()})
            QVERIFY(!stream.source.setFrameRate(rate));
        QCOMPARE(written, (std::vector<double>{50, 60}));
        QCOMPARE(stream.source.frameRate(), 200.0);
        stream.source.stop(camera.device);
    }

    // Every frame fails on the way: here the camera's images grow beyond the stream's buffers
    // behind the source's back.
    void streamLostWhenEveryFrameFails()
    {
        SFakeCamera camera;
        SLostMessages lost;
        SStream stream;
        lost.attach(stream.source);
        QVERIFY(stream.start(camera.device, camera.info));
        QVERIFY(stream.recorder.waitForFrames(2));
        camera.setSize(512, 512);
        const auto broken = std::chrono::steady_clock::now();
        QVERIFY(waitUntil([&] { return !lost.taken().empty(); },
            CGenICamFrameSource::lostTimeout + std::chrono::seconds(3)));
        QVERIFY(std::chrono::steady_clock::now() - broken
            >= CGenICamFrameSource::lostTimeout - std::chrono::milliseconds(100));
        QTest::qWait(200);
        QCOMPARE(lost.taken().size(), std::size_t{1});
        const QByteArray message = lost.taken()[0];
        QVERIFY2(
            message.contains("Fake camera") && message.contains("image size"), message.constData());
        QVERIFY(stream.source.statistics().incompleteFrames > 100);
        // Losing the stream stops nothing by itself: the controller decides.
        QVERIFY(stream.source.isStreaming());
        QCOMPARE(stream.recorder.stops(), 0);
        stream.source.stop(camera.device);
        QCOMPARE(stream.recorder.stops(), 1);
    }

    // GigE Vision: the fake camera in a peer process, frames over GVSP on the loopback.
    void completeFramesOverGigEVision()
    {
        NETNS_REQUIRE();
        SGigECamera camera;
        QVERIFY(camera.peer);
        QVERIFY(camera.device);
        arv_device_set_float_feature_value(camera.device, "AcquisitionFrameRate", 50, nullptr);
        SStream stream;
        QVERIFY(stream.start(camera.device, SFakeCamera().info));
        QCOMPARE(stream.recorder.started()[0].width, std::uint16_t{512});
        QVERIFY(stream.recorder.waitForFrames(20));
        stream.source.stop(camera.device);
        for (const TSharedPtr<const CImage>& frame : stream.recorder.frames()) {
            QCOMPARE(frame->width(), 512);
            QCOMPARE(frame->height(), 512);
        }
        const SFrameStatistics statistics = stream.source.statistics();
        QVERIFY(statistics.completeFrames >= 20);
        QCOMPARE(statistics.incompleteFrames, std::uint64_t{0});
        QCOMPARE(statistics.missingPackets, std::uint64_t{0});
    }

    // Packets lost on the way: the stream asks for them again (Aravis's fake camera of 0.8.26
    // does not resend, so they stay missing) and counts the frames they spoil.
    void lossIsCounted()
    {
        NETNS_REQUIRE();
        SGigECamera camera;
        QVERIFY(camera.peer);
        QVERIFY(camera.device);
        QString said;
        if (!tc({"qdisc", "add", "dev", "lo", "root", "netem", "loss", "1%"}, said))
            QSKIP(qPrintable("Packet loss cannot be simulated here (tc netem: " + said + ")"));
        arv_device_set_float_feature_value(camera.device, "AcquisitionFrameRate", 50, nullptr);
        SStream stream;
        const bool started = stream.start(camera.device, SFakeCamera().info);
        const bool arrived = started && stream.recorder.waitForFrames(5);
        stream.source.stop(camera.device);
        tc({"qdisc", "del", "dev", "lo", "root"}, said);
        QVERIFY(started);
        QVERIFY(arrived);
        const SFrameStatistics statistics = stream.source.statistics();
        const QString counts = QStringLiteral("%1 complete, %2 incomplete, %3 missing packets")
                                   .arg(statistics.completeFrames)
                                   .arg(statistics.incompleteFrames)
                                   .arg(statistics.missingPackets);
        QVERIFY2(
            statistics.incompleteFrames > 0 && statistics.missingPackets > 0, qPrintable(counts));
        QVERIFY2(statistics.completeFrames >= 5, qPrintable(counts));
    }

    void streamLostWhenTheCameraDies()
    {
        NETNS_REQUIRE();
        SGigECamera camera;
        QVERIFY(camera.peer);
        QVERIFY(camera.device);
        SLostMessages lost;
        SStream stream;
        lost.attach(stream.source);
        QVERIFY(stream.start(camera.device, SFakeCamera().info));
        QVERIFY(stream.recorder.waitForFrames(3));
        camera.peer->Stop();
        QVERIFY(waitUntil([&] { return !lost.taken().empty(); },
            CGenICamFrameSource::lostTimeout + std::chrono::seconds(3)));
        QVERIFY2(lost.taken()[0].contains("Fake camera"), lost.taken()[0].constData());
        // A camera that is gone is not asked to stop: the request would wait in vain.
        stream.source.stop(nullptr);
        QCOMPARE(stream.recorder.stops(), 1);
    }
};

KIVCAM_NETWORK_TEST_MAIN(tst_CGenICamFrameSource)
#include "tst_cgenicamframesource.moc"
