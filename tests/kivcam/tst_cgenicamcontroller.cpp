// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The GenICam controller on the emulated GenICam camera: Aravis's fake camera in this process,
// described by the camera library's own GenICam file. Nothing here touches a network.

#include <kivcam/IFrameListener.h>
#include <kivcam/genicam/CAravisDevice.h>
#include <kivcam/genicam/CGenICamController.h>
#include <kivcam/genicam/CGenICamEmulatorDevice.h>

#include <QtTest>

#include <arv.h>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>

using namespace kiv;
using namespace kiv::cam;

namespace {

QByteArray str(const CString& text)
{
    return QByteArray(text.data());
}

SDeviceInfo record(const char* serial)
{
    SDeviceInfo device;
    device.interfaceName = "GenICamEmulator";
    device.parameters.Add(CParameters::CEntry(
        "Serial", "Serial number", "", CParameters::EDIT_NEVER, CVariant(serial)));
    return device;
}

SCameraInfo camera(const char* model = "Emulated GenICam")
{
    SCameraInfo info;
    info.model = model;
    return info;
}

TSharedPtr<IDevice> openDevice(const char* serial = "GC-T1")
{
    TSharedPtr<IDevice> device(new CGenICamEmulatorDevice);
    return device->open(record(serial), true) ? device : TSharedPtr<IDevice>();
}

// Runs a request and waits for its outcome.
template <typename Request> SGenICamResult wait(Request request)
{
    auto promise = std::make_shared<std::promise<SGenICamResult>>();
    std::future<SGenICamResult> future = promise->get_future();
    request([promise](const SGenICamResult& result) { promise->set_value(result); });
    if (future.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
        SGenICamResult late;
        late.message = "no answer";
        return late;
    }
    return future.get();
}

class CTreeLog : public IGenICamListener {
public:
    void treeChanged() override
    {
        std::lock_guard lock(m_mutex);
        m_events << "tree";
    }
    void featuresChanged(const TArray<SGenICamFeature>& rows) override
    {
        std::lock_guard lock(m_mutex);
        QStringList names;
        for (const SGenICamFeature& row : rows)
            names << QString::fromUtf8(row.name.data());
        m_events << "features " + names.join(',');
        for (const SGenICamFeature& row : rows)
            m_last[QString::fromUtf8(row.name.data())] = row;
    }
    void connectionLost(const CString& message) override
    {
        std::lock_guard lock(m_mutex);
        m_events << "lost " + QString::fromUtf8(message.data());
    }
    QStringList events()
    {
        std::lock_guard lock(m_mutex);
        return m_events;
    }
    // The row as the last change announced it.
    SGenICamFeature last(const char* name)
    {
        std::lock_guard lock(m_mutex);
        return m_last.value(name);
    }
    void clear()
    {
        std::lock_guard lock(m_mutex);
        m_events.clear();
        m_last.clear();
    }

private:
    std::mutex m_mutex;
    QStringList m_events;
    QHash<QString, SGenICamFeature> m_last;
};

class CFrames : public IFrameListener {
public:
    void streamStarted(const SCameraInfo& camera) override
    {
        std::lock_guard lock(m_mutex);
        ++m_starts;
        m_width = camera.width;
        m_height = camera.height;
    }
    void frameArrived(const TSharedPtr<const CImage>& frame) override
    {
        std::lock_guard lock(m_mutex);
        ++m_frames;
        m_frameWidth = frame->width();
        m_frameHeight = frame->height();
    }
    void streamStopped() override
    {
        std::lock_guard lock(m_mutex);
        ++m_stops;
    }
    int frames()
    {
        std::lock_guard lock(m_mutex);
        return m_frames;
    }
    QSize frameSize()
    {
        std::lock_guard lock(m_mutex);
        return QSize(m_frameWidth, m_frameHeight);
    }
    QSize startedSize()
    {
        std::lock_guard lock(m_mutex);
        return QSize(m_width, m_height);
    }
    int starts()
    {
        std::lock_guard lock(m_mutex);
        return m_starts;
    }
    int stops()
    {
        std::lock_guard lock(m_mutex);
        return m_stops;
    }

private:
    std::mutex m_mutex;
    int m_frames = 0;
    int m_frameWidth = 0;
    int m_frameHeight = 0;
    int m_width = 0;
    int m_height = 0;
    int m_starts = 0;
    int m_stops = 0;
};

const SGenICamFeature* rowOf(const TArray<SGenICamFeature>& rows, const char* name)
{
    for (const SGenICamFeature& row : rows) {
        if (row.name == CString(name))
            return &row;
    }
    return nullptr;
}

} // namespace

