// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// First: GLib's headers use "signals" as a name, which the library's headers need as Qt's.
#include "../kivcam/PlugTest.h"
#include "PoolBlocker.h"

#include <kivcam/udev/CDeviceWatcher.h>
#include <kivcamui/camera/CameraFinderModel.h>
#include <kivcamui/custom/CustomCameraSelectorModel.h>
#include <kivcamui/device/DeviceFinderModel.h>
#include <kivcamui/device/DeviceWatch.h>

#include <QElapsedTimer>
#include <QSemaphore>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

using kiv::cam::SDeviceEvent;

namespace {

// How long a test waits for a search that must not come: beyond the wait after an event.
constexpr int quietWait = DeviceWatch::burstWait + 150;

bool scanning(const QObject& model)
{
    return model.property("scanning").toBool();
}

} // namespace

// Counts the searches of a model as they start and end.
class ScanLog : public QObject {
    Q_OBJECT

public:
    explicit ScanLog(QObject* model) : m_model(model)
    {
        connect(model, SIGNAL(scanningChanged()), this, SLOT(scanningChanged()));
    }

    int started = 0;
    int ended = 0;

private slots:
    void scanningChanged() { scanning(*m_model) ? ++started : ++ended; }

private:
    QObject* m_model;
};

// The three discovery models side by side, in this order, each with the log of its searches:
// one plug or unplug reaches them all, so that they are tested at once.
class CModels {
public:
    CModels()
    {
        m_models.emplace_back(new kiv::cam::ui::CameraFinderModel);
        m_models.emplace_back(new DeviceFinderModel);
        m_models.emplace_back(new kiv::cam::ui::CustomCameraSelectorModel);
        for (const auto& model : m_models)
            m_logs.emplace_back(new ScanLog(model.get()));
    }

    // Through the models' QML interface.
    void SetWatchDevices(bool watch)
    {
        for (const auto& model : m_models)
            model->setProperty("watchDevices", watch);
    }
    QList<bool> WatchDevices() const
    {
        return Each<bool>([](const QObject& model, const ScanLog&) {
            return model.property("watchDevices").toBool();
        });
    }
    bool Scan()
    {
        bool started = true;
        for (const auto& model : m_models)
            started = QMetaObject::invokeMethod(model.get(), "scan") && started;
        return started;
    }

    QList<int> Started() const
    {
        return Each<int>([](const QObject&, const ScanLog& log) { return log.started; });
    }
    QList<int> Ended() const
    {
        return Each<int>([](const QObject&, const ScanLog& log) { return log.ended; });
    }
    QObject* at(int index) const { return m_models.at(index).get(); }
    // Destroys the models, in whichever state they are.
    void Destroy()
    {
        m_logs.clear();
        m_models.clear();
    }

private:
    template <typename T, typename Read> QList<T> Each(Read read) const
    {
        QList<T> values;
        for (std::size_t i = 0; i < m_models.size(); ++i)
            values << read(*m_models[i], *m_logs[i]);
        return values;
    }

    std::vector<std::unique_ptr<QObject>> m_models;
    std::vector<std::unique_ptr<ScanLog>> m_logs;
};

// Hears every event of the watcher, as the models' own listeners do; one subscribed after the
// models' has heard an event once their listeners have posted it.
class CProbe {
public:
    CProbe()
        : m_subscription(kiv::cam::deviceWatcher()->subscribe(
            [this](const SDeviceEvent&) { m_heard.release(); }))
    {
    }
    ~CProbe() { kiv::cam::deviceWatcher()->unsubscribe(m_subscription); }
    CProbe(const CProbe&) = delete;
    CProbe& operator=(const CProbe&) = delete;

    // Waits, without running the event loop, until it has heard that many more events.
    bool Heard(int count) { return m_heard.tryAcquire(count, 5000); }

private:
    QSemaphore m_heard;
    int m_subscription;
};

// CTest runs the test through umockdev-wrapper: the devices it plugs in and out are a fake udev
// world's. What the models find does not matter here, only that they search: with emulators
// off and the real transports kept out, a search finds nothing and takes no time.
class tst_DeviceWatch : public QObject {
    Q_OBJECT

    using Counts = QList<int>;

    // Plugs a camera in and lets the models take the event: their wait after it begins.
    bool PlugIntoTheWait(CProbe& probe, plugtest::SPlugged& camera)
    {
        camera = m_world.PlugCamera();
        if (!probe.Heard(1))
            return false;
        QCoreApplication::processEvents();
        return true;
    }

    plugtest::CPlugWorld m_world;

private slots:
    void initTestCase()
    {
        if (!plugtest::InFakeWorld())
            QSKIP("Run through umockdev-wrapper, which gives the test a fake udev world");
        QVERIFY(m_world.Make());
    }

    void offByDefault()
    {
        CModels models;
        QCOMPARE(models.WatchDevices(), QList<bool>({false, false, false}));
        CProbe probe;
        const plugtest::SPlugged camera = m_world.PlugCamera();
        QVERIFY(probe.Heard(1));
        QTest::qWait(quietWait);
        QCOMPARE(models.Started(), Counts({0, 0, 0}));
        m_world.Unplug(camera);
    }

