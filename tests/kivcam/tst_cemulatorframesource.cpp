// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "StreamTest.h"

#include <kivcam/IEmulatorController.h>

#include <QTest>

#include <limits>
#include <memory>

using namespace streamtest;

// The image streams of emulated controllers: who hears what, when, from which camera, at which
// rate, and what unsubscribe and disconnect guarantee.
class tst_CEmulatorFrameSource : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { useWorld("emulator-frames.xml"); }

    void everyEmulatedControllerHasASource()
    {
        const SCamera camera("M14");
        QVERIFY(camera.controller);
        QVERIFY(camera.source());
        QCOMPARE(camera.controller->frameSource(), camera.source());
        QVERIFY(dynamic_cast<IEmulatorController*>(camera.controller.get()));
    }

    void nothingFlowsUntilConnected()
    {
        CRecorder recorder;
        const SCamera camera("M14");
        camera.source()->subscribe(&recorder);
        QTest::qWait(50);
        QCOMPARE(recorder.frameCount(), std::size_t{0});
        QVERIFY(recorder.started().empty());
        camera.source()->unsubscribe(&recorder);
    }

    void streamOfTheConnectedCamera()
    {
        CRecorder recorder;
        const SCamera camera("M14");
        camera.source()->subscribe(&recorder);
        QVERIFY(camera.connect());
        QCOMPARE(recorder.started().size(), std::size_t{1});
        QCOMPARE(str(recorder.started()[0].serial), QByteArray("M14"));
        QCOMPARE(str(recorder.started()[0].reduceFilter), QByteArray("Linear16"));
        QVERIFY(recorder.waitForFrames(5));
        const std::vector<TSharedPtr<const CImage>> frames = recorder.frames();
        for (const TSharedPtr<const CImage>& frame : frames) {
            QCOMPARE(frame->width(), 64);
            QCOMPARE(frame->height(), 48);
            QVERIFY(frame->pixelType() == camera.info.pixelType);
            QCOMPARE(frame->adBits, 14);
            QCOMPARE(frame->adBitShift, 2);
        }
        QCOMPARE(frames[0]->frameNumber, std::uint64_t{0});
        for (std::size_t i = 1; i < frames.size(); ++i) {
            const std::uint64_t step = frames[i]->frameNumber - frames[i - 1]->frameNumber;
            QVERIFY(step >= 1);
            // Images are stamped with the moment they were due: whole periods apart.
            QCOMPARE(frames[i]->timestamp - frames[i - 1]->timestamp,
                static_cast<std::int64_t>(step) * periodOf(200));
        }
        camera.controller->disconnect();
        camera.source()->unsubscribe(&recorder);
    }

    void rateComesFromTheRecord()
    {
        const SCamera fast("M14");
        QVERIFY(fast.connect());
        QCOMPARE(fast.source()->frameRate(), 200.0);
        // A record without a rate runs at the emulator's own.
        const SCamera plain("P8");
        QCOMPARE(plain.info.frameRate, 0.0);
        QVERIFY(plain.connect());
        QCOMPARE(plain.source()->frameRate(), 30.0);
    }

    void rateChangesWhileStreaming()
    {
        CRecorder recorder;
        const SCamera camera("M14");
        camera.source()->subscribe(&recorder);
        QVERIFY(camera.connect());
        QVERIFY(recorder.waitForFrames(2));
        QVERIFY(camera.source()->setFrameRate(50));
        QCOMPARE(camera.source()->frameRate(), 50.0);
        recorder.clear();
        QVERIFY(recorder.waitForFrames(4));
        const std::vector<TSharedPtr<const CImage>> frames = recorder.frames();
        // The first of these may still be due at the old rate; the others are at the new one.
        for (std::size_t i = 2; i < frames.size(); ++i) {
            const std::uint64_t step = frames[i]->frameNumber - frames[i - 1]->frameNumber;
            QCOMPARE(frames[i]->timestamp - frames[i - 1]->timestamp,
                static_cast<std::int64_t>(step) * periodOf(50));
        }
        QVERIFY(frames.back()->frameNumber > frames.front()->frameNumber);
        camera.controller->disconnect();
        camera.source()->unsubscribe(&recorder);
    }

    void rateOutsideItsRangeIsRefused()
    {
        const SCamera camera("M14");
        QVERIFY(camera.connect());
        for (const double rate : {0.0, -1.0, 1000.5, std::numeric_limits<double>::quiet_NaN(),
                 std::numeric_limits<double>::infinity()})
            QVERIFY(!camera.source()->setFrameRate(rate));
        QCOMPARE(camera.source()->frameRate(), 200.0);
        QVERIFY(camera.source()->setFrameRate(IFrameSource::maxFrameRate));
        QVERIFY(camera.source()->setFrameRate(0.5));
        QCOMPARE(camera.source()->frameRate(), 0.5);
        // Each connect starts at the camera's own rate again.
        QVERIFY(camera.connect());
        QCOMPARE(camera.source()->frameRate(), 200.0);
    }

    void disconnectStopsAtOnce()
    {
        CRecorder recorder;
        const SCamera camera("M14");
        camera.source()->subscribe(&recorder);
        QVERIFY(camera.connect());
        QVERIFY(recorder.waitForFrames(3));
        camera.controller->disconnect();
        QCOMPARE(recorder.stops(), 1);
        QVERIFY(!recorder.inside);
        const std::size_t count = recorder.frameCount();
        QTest::qWait(50);
        QCOMPARE(recorder.frameCount(), count);
        QCOMPARE(recorder.strays.load(), 0);
        // A second disconnect tells nobody anything.
        camera.controller->disconnect();
        QCOMPARE(recorder.stops(), 1);
        camera.source()->unsubscribe(&recorder);
    }

    void reconnectStartsANewStream()
    {
        CRecorder recorder;
        const SCamera camera("M14");
        camera.source()->subscribe(&recorder);
        QVERIFY(camera.connect());
        QVERIFY(recorder.waitForFrames(3));
        // Connecting again ends the running stream first.
        QVERIFY(camera.connect());
        QCOMPARE(recorder.stops(), 1);
        QCOMPARE(recorder.started().size(), std::size_t{2});
        recorder.clear();
        QVERIFY(recorder.waitForFrames(1));
        QCOMPARE(recorder.frames()[0]->frameNumber, std::uint64_t{0});
        camera.controller->disconnect();
        QCOMPARE(recorder.strays.load(), 0);
        camera.source()->unsubscribe(&recorder);
    }

    void failedConnectStartsNothing()
    {
        CRecorder recorder;
        const SCamera camera("M14");
        camera.source()->subscribe(&recorder);
        camera.device->close();
        QVERIFY(!camera.connect());
        QVERIFY(recorder.started().empty());
        QTest::qWait(30);
        QCOMPARE(recorder.frameCount(), std::size_t{0});
        camera.source()->unsubscribe(&recorder);
    }

    void lateListenerHearsTheStart()
    {
        CRecorder recorder;
        const SCamera camera("M14");
        QVERIFY(camera.connect());
        camera.source()->subscribe(&recorder);
        QCOMPARE(recorder.started().size(), std::size_t{1});
        QVERIFY(recorder.waitForFrames(1));
        // Subscribing twice changes nothing.
        camera.source()->subscribe(&recorder);
        QCOMPARE(recorder.started().size(), std::size_t{1});
        camera.source()->unsubscribe(&recorder);
        camera.source()->unsubscribe(&recorder);
        camera.source()->subscribe(nullptr);
        camera.source()->unsubscribe(nullptr);
    }

    // Every listener gets the one image, not a copy of it.
    void listenersShareTheImage()
    {
        CRecorder first;
        CRecorder second;
        const SCamera camera("M14");
        camera.source()->subscribe(&first);
        camera.source()->subscribe(&second);
        QVERIFY(camera.connect());
        QVERIFY(first.waitForFrames(3) && second.waitForFrames(3));
        camera.controller->disconnect();
        const auto a = first.frames();
        const auto b = second.frames();
        QCOMPARE(a.size(), b.size());
        for (std::size_t i = 0; i < a.size(); ++i)
            QCOMPARE(a[i].get(), b[i].get());
        camera.source()->unsubscribe(&first);
        camera.source()->unsubscribe(&second);
    }

    // A slow listener makes the camera miss images; the numbers tell how many.
    void missedImagesShowAsGaps()
    {
        CRecorder recorder;
        const SCamera camera("M14");
        recorder.delay = std::chrono::milliseconds(30); // six periods at 200 a second
        camera.source()->subscribe(&recorder);
        QVERIFY(camera.connect());
        QVERIFY(recorder.waitForFrames(3));
        camera.controller->disconnect();
        const auto frames = recorder.frames();
        for (std::size_t i = 1; i < frames.size(); ++i)
            QVERIFY(frames[i]->frameNumber - frames[i - 1]->frameNumber >= 5);
        camera.source()->unsubscribe(&recorder);
    }

    // Once unsubscribe returns, the listener is not called and may go, even when an image was
    // being handed to it at that moment.
    void unsubscribeWaitsForTheCallInProgress()
    {
        const SCamera camera("M14");
        QVERIFY(camera.connect());
        for (int round = 0; round < 10; ++round) {
            auto recorder = std::make_unique<CRecorder>();
            recorder->delay = std::chrono::milliseconds(10);
            camera.source()->subscribe(recorder.get());
            QVERIFY(recorder->waitForFrames(1));
            camera.source()->unsubscribe(recorder.get());
            QVERIFY(!recorder->inside);
            const std::size_t count = recorder->frameCount();
            recorder.reset();
            QVERIFY(count >= 1);
        }
        camera.controller->disconnect();
    }

    void listenerMayLeaveFromItsOwnCall()
    {
        CRecorder recorder;
        const SCamera camera("M14");
        recorder.onFrame = [&] { camera.source()->unsubscribe(&recorder); };
        camera.source()->subscribe(&recorder);
        QVERIFY(camera.connect());
        QVERIFY(recorder.waitForFrames(1));
        QTest::qWait(30);
        QCOMPARE(recorder.frameCount(), std::size_t{1});
        camera.controller->disconnect();
        QCOMPARE(recorder.stops(), 0);
    }

    void listenerMayDisconnectFromItsOwnCall()
    {
        CRecorder recorder;
        CRecorder other;
        const SCamera camera("M14");
        recorder.onFrame = [&] { camera.controller->disconnect(); };
        camera.source()->subscribe(&recorder);
        camera.source()->subscribe(&other);
        QVERIFY(camera.connect());
        QVERIFY(recorder.waitForFrames(1));
        QTRY_COMPARE(other.stops(), 1);
        QCOMPARE(recorder.stops(), 1);
        QVERIFY(!camera.controller->isConnected());
        QTest::qWait(30);
        QCOMPARE(recorder.frameCount(), std::size_t{1});
        QVERIFY(other.frameCount() <= 1);
        QCOMPARE(other.strays.load(), 0);
        // The stream can start again from another thread.
        recorder.onFrame = nullptr;
        QVERIFY(camera.connect());
        QVERIFY(recorder.waitForFrames(3));
        camera.controller->disconnect();
        camera.source()->unsubscribe(&recorder);
        camera.source()->unsubscribe(&other);
    }

    void destroyingTheControllerEndsTheStream()
    {
        CRecorder recorder;
        {
            SCamera camera("M14");
            camera.source()->subscribe(&recorder);
            QVERIFY(camera.connect());
            QVERIFY(recorder.waitForFrames(2));
            camera.controller.reset();
        }
        QCOMPARE(recorder.stops(), 1);
        const std::size_t count = recorder.frameCount();
        QTest::qWait(30);
        QCOMPARE(recorder.frameCount(), count);
    }

    // A record with a pixel type and no size cannot be drawn: the connect is refused, saying
    // why, and no stream starts.
    void cameraWithoutASizeIsRefused()
    {
        CRecorder recorder;
        const SCamera camera("S");
        camera.source()->subscribe(&recorder);
        QVERIFY(!camera.connect());
        QVERIFY(!camera.controller->isConnected());
        QCOMPARE(str(camera.controller->errorMessage()),
            QByteArray("The frame 0 x 0 has no pixels for the 4096 x 4096 sensor of an emulated "
                       "camera slot; make it at least 1 x 1 and at most 4096 x 4096."));
        QVERIFY(recorder.started().empty());
        QTest::qWait(50);
        QCOMPARE(recorder.frameCount(), std::size_t{0});
        camera.source()->unsubscribe(&recorder);
    }

    // Listeners come and go from several threads while a fast camera streams and reconnects.
    void listenersComeAndGoUnderLoad()
    {
        const SCamera camera("F");
        QVERIFY(camera.connect());
        std::atomic<bool> done{false};
        std::vector<std::thread> threads;
        for (int t = 0; t < 3; ++t) {
            threads.emplace_back([&] {
                while (!done) {
                    CRecorder recorder;
                    camera.source()->subscribe(&recorder);
                    std::this_thread::sleep_for(std::chrono::milliseconds(2));
                    camera.source()->unsubscribe(&recorder);
                    if (recorder.strays != 0 || recorder.inside)
                        qFatal("a listener was called outside its subscription");
                }
            });
        }
        for (int round = 0; round < 20; ++round) {
            QTest::qWait(10);
            QVERIFY(camera.connect());
            camera.source()->setFrameRate(round % 2 ? 1000 : 500);
        }
        done = true;
        for (std::thread& thread : threads)
            thread.join();
        camera.controller->disconnect();
    }
};

QTEST_GUILESS_MAIN(tst_CEmulatorFrameSource)
#include "tst_cemulatorframesource.moc"