class tst_CGenICamController : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void connectsAndReadsTheWholeTree()
    {
        // The listener outlives the controller, whose destructor still tells it.
        CTreeLog log;
        CGenICamController controller;
        controller.subscribe(&log);
        QVERIFY(controller.features().empty());
        const TSharedPtr<IDevice> device = openDevice();
        QVERIFY(device);
        QVERIFY2(controller.connect(device, camera()), controller.errorMessage().data());
        QVERIFY(controller.isConnected());
        QVERIFY(controller.hasControl());
        QCOMPARE(str(controller.name()), QByteArray("GenICam"));
        QCOMPARE(log.events(), QStringList{"tree"});

        const TArray<SGenICamFeature> rows = controller.features();
        QVERIFY(rows.count() > 20);
        // Depth first: every row's category comes before it and is a category.
        QSet<int> visibilities;
        for (const SGenICamFeature& row : rows) {
            QCOMPARE(row.row, int(&row - rows.begin()));
            if (row.parent >= 0) {
                QVERIFY(row.parent < row.row);
                QCOMPARE(rows[row.parent].type, SGenICamFeature::CATEGORY);
                QCOMPARE(row.depth, rows[row.parent].depth + 1);
            } else {
                QCOMPARE(row.depth, 0);
            }
            visibilities << row.visibility;
            // Every feature reads, computed ones without limits (PayloadSize) included.
            QVERIFY2(row.error.empty(), row.error.data());
        }
        QCOMPARE(visibilities,
            (QSet<int>{SGenICamFeature::BEGINNER, SGenICamFeature::EXPERT, SGenICamFeature::GURU,
                SGenICamFeature::INVISIBLE}));

        const SGenICamFeature* width = rowOf(rows, "Width");
        QVERIFY(width);
        QCOMPARE(width->type, SGenICamFeature::INTEGER);
        QCOMPARE(width->intInc, std::int64_t{16});
        QCOMPARE(width->unit, CString("px"));
        // Locked while the camera acquires, which it does from connect on.
        QVERIFY(controller.isAcquiring());
        QCOMPARE(width->access, SGenICamFeature::READ_ONLY);
        QVERIFY(width->accessReason.length() > 0);
        const SGenICamFeature* exposure = rowOf(rows, "ExposureTime");
        QVERIFY(exposure);
        QCOMPARE(exposure->type, SGenICamFeature::FLOAT);
        QCOMPARE(exposure->unit, CString("us"));
        QCOMPARE(exposure->access, SGenICamFeature::READ_WRITE);
        QVERIFY(exposure->floatMax > exposure->floatMin);
        const SGenICamFeature* format = rowOf(rows, "PixelFormat");
        QVERIFY(format);
        QCOMPARE(format->type, SGenICamFeature::ENUMERATION);
        QVERIFY(format->entries.contains("Mono8"));
        QCOMPARE(format->entries.count(), format->entryDisplayNames.count());
        QCOMPARE(rowOf(rows, "AcquisitionStart")->type, SGenICamFeature::COMMAND);
        QCOMPARE(rowOf(rows, "DeviceUserID")->type, SGenICamFeature::STRING);
        QCOMPARE(str(rowOf(rows, "DeviceModelName")->value), QByteArray("Emulated GenICam"));
        QCOMPARE(str(rowOf(rows, "PayloadSize")->value), QByteArray("262144"));

        SGenICamFeature found;
        QVERIFY(controller.feature("Width", found));
        QCOMPARE(found.name, CString("Width"));
        QVERIFY(!controller.feature("NoSuchFeature", found));

        controller.disconnect();
        QVERIFY(!controller.isConnected());
        QVERIFY(controller.features().empty());
        QCOMPARE(log.events(), (QStringList{"tree", "tree"}));
        controller.unsubscribe(&log);
    }

    void refusesAnotherModelAndOtherDevices()
    {
        CGenICamController controller;
        QVERIFY(!controller.connect(openDevice(), camera("Model Z")));
        QCOMPARE(str(controller.errorMessage()),
            QByteArray("The camera is a \"Emulated GenICam\", not the \"Model Z\" its description "
                       "names."));
        QVERIFY(!controller.isConnected());
        // A description without a model takes the camera as it is.
        QVERIFY(controller.connect(openDevice(), camera("")));
        QVERIFY(controller.errorMessage().empty());
        TSharedPtr<IDevice> closed(new CGenICamEmulatorDevice);
        QVERIFY(!controller.connect(closed, camera()));
        QCOMPARE(str(controller.errorMessage()),
            QByteArray("The device is not an open GenICam camera."));
        QVERIFY(!controller.connect({}, camera()));
    }

    void requestsWithoutACameraFailAtOnce()
    {
        CGenICamController controller;
        const SGenICamResult result
            = wait([&](auto done) { controller.setFeature("Width", "64", done); });
        QVERIFY(!result.ok);
        QCOMPARE(str(result.message), QByteArray("The camera is not connected."));
        QVERIFY(!wait([&](auto done) { controller.setSensorWindow({}, done); }).ok);
        QVERIFY(!wait([&](auto done) { controller.startAcquisition(done); }).ok);
    }

    void writesAreCheckedThenReadBackWithWhatTheyChanged()
    {
        CTreeLog log;
        CGenICamController controller;
        QVERIFY(controller.connect(openDevice(), camera()));
        controller.subscribe(&log);

        SGenICamResult result
            = wait([&](auto done) { controller.setFeature("ExposureTime", "-5", done); });
        QVERIFY(!result.ok);
        QVERIFY2(str(result.message).startsWith("ExposureTime: -5 us is outside the range"),
            result.message.data());
        result = wait([&](auto done) { controller.setFeature("Width", "96", done); });
        QVERIFY(!result.ok);
        QVERIFY2(str(result.message).startsWith("Width cannot be written now. Locked"),
            result.message.data());
        result = wait([&](auto done) { controller.setFeature("NoSuchFeature", "1", done); });
        QCOMPARE(str(result.message), QByteArray("The camera has no feature \"NoSuchFeature\"."));

        // Stopped, the size may change; a width off its increment is refused with the rule.
        QVERIFY(wait([&](auto done) { controller.stopAcquisition(done); }).ok);
        QVERIFY(!controller.isAcquiring());
        SGenICamFeature offset;
        QVERIFY(controller.feature("OffsetX", offset));
        const std::int64_t offsetMax = offset.intMax;
        result = wait([&](auto done) { controller.setFeature("Width", "100", done); });
        QVERIFY(!result.ok);
        QVERIFY2(str(result.message).contains("not a valid step"), result.message.data());
        log.clear();
        result = wait([&](auto done) { controller.setFeature("Width", "256", done); });
        QVERIFY2(result.ok, result.message.data());
        // The width changed, and with it the room for the offset.
        const QStringList events = log.events();
        QCOMPARE(events.count(), 1);
        QVERIFY2(
            events[0].contains("Width") && events[0].contains("OffsetX"), qPrintable(events[0]));
        QCOMPARE(str(log.last("Width").value), QByteArray("256"));
        QCOMPARE(log.last("OffsetX").intMax, offsetMax + (512 - 256));
        QVERIFY(controller.feature("Width", offset));
        QCOMPARE(str(offset.value), QByteArray("256"));
        controller.unsubscribe(&log);
    }

    void anEntryComesAndGoesWithAnotherFeature()
    {
        CGenICamController controller;
        QVERIFY(controller.connect(openDevice(), camera()));
        QVERIFY(wait([&](auto done) { controller.stopAcquisition(done); }).ok);
        QVERIFY(wait([&](auto done) { controller.setFeature("PixelFormat", "Mono8", done); }).ok);
        SGenICamFeature pattern;
        QVERIFY(controller.feature("TestPattern", pattern));
        QVERIFY(!pattern.entries.contains("Gradient"));
        SGenICamResult result
            = wait([&](auto done) { controller.setFeature("TestPattern", "Gradient", done); });
        QVERIFY(!result.ok);
        QVERIFY2(str(result.message).contains("is not one of the entries available now"),
            result.message.data());
        QVERIFY(wait([&](auto done) { controller.setFeature("PixelFormat", "Mono16", done); }).ok);
        QVERIFY(controller.feature("TestPattern", pattern));
        QVERIFY(pattern.entries.contains("Gradient"));
        result = wait([&](auto done) { controller.setFeature("TestPattern", "Gradient", done); });
        QVERIFY2(result.ok, result.message.data());
    }

    void commandsRun()
    {
        CGenICamController controller;
        QVERIFY(controller.connect(openDevice(), camera()));
        SGenICamResult result
            = wait([&](auto done) { controller.execute("TestCounterReset", done); });
        QVERIFY2(result.ok, result.message.data());
        result = wait([&](auto done) { controller.execute("Width", done); });
        QCOMPARE(str(result.message), QByteArray("Width is not a command."));
    }

    void picturesFollowTheAcquisition()
    {
        CFrames frames;
        CGenICamController controller;
        controller.frameSource()->subscribe(&frames);
        QVERIFY(controller.connect(openDevice(), camera()));
        QTRY_VERIFY_WITH_TIMEOUT(frames.frames() >= 3, 10000);
        QCOMPARE(frames.frameSize(), QSize(512, 512));
        QVERIFY(wait([&](auto done) { controller.stopAcquisition(done); }).ok);
        QVERIFY(!controller.isAcquiring());
        QCOMPARE(frames.stops(), 1);
        // The commands of the tree do the same.
        QVERIFY(wait([&](auto done) { controller.execute("AcquisitionStart", done); }).ok);
        QVERIFY(controller.isAcquiring());
        QCOMPARE(frames.starts(), 2);
        QVERIFY(wait([&](auto done) { controller.execute("AcquisitionStop", done); }).ok);
        QVERIFY(!controller.isAcquiring());
        QCOMPARE(frames.stops(), 2);
        const int stopped = frames.frames();
        QTest::qWait(300);
        QCOMPARE(frames.frames(), stopped);
        QVERIFY(wait([&](auto done) { controller.startAcquisition(done); }).ok);
        QVERIFY(controller.isAcquiring());
        QTRY_VERIFY_WITH_TIMEOUT(frames.frames() >= stopped + 3, 10000);
        controller.disconnect();
        QCOMPARE(frames.stops(), 3);
        controller.frameSource()->unsubscribe(&frames);
    }

    void theSensorWindowKeepsTheCameraRules()
    {
        CFrames frames;
        CGenICamController controller;
        controller.frameSource()->subscribe(&frames);
        QVERIFY(controller.connect(openDevice(), camera()));
        // The whole sensor: the offsets' maxima are 0 now.
        SGenICamResult result = wait([&](auto done) {
            controller.setSensorWindow({0, 0, 1024, 768}, done);
        });
        QVERIFY2(result.ok, result.message.data());
        SSensorWindow window = controller.sensorWindow();
        QCOMPARE(window.width, std::int64_t{1024});
        QCOMPARE(window.height, std::int64_t{768});
        // Moving into the middle needs the size shrunk before the offset moves; every value is
        // snapped down to its own increment (offsets 4 and 2, sizes 16 and 2).
        result = wait([&](auto done) { controller.setSensorWindow({101, 51, 333, 257}, done); });
        QVERIFY2(result.ok, result.message.data());
        window = controller.sensorWindow();
        QCOMPARE(window.x, std::int64_t{100});
        QCOMPARE(window.y, std::int64_t{50});
        QCOMPARE(window.width, std::int64_t{320});
        QCOMPARE(window.height, std::int64_t{256});
        // Acquisition ran before and runs again, at the new size.
        QVERIFY(controller.isAcquiring());
        QTRY_COMPARE_WITH_TIMEOUT(frames.frameSize(), QSize(320, 256), 10000);
        QCOMPARE(frames.startedSize(), QSize(320, 256));
        // Back to the whole sensor needs the offset moved before the size grows; a window past
        // the sensor's edge is clamped to it.
        result = wait([&](auto done) { controller.setSensorWindow({0, 0, 4000, 4000}, done); });
        QVERIFY2(result.ok, result.message.data());
        window = controller.sensorWindow();
        QCOMPARE(window.x, std::int64_t{0});
        QCOMPARE(window.width, std::int64_t{1024});
        QCOMPARE(window.height, std::int64_t{768});
        controller.disconnect();
        controller.frameSource()->unsubscribe(&frames);
    }

    void manyRequestsInARowAndADisconnectAmongThem()
    {
        CGenICamController controller;
        QVERIFY(controller.connect(openDevice(), camera()));
        std::atomic<int> answered{0};
        for (int i = 0; i < 50; ++i)
            controller.setFeature("ExposureTime", QByteArray::number(1000 + i).constData(),
                [&](const SGenICamResult&) { ++answered; });
        controller.disconnect();
        // Requests queued before a disconnect are carried out, and each is answered.
        QTRY_COMPARE(answered.load(), 50);
        QVERIFY(!controller.isConnected());
    }

    void aListenerMayDisconnectFromWithinItsCall()
    {
        struct CDisconnecter : CFrames {
            IController* controller = nullptr;
            void frameArrived(const TSharedPtr<const CImage>& frame) override
            {
                CFrames::frameArrived(frame);
                controller->disconnect();
            }
        } frames;
        CGenICamController controller;
        frames.controller = &controller;
        controller.frameSource()->subscribe(&frames);
        QVERIFY(controller.connect(openDevice(), camera()));
        QTRY_VERIFY_WITH_TIMEOUT(!controller.isConnected(), 10000);
        QTRY_COMPARE(frames.stops(), 1);
        QTest::qWait(200);
        QCOMPARE(frames.frames(), 1);
        // The worker has closed the camera: it connects again.
        QTRY_VERIFY(controller.features().empty());
        frames.controller = nullptr;
        controller.frameSource()->unsubscribe(&frames);
        QVERIFY(controller.connect(openDevice(), camera()));
    }

    // A camera whose pictures stop is lost: the listeners and the lost handler hear it once, with
    // the same words, and the controller stays connected until disconnect().
    void aCameraThatFallsSilentIsLost()
    {
        CTreeLog log;
        CGenICamController controller;
        controller.subscribe(&log);
        std::mutex mutex;
        QByteArrayList heard;
        controller.setLostHandler([&](const CString& reason) {
            const std::lock_guard lock(mutex);
            heard << str(reason);
        });
        CFrames frames;
        controller.frameSource()->subscribe(&frames);
        const TSharedPtr<IDevice> device = openDevice();
        QVERIFY(controller.connect(device, camera()));
        QTRY_VERIFY_WITH_TIMEOUT(frames.frames() >= 2, 10000);
        // The next picture of Aravis's fake camera is due in 6 s, beyond the 3 s after which a
        // stream counts as dead. The controller's worker is idle: the test may use the device.
        constexpr guint32 FramePeriodRegister = 0x138; // microseconds
        auto* aravis = dynamic_cast<CAravisDevice*>(device.get());
        QVERIFY(
            arv_device_write_register(aravis->arvDevice(), FramePeriodRegister, 6000000, nullptr));
        QTRY_VERIFY_WITH_TIMEOUT(
            [&] {
                const std::lock_guard lock(mutex);
                return !heard.isEmpty();
            }(),
            15000);
        QVERIFY(controller.isConnected());
        QVERIFY(!controller.hasControl());
        const std::lock_guard lock(mutex);
        QCOMPARE(heard.size(), 1);
        QCOMPARE(heard.first(), str(controller.errorMessage()));
        QVERIFY(log.events().contains("lost " + QString::fromUtf8(heard.first())));
        controller.frameSource()->unsubscribe(&frames);
        controller.disconnect();
    }

    void destroyedWhileConnected()
    {
        CFrames frames;
        {
            CGenICamController controller;
            controller.frameSource()->subscribe(&frames);
            QVERIFY(controller.connect(openDevice(), camera()));
            QTRY_VERIFY_WITH_TIMEOUT(frames.frames() >= 1, 10000);
        }
        QCOMPARE(frames.stops(), 1);
    }
};

QTEST_GUILESS_MAIN(tst_CGenICamController)
#include "tst_cgenicamcontroller.moc"
