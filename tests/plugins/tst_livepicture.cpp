// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/PixelType.h>
#include <kivcam/IFrameSource.h>
#include <kivcamui/plugin/LivePicture.h>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

using namespace kiv;
using namespace kiv::cam;
using namespace kiv::cam::ui;

namespace {

// A frame source of the test's own: the test starts and stops its stream, and hands it images
// that it delivers to its listeners from a thread of its own, as a camera's stream does.
class CTestSource : public IFrameSource {
public:
    ~CTestSource() override { stopFlow(); }

    void subscribe(IFrameListener* listener) override
    {
        const std::lock_guard lock(m_mutex);
        if (std::find(m_listeners.begin(), m_listeners.end(), listener) != m_listeners.end())
            return;
        m_listeners.push_back(listener);
        ++m_subscriptions;
        if (m_running)
            listener->streamStarted(m_camera);
    }
    void unsubscribe(IFrameListener* listener) override
    {
        // Waits for a call that is running: the lock is held for every call.
        const std::lock_guard lock(m_mutex);
        m_listeners.erase(
            std::remove(m_listeners.begin(), m_listeners.end(), listener), m_listeners.end());
    }
    double frameRate() const override { return 100; }
    bool setFrameRate(double) override { return false; }

    void start(const SCameraInfo& camera)
    {
        const std::lock_guard lock(m_mutex);
        m_camera = camera;
        m_running = true;
        for (IFrameListener* listener : m_listeners)
            listener->streamStarted(camera);
    }
    void stop()
    {
        const std::lock_guard lock(m_mutex);
        m_running = false;
        for (IFrameListener* listener : m_listeners)
            listener->streamStopped();
    }
    // Delivers the images one after the other from a thread of its own, and waits for it.
    void send(const std::vector<TSharedPtr<const CImage>>& frames)
    {
        std::thread thread([this, frames] {
            for (const TSharedPtr<const CImage>& frame : frames)
                deliver(frame);
        });
        thread.join();
    }
    // Delivers images made by make, numbered on from 0, as fast as it can until stopFlow.
    void startFlow(std::function<TSharedPtr<const CImage>(std::uint64_t)> make)
    {
        m_flowing = true;
        m_flow = std::thread([this, make] {
            for (std::uint64_t number = 0; m_flowing; ++number)
                deliver(make(number));
        });
    }
    void stopFlow()
    {
        m_flowing = false;
        if (m_flow.joinable())
            m_flow.join();
    }

    int listenerCount()
    {
        const std::lock_guard lock(m_mutex);
        return static_cast<int>(m_listeners.size());
    }
    int subscriptions()
    {
        const std::lock_guard lock(m_mutex);
        return m_subscriptions;
    }

private:
    void deliver(const TSharedPtr<const CImage>& frame)
    {
        const std::lock_guard lock(m_mutex);
        for (IFrameListener* listener : m_listeners)
            listener->frameArrived(frame);
    }

    std::mutex m_mutex;
    std::vector<IFrameListener*> m_listeners;
    int m_subscriptions = 0;
    SCameraInfo m_camera;
    bool m_running = false;
    std::atomic<bool> m_flowing{false};
    std::thread m_flow;
};

SCameraInfo cameraOf(
    const char* pixelType, int adBits, const char* filter, int width = 8, int height = 2)
{
    SCameraInfo camera;
    camera.name = "Test";
    camera.pixelType = ParsePixelType(CString(pixelType));
    camera.adBits = adBits;
    camera.reduceFilter = filter;
    camera.width = static_cast<std::uint16_t>(width);
    camera.height = static_cast<std::uint16_t>(height);
    return camera;
}

// An image of the camera's format, numbered, whose first samples are the values given, in row
// order, and whose other samples repeat the last of them.
TSharedPtr<const CImage> frameOf(
    const SCameraInfo& camera, std::uint64_t number, const std::vector<int>& values)
{
    const TSharedPtr<CImage> image = CImage::Create(camera.width, camera.height, camera.pixelType);
    image->adBits = camera.adBits;
    image->frameNumber = number;
    for (int y = 0; y < image->height(); ++y) {
        for (int x = 0; x < image->width(); ++x) {
            const std::size_t index = static_cast<std::size_t>(y * image->width() + x);
            const int value = values[std::min(index, values.size() - 1)];
            if (image->dataType() == DATA_TYPE_UINT8)
                image->row<std::uint8_t>(y)[x] = static_cast<std::uint8_t>(value);
            else
                image->row<std::uint16_t>(y)[x] = static_cast<std::uint16_t>(value);
        }
    }
    return image;
}

// The grey levels of the first samples of the shown picture, in row order.
std::vector<int> greysOf(const LivePicture& live, int count)
{
    const QImage image = live.image();
    std::vector<int> greys;
    for (int i = 0; i < count; ++i)
        greys.push_back(qGray(image.pixel(i % image.width(), i / image.width())));
    return greys;
}

// The names of the signals a live picture emits, in their order.
class CSignalLog : public QObject {
public:
    explicit CSignalLog(LivePicture* live)
    {
        record(live, &LivePicture::cameraChanged, "camera");
        record(live, &LivePicture::imageChanged, "image");
        record(live, &LivePicture::measuredFrameRateChanged, "rate");
        record(live, &LivePicture::streamingChanged, "streaming");
        record(live, &LivePicture::rangeChanged, "range");
    }