    void plugAndUnplugStartSearches()
    {
        CModels models;
        std::vector<std::unique_ptr<QSignalSpy>> switched;
        std::vector<std::unique_ptr<QSignalSpy>> scanned;
        for (int i = 0; i < 3; ++i) {
            switched.emplace_back(new QSignalSpy(models.at(i), SIGNAL(watchDevicesChanged())));
            scanned.emplace_back(new QSignalSpy(models.at(i), SIGNAL(scannedChanged())));
        }
        const auto counts = [](const std::vector<std::unique_ptr<QSignalSpy>>& spies) {
            Counts values;
            for (const auto& spy : spies)
                values << spy->count();
            return values;
        };
        models.SetWatchDevices(true);
        QCOMPARE(models.WatchDevices(), QList<bool>({true, true, true}));
        QCOMPARE(counts(switched), Counts({1, 1, 1}));
        models.SetWatchDevices(true);
        QCOMPARE(counts(switched), Counts({1, 1, 1}));

        QElapsedTimer since;
        since.start();
        const plugtest::SPlugged camera = m_world.PlugCamera();
        QTRY_COMPARE_WITH_TIMEOUT(models.Started(), Counts({1, 1, 1}), 1000);
        QVERIFY2(since.elapsed() <= 1000, QByteArray::number(since.elapsed()));
        QTRY_COMPARE_WITH_TIMEOUT(counts(scanned), Counts({1, 1, 1}), 5000);

        since.start();
        m_world.Unplug(camera);
        QTRY_COMPARE_WITH_TIMEOUT(models.Started(), Counts({2, 2, 2}), 1000);
        QVERIFY2(since.elapsed() <= 1000, QByteArray::number(since.elapsed()));
        QTRY_COMPARE_WITH_TIMEOUT(models.Ended(), Counts({2, 2, 2}), 5000);
        QCOMPARE(counts(scanned), Counts({1, 1, 1}));
    }

    void burstGivesOneSearch()
    {
        CModels models;
        models.SetWatchDevices(true);
        CProbe probe;
        const plugtest::SPlugged first = m_world.PlugCamera();
        const plugtest::SPlugged second = m_world.PlugCamera();
        const plugtest::SPlugged port = m_world.PlugSerialAdapter();
        m_world.Unplug(first);
        m_world.Unplug(second);
        QVERIFY(probe.Heard(5));
        QTRY_COMPARE_WITH_TIMEOUT(models.Ended(), Counts({1, 1, 1}), 5000);
        QTest::qWait(quietWait);
        QCOMPARE(models.Started(), Counts({1, 1, 1}));
        m_world.Unplug(port);
    }

    // The searches are held in the pool's queue while the events come.
    void eventsDuringASearchGiveOneMore()
    {
        CModels models;
        models.SetWatchDevices(true);
        CProbe probe;
        PoolBlocker blocker;
        QVERIFY(models.Scan());
        QCOMPARE(models.Started(), Counts({1, 1, 1}));
        const plugtest::SPlugged camera = m_world.PlugCamera();
        m_world.Unplug(camera);
        QVERIFY(probe.Heard(2));
        QTest::qWait(quietWait);
        QCOMPARE(models.Started(), Counts({1, 1, 1})); // never two at once

        blocker.release();
        QTRY_COMPARE_WITH_TIMEOUT(models.Ended(), Counts({1, 1, 1}), 5000);
        QElapsedTimer since;
        since.start();
        QTRY_COMPARE_WITH_TIMEOUT(models.Started(), Counts({2, 2, 2}), 1000);
        QVERIFY2(since.elapsed() <= 1000, QByteArray::number(since.elapsed()));
        QTRY_COMPARE_WITH_TIMEOUT(models.Ended(), Counts({2, 2, 2}), 5000);
        QTest::qWait(quietWait);
        QCOMPARE(models.Started(), Counts({2, 2, 2}));
    }

    // An event in the models' wait, and one posted to them but not yet delivered: switching off
    // forgets both.
    void switchingOffForgetsTheEvents()
    {
        CModels models;
        models.SetWatchDevices(true);
        CProbe probe;
        plugtest::SPlugged camera;
        QVERIFY(PlugIntoTheWait(probe, camera));
        m_world.Unplug(camera);
        QVERIFY(probe.Heard(1));
        models.SetWatchDevices(false);
        QCOMPARE(models.WatchDevices(), QList<bool>({false, false, false}));
        QTest::qWait(quietWait);
        QCOMPARE(models.Started(), Counts({0, 0, 0}));
    }

    // A search started by hand in the wait after an event covers that event.
    void searchByHandCoversTheWait()
    {
        CModels models;
        models.SetWatchDevices(true);
        CProbe probe;
        plugtest::SPlugged camera;
        QVERIFY(PlugIntoTheWait(probe, camera));
        QVERIFY(models.Scan());
        QTRY_COMPARE_WITH_TIMEOUT(models.Ended(), Counts({1, 1, 1}), 5000);
        QTest::qWait(quietWait);
        QCOMPARE(models.Started(), Counts({1, 1, 1}));
        m_world.Unplug(camera);
    }

    // Models destroyed while an event is on its way to them, while they wait after one, and
    // while they search with another search asked for: nothing reaches them once they are gone.
    void destroyedWhileWatching()
    {
        CProbe probe;
        CModels posted;
        CModels waiting;
        CModels searching;
        for (CModels* models : {&posted, &waiting, &searching})
            models->SetWatchDevices(true);
        PoolBlocker blocker;
        QVERIFY(searching.Scan());
        plugtest::SPlugged camera;
        QVERIFY(PlugIntoTheWait(probe, camera));
        m_world.Unplug(camera);
        QVERIFY(probe.Heard(1));
        waiting.Destroy();
        searching.Destroy();
        posted.Destroy();
        blocker.release();
        QVERIFY(QThreadPool::globalInstance()->waitForDone(5000));
        QCoreApplication::processEvents();
    }

    // Every model let go of the watcher when it was switched off or destroyed.
    void cleanupTestCase() { QVERIFY(!kiv::cam::deviceWatcher()->watching()); }
};

QTEST_MAIN(tst_DeviceWatch)
#include "tst_devicewatch.moc"