    QStringList names;
    std::vector<QThread*> threads;

private:
    void record(LivePicture* live, void (LivePicture::*signal)(), const char* name)
    {
        connect(live, signal, this, [this, name] {
            names << name;
            threads.push_back(QThread::currentThread());
        });
    }
};

} // namespace

// The live picture the controller UI plugins share, over a frame source of the test's own.
class tst_LivePicture : public QObject {
    Q_OBJECT

private slots:
    void picturesArriveOnTheGuiThread()
    {
        CTestSource source;
        LivePicture live(&source);
        QCOMPARE(source.listenerCount(), 1);
        CSignalLog log(&live);
        const SCameraInfo camera = cameraOf("Mono14", 14, "Linear16");
        source.start(camera);
        QCOMPARE(log.names, QStringList());
        QTRY_VERIFY(live.streaming());
        QCOMPARE(log.names, QStringList({"camera", "image", "range", "streaming"}));
        QCOMPARE(live.imageFormat(), QString("8 x 2, Mono14, 14 bits"));
        QVERIFY(live.image().isNull());

        log.names.clear();
        source.send({frameOf(camera, 0, {0, 16383})});
        QTRY_COMPARE(live.frameCount(), qint64{1});
        log.names.removeAll("rate"); // measured only when the picture came half a second late
        QCOMPARE(log.names, QStringList({"image"}));
        QCOMPARE(live.image().size(), QSize(8, 2));
        QCOMPARE(live.image().format(), QImage::Format_RGB32);
        QCOMPARE(live.droppedFrames(), qint64{0});
        for (QThread* thread : log.threads)
            QCOMPARE(thread, QThread::currentThread());

        log.names.clear();
        source.stop();
        QTRY_VERIFY(!live.streaming());
        QCOMPARE(log.names, QStringList({"streaming"}));
        QVERIFY(!live.image().isNull()); // the last picture stays
    }

    void droppedFramesAreCounted()
    {
        CTestSource source;
        LivePicture live(&source);
        const SCameraInfo camera = cameraOf("Mono14", 14, "Linear16");
        source.start(camera);
        // The stream starts at 5; 5 to 7 replaced before the GUI took them.
        source.send({frameOf(camera, 5, {1, 2}), frameOf(camera, 6, {1, 3}),
            frameOf(camera, 7, {1, 4}), frameOf(camera, 8, {1, 5})});
        QTRY_COMPARE(live.frameCount(), qint64{1});
        QCOMPARE(live.droppedFrames(), qint64{3});
        // The next one shown: nothing missed; then a gap in the numbers, 10 and 11.
        source.send({frameOf(camera, 9, {1, 6})});
        QTRY_COMPARE(live.frameCount(), qint64{2});
        QCOMPARE(live.droppedFrames(), qint64{3});
        source.send({frameOf(camera, 12, {1, 7})});
        QTRY_COMPARE(live.frameCount(), qint64{3});
        QCOMPARE(live.droppedFrames(), qint64{5});
        // A number that goes back counts nothing.
        source.send({frameOf(camera, 2, {1, 8})});
        QTRY_COMPARE(live.frameCount(), qint64{4});
        QCOMPARE(live.droppedFrames(), qint64{5});

        // A picture that waits when the stream stops is never shown; a new stream counts anew.
        source.send({frameOf(camera, 13, {1, 9})});
        source.stop();
        QTRY_VERIFY(!live.streaming());
        QCOMPARE(live.frameCount(), qint64{4});
        source.start(camera);
        QTRY_VERIFY(live.streaming());
        QCOMPARE(live.frameCount(), qint64{0});
        QCOMPARE(live.droppedFrames(), qint64{0});
        source.send({frameOf(camera, 0, {1, 2})});
        QTRY_COMPARE(live.frameCount(), qint64{1});
        QCOMPARE(live.droppedFrames(), qint64{0});
    }

    void rangeMapsFourteenBitSamples()
    {
        CTestSource source;
        LivePicture live(&source);
        const SCameraInfo camera = cameraOf("Mono14", 14, "Linear16");
        source.start(camera);
        QTRY_VERIFY(live.streaming());
        QVERIFY(live.hasRange());
        QCOMPARE(live.rangeMaximum(), 16383);
        QVERIFY(live.autoRange());
        QCOMPARE(live.rangeLow(), 0);
        QCOMPARE(live.rangeHigh(), 16383);

        QSignalSpy range(&live, &LivePicture::rangeChanged);
        live.setAutoRange(false);
        live.setRangeLow(1000);
        live.setRangeHigh(3000);
        live.setRangeHigh(3000); // unchanged: no signal
        QCOMPARE(range.count(), 3);
        QCOMPARE(live.rangeLow(), 1000);
        QCOMPARE(live.rangeHigh(), 3000);
        source.send({frameOf(camera, 0, {0, 1000, 1500, 2000, 3000, 16383, 2999, 1001})});
        QTRY_COMPARE(live.frameCount(), qint64{1});
        QCOMPARE(greysOf(live, 8), std::vector<int>({0, 0, 64, 128, 255, 255, 255, 0}));

        // Out of the scale: clamped; a low value above the high one moves it along.
        live.setRangeLow(-5);
        QCOMPARE(live.rangeLow(), 0);
        live.setRangeHigh(99999);
        QCOMPARE(live.rangeHigh(), 16383);
        live.setRangeLow(20000);
        QCOMPARE(live.rangeLow(), 16382);
        QCOMPARE(live.rangeHigh(), 16383);
        live.setRangeHigh(0);
        QCOMPARE(live.rangeLow(), 0);
        QCOMPARE(live.rangeHigh(), 1);
    }

    // Significant bits shifted up by the camera are read as the reduction filters read them.
    void rangeMapsSixteenBitSamples()
    {
        CTestSource source;
        LivePicture live(&source);
        const SCameraInfo camera = cameraOf("Mono16", 0, "Linear16");
        source.start(camera);
        QTRY_VERIFY(live.streaming());
        QCOMPARE(live.rangeMaximum(), 65535);
        QCOMPARE(live.rangeHigh(), 65535);
        live.setAutoRange(false);
        live.setRangeLow(10000);
        live.setRangeHigh(60000);
        source.send({frameOf(camera, 0, {9999, 10000, 35000, 60000, 65535})});
        QTRY_COMPARE(live.frameCount(), qint64{1});
        QCOMPARE(greysOf(live, 5), std::vector<int>({0, 0, 128, 255, 255}));

        // Another scale starts from the whole of it; the switch stays.
        const SCameraInfo shifted = cameraOf("Mono16", 12, "Linear16");
        source.stop();
        source.start(shifted);
        QTRY_COMPARE(live.rangeMaximum(), 4095);
        QCOMPARE(live.rangeLow(), 0);
        QCOMPARE(live.rangeHigh(), 4095);
        QVERIFY(!live.autoRange());
        live.setRangeHigh(2048);
        const TSharedPtr<CImage> image = CImage::Create(2, 1, shifted.pixelType);
        image->adBits = 12;
        image->adBitShift = 4;
        image->row<std::uint16_t>(0)[0] = 1024 << 4;
        image->row<std::uint16_t>(0)[1] = 4095 << 4;
        source.send({image});
        QTRY_COMPARE(live.frameCount(), qint64{1});
        QCOMPARE(greysOf(live, 2), std::vector<int>({128, 255}));
    }

    void autoRangeStretchesEachPicture()
    {
        CTestSource source;
        LivePicture live(&source);
        const SCameraInfo camera = cameraOf("Mono14", 14, "Linear16");
        source.start(camera);
        live.setAutoRange(false);
        QTRY_VERIFY(live.streaming());
        live.setRangeHigh(100);
        live.setAutoRange(true);
        source.send({frameOf(camera, 0, {300, 100, 180})});
        QTRY_COMPARE(live.frameCount(), qint64{1});
        QCOMPARE(greysOf(live, 3), std::vector<int>({255, 0, 102}));
        source.send({frameOf(camera, 1, {5000, 6600, 13000})});
        QTRY_COMPARE(live.frameCount(), qint64{2});
        QCOMPARE(greysOf(live, 3), std::vector<int>({0, 51, 255}));
    }

    void eightBitImagesAreUnaffected()
    {
        CTestSource source;
        LivePicture live(&source);
        const SCameraInfo camera = cameraOf("Mono8", 8, "Passthrough8");
        source.start(camera);
        QTRY_VERIFY(live.streaming());
        QVERIFY(!live.hasRange());
        QCOMPARE(live.rangeMaximum(), 0);
        live.setAutoRange(false);
        live.setRangeLow(5);
        live.setRangeHigh(50);
        QCOMPARE(live.rangeLow(), 0);
        QCOMPARE(live.rangeHigh(), 0);
        source.send({frameOf(camera, 0, {0, 77, 200})});
        QTRY_COMPARE(live.frameCount(), qint64{1});
        QCOMPARE(greysOf(live, 3), std::vector<int>({0, 77, 200}));

        // Nor colour: Bayer samples of 16 bits are coloured by the camera's filter.
        const SCameraInfo bayer = cameraOf("BayerRG16", 0, "Colour", 2, 2);
        source.stop();
        source.start(bayer);
        QTRY_COMPARE(live.imageFormat(), QString("2 x 2, BayerRG16"));
        QVERIFY(!live.hasRange());
        source.send({frameOf(bayer, 0, {65535, 0, 0, 0})});
        QTRY_COMPARE(live.frameCount(), qint64{1});
        QCOMPARE(live.image().pixel(0, 0), qRgb(255, 0, 0));
    }

    // However fast images come, a picture is shown at most once per refresh of the screen (here
    // without one, 60 a second, less a tenth for jitter: 15 ms apart), and the others are counted.
    void noMorePicturesThanTheScreenShows()
    {
        CTestSource source;
        LivePicture live(&source);
        const SCameraInfo camera = cameraOf("Mono14", 14, "Linear16");
        source.start(camera);
        QTRY_VERIFY(live.streaming());
        QElapsedTimer elapsed;
        elapsed.start();
        source.startFlow([&camera](std::uint64_t number) {
            return frameOf(camera, number, {1, 2});
        });
        QTest::qWait(600);
        source.stopFlow();
        const qint64 shown = live.frameCount();
        QVERIFY2(shown >= 2 && shown <= elapsed.elapsed() / 15 + 1,
            qPrintable(QString("%1 pictures in %2 ms").arg(shown).arg(elapsed.elapsed())));
        QVERIFY2(live.droppedFrames() > 10 * shown,
            qPrintable(QString("%1 dropped").arg(live.droppedFrames())));
    }

    // A picture made for a stream that the GUI does not know yet waits for its start.
    void pictureBeforeItsStartWaits()
    {
        CTestSource source;
        LivePicture live(&source);
        const SCameraInfo camera = cameraOf("Mono14", 14, "Linear16");
        source.start(camera);
        source.send({frameOf(camera, 0, {1, 2})});
        QTRY_COMPARE(live.frameCount(), qint64{1});
        source.send({frameOf(camera, 1, {1, 2})}); // announced, not taken yet
        source.stop();
        source.start(camera);
        source.send({frameOf(camera, 40, {1, 2})});
        // The announcement of image 1, the stop and the start, in that order; image 40 is shown
        // a refresh after image 0.
        QCoreApplication::processEvents();
        QVERIFY(live.streaming());
        QTRY_COMPARE(live.frameCount(), qint64{1});
        QCOMPARE(live.droppedFrames(), qint64{0});
    }

    // A picture made while its stream runs already joins it.
    void lateSubscriberJoins()
    {
        CTestSource source;
        const SCameraInfo camera = cameraOf("Mono14", 14, "Linear16");
        source.start(camera);
        LivePicture live(&source);
        QVERIFY(!live.streaming());
        QTRY_VERIFY(live.streaming());
        QCOMPARE(live.imageFormat(), QString("8 x 2, Mono14, 14 bits"));
    }

    // Pictures go while images flow and are being handed to them, again and again; no image
    // reaches one afterwards (the sanitizers watch this), and each leaves the stream.
    void destroyedWhileFramesArrive()
    {
        CTestSource source;
        const SCameraInfo camera = cameraOf("Mono14", 14, "Linear16", 64, 48);
        source.start(camera);
        source.startFlow([&camera](std::uint64_t number) {
            return frameOf(camera, number, {int(number % 16384), 0, 16383});
        });
        for (int round = 0; round < 40; ++round) {
            auto live = std::make_unique<LivePicture>(&source);
            live->setAutoRange(round % 3 == 0);
            QCOMPARE(source.listenerCount(), 1);
            if (round % 2)
                QTRY_VERIFY(live->frameCount() >= 1);
            else
                QTest::qWait(round % 4);
            live.reset();
            QCOMPARE(source.listenerCount(), 0);
            QCoreApplication::processEvents();
        }
        source.stopFlow();
        QCOMPARE(source.subscriptions(), 40);
    }
};

QTEST_GUILESS_MAIN(tst_LivePicture)
#include "tst_livepicture.moc"
