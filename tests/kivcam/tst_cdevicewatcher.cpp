// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "PlugTest.h"

#include <kiv/Platform.h>
#include <kivcam/udev/CDeviceWatcher.h>

#include <QDir>
#include <QFile>
#include <QSemaphore>
#include <QStringList>
#include <QtTest>

#include <atomic>
#include <mutex>
#include <sys/resource.h>
#include <thread>
#include <vector>

using namespace kiv;
using namespace kiv::cam;

namespace {

CDeviceWatcher* watcher()
{
    return deviceWatcher();
}

// An event as one line: "added camera <sysfs path> <node>".
QString line(const SDeviceEvent& event)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(event.change == SDeviceEvent::DEVICE_ADDED ? "added" : "removed",
            event.kind == SDeviceEvent::KIND_USB3_VISION_CAMERA ? "camera" : "port",
            event.sysPath.data(), event.node.data());
}

QString line(const char* change, const char* kind, const plugtest::SPlugged& device)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(change, kind, device.path.c_str(), device.node.c_str());
}

// What a listener heard, in its order.
class CHeard {
public:
    CDeviceWatcher::Listener Listener()
    {
        return [this](const SDeviceEvent& event) {
            const std::lock_guard lock(m_mutex);
            m_lines << line(event);
        };
    }
    QStringList Lines() const
    {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }
    // Whether it heard that many events in time.
    bool WaitFor(int count) const
    {
        return QTest::qWaitFor([&] { return Lines().size() >= count; }, 5000);
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_lines;
};

// The threads of this process that are a watcher's.
int watcherThreads()
{
    int count = 0;
    const QDir tasks("/proc/self/task");
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(tasks.filePath(task + "/comm"));
        if (name.open(QIODevice::ReadOnly)
            && name.readAll().trimmed() == QByteArray(CDeviceWatcher::ThreadName))
            ++count;
    }
    return count;
}

} // namespace

// CTest runs the test through umockdev-wrapper: the devices it plugs in and out are a fake udev
// world's, whose events only this process receives.
class tst_CDeviceWatcher : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!plugtest::InFakeWorld())
            QSKIP("Run through umockdev-wrapper, which gives the test a fake udev world");
        QVERIFY(m_world.Make());
        QVERIFY(!watcher()->watching());
        QCOMPARE(watcherThreads(), 0);
    }

    void reportsCamerasAndUsbSerialPortsInOrder()
    {
        CHeard heard;
        const int subscription = Subscribe(heard.Listener());
        QVERIFY(subscription != 0);
        QVERIFY(watcher()->watching());

        const plugtest::SPlugged camera = m_world.PlugCamera();
        const plugtest::SPlugged port = m_world.PlugSerialAdapter();
        // The watcher reads the port's USB device in sysfs: it is unplugged only when heard.
        QVERIFY(heard.WaitFor(2));
        m_world.Unplug(camera);
        m_world.Unplug(port);
        QVERIFY(heard.WaitFor(4));
        QCOMPARE(heard.Lines(),
            QStringList({line("added", "camera", camera), line("added", "port", port),
                line("removed", "camera", camera), line("removed", "port", port)}));
        watcher()->unsubscribe(subscription);
        QVERIFY(!watcher()->watching());
    }

    // The watcher reads the events in order: when the camera plugged in or out last is heard,
    // the devices before it have been passed over.
    void neverReportsOtherDevices()
    {
        CHeard heard;
        const int subscription = Subscribe(heard.Listener());
        const plugtest::SPlugged mouse = m_world.PlugUsb(3, 1, 2);
        const plugtest::SPlugged stream = m_world.PlugUsb(0xef, 5, 2); // a camera's image stream
        const plugtest::SPlugged board = m_world.PlugBoardPort();
        const plugtest::SPlugged camera = m_world.PlugCamera();
        QVERIFY(heard.WaitFor(1));
        m_world.Unplug(mouse);
        m_world.Unplug(stream);
        m_world.Unplug(board);
        m_world.Unplug(camera);
        QVERIFY(heard.WaitFor(2));
        QCOMPARE(heard.Lines(),
            QStringList({line("added", "camera", camera), line("removed", "camera", camera)}));
        watcher()->unsubscribe(subscription);
    }

    // What is plugged in when the first listener comes is known, not plugged; only a device's
    // first "add" is a plug, and "change" or "bind" never are.
    void presentDevicesAreNotPlugs()
    {
        const plugtest::SPlugged before = m_world.PlugCamera();
        const plugtest::SPlugged port = m_world.PlugSerialAdapter();
        CHeard heard;
        const int subscription = Subscribe(heard.Listener());
        m_world.Send(before, "add");
        m_world.Send(before, "bind");
        m_world.Send(port, "add");
        m_world.Send(port, "change");
        const plugtest::SPlugged camera = m_world.PlugCamera();
        m_world.Send(camera, "add");
        m_world.Send(camera, "change");
        m_world.Send(camera, "bind");
        m_world.Unplug(before);
        m_world.Unplug(port);
        QVERIFY(heard.WaitFor(3));
        QCOMPARE(heard.Lines(),
            QStringList({line("added", "camera", camera), line("removed", "camera", before),
                line("removed", "port", port)}));
        m_world.Unplug(camera);
        QVERIFY(heard.WaitFor(4));
        watcher()->unsubscribe(subscription);
    }

    // A device udev has reported removed, though still in sysfs, is not plugged in again by its
    // "change", "bind" or "move": only "add" plugs.
    void onlyAddPlugs()
    {
        CHeard heard;
        const int subscription = Subscribe(heard.Listener());
        const plugtest::SPlugged camera = m_world.PlugCamera();
        QVERIFY(heard.WaitFor(1));
        m_world.Send(camera, "remove");
        m_world.Send(camera, "change");
        m_world.Send(camera, "bind");
        m_world.Send(camera, "move");
        const plugtest::SPlugged next = m_world.PlugCamera();
        QVERIFY(heard.WaitFor(3));
        QCOMPARE(heard.Lines(),
            QStringList({line("added", "camera", camera), line("removed", "camera", camera),
                line("added", "camera", next)}));
        m_world.Send(camera, "add");
        QVERIFY(heard.WaitFor(4));
        QCOMPARE(heard.Lines().last(), line("added", "camera", camera));
        m_world.Unplug(camera);
        m_world.Unplug(next);
        QVERIFY(heard.WaitFor(6));
        watcher()->unsubscribe(subscription);
    }

    void nothingComesAfterUnsubscribe()
    {
        CHeard gone;
        CHeard staying;
        const int first = Subscribe(gone.Listener());
        const int second = Subscribe(staying.Listener());
        QVERIFY(first != second);
        watcher()->unsubscribe(first);
        watcher()->unsubscribe(first); // twice does nothing
        const plugtest::SPlugged camera = m_world.PlugCamera();
        m_world.Unplug(camera);
        QVERIFY(staying.WaitFor(2));
        QVERIFY(gone.Lines().isEmpty());
        watcher()->unsubscribe(second);
        QVERIFY(!watcher()->watching());
    }

    void unsubscribeWaitsForACallInProgress()
    {
        QSemaphore entered;
        QSemaphore gate;
        std::atomic<bool> callEnded = false;
        const int subscription = Subscribe([&](const SDeviceEvent&) {
            entered.release();
            gate.tryAcquire(1, 10000);
            callEnded = true;
        });
        const plugtest::SPlugged camera = m_world.PlugCamera();
        QVERIFY(entered.tryAcquire(1, 5000));

        std::atomic<bool> returned = false;
        bool endedFirst = false;
        std::thread leaving([&] {
            watcher()->unsubscribe(subscription);
            endedFirst = callEnded;
            returned = true;
        });
        QTest::qWait(200);
        const bool returnedDuringTheCall = returned;
        gate.release();
        leaving.join();
        QVERIFY(!returnedDuringTheCall);
        QVERIFY(endedFirst);
        QVERIFY(!watcher()->watching());
        m_world.Unplug(camera);
    }

    void listenerMaySubscribeAndLeaveWithinItsCall()
    {
        CHeard next;
        std::atomic<int> subscription = 0;
        std::atomic<int> nextSubscription = 0;
        std::atomic<int> calls = 0;
        subscription = Subscribe([&](const SDeviceEvent&) {
            ++calls;
            nextSubscription = watcher()->subscribe(next.Listener());
            watcher()->unsubscribe(subscription);
        });
        const plugtest::SPlugged camera = m_world.PlugCamera();
        QTRY_COMPARE(calls.load(), 1);
        m_subscriptions << nextSubscription;
        m_world.Unplug(camera);
        QVERIFY(next.WaitFor(1));
        QCOMPARE(next.Lines(), QStringList({line("removed", "camera", camera)}));
        QCOMPARE(calls.load(), 1);
        watcher()->unsubscribe(nextSubscription);
        QVERIFY(!watcher()->watching());
    }

    // The last listener leaving within its own call stops the run, whose thread cannot join
    // itself; the next subscription starts another.
    void lastListenerMayLeaveWithinItsCall()
    {
        std::atomic<int> subscription = 0;
        std::atomic<int> calls = 0;
        subscription = Subscribe([&](const SDeviceEvent&) {
            ++calls;
            watcher()->unsubscribe(subscription);
        });
        const plugtest::SPlugged camera = m_world.PlugCamera();
        QTRY_COMPARE(calls.load(), 1);
        QVERIFY(!watcher()->watching());
        QTRY_COMPARE(watcherThreads(), 0);

        CHeard heard;
        const int again = Subscribe(heard.Listener());
        QVERIFY(watcher()->watching());
        m_world.Unplug(camera);
        QVERIFY(heard.WaitFor(1));
        QCOMPARE(calls.load(), 1);
        watcher()->unsubscribe(again);
    }

    void threadRunsOnlyWhileListened()
    {
        QCOMPARE(watcherThreads(), 0);
        for (int round = 0; round < 20; ++round) {
            const int first = watcher()->subscribe([](const SDeviceEvent&) {});
            const int second = watcher()->subscribe([](const SDeviceEvent&) {});
            QTRY_COMPARE(watcherThreads(), 1);
            watcher()->unsubscribe(first);
            QVERIFY(watcher()->watching());
            watcher()->unsubscribe(second);
            QVERIFY(!watcher()->watching());
            QTRY_COMPARE(watcherThreads(), 0);
        }
    }

    void subscribingFromManyThreadsAtOnce()
    {
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([] {
                for (int round = 0; round < 50; ++round)
                    watcher()->unsubscribe(watcher()->subscribe([](const SDeviceEvent&) {}));
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QVERIFY(!watcher()->watching());
        QTRY_COMPARE(watcherThreads(), 0);
    }

    // Without a free file descriptor the watcher can open nothing: listeners subscribe all the
    // same, and hear nothing, and debug output says why, once.
    void unusableWatcherSaysSoOnce()
    {
        static QStringList said;
        const auto previous = platform::SetDebugOutputHandler(
            [](const char* text) { said << QString::fromUtf8(text); });
        rlimit files{};
        QVERIFY(::getrlimit(RLIMIT_NOFILE, &files) == 0);
        rlimit none = files;
        none.rlim_cur = 0;
        QVERIFY(::setrlimit(RLIMIT_NOFILE, &none) == 0);
        QList<int> subscriptions;
        QList<bool> watching;
        for (int round = 0; round < 2; ++round) {
            subscriptions << watcher()->subscribe([](const SDeviceEvent&) {});
            watching << watcher()->watching();
            watcher()->unsubscribe(subscriptions.last());
        }
        ::setrlimit(RLIMIT_NOFILE, &files);
        platform::SetDebugOutputHandler(previous);
        QVERIFY(!subscriptions.contains(0));
        QCOMPARE(watching, QList<bool>({false, false}));
        QCOMPARE(said.size(), 1);
        QVERIFY2(said.first().contains("cannot be watched, because no eventfd can be made"),
            qPrintable(said.first()));
        QVERIFY(!watcher()->watching());
        QCOMPARE(watcherThreads(), 0);
    }

    // A test that failed leaves no listener behind.
    void cleanup()
    {
        for (const int subscription : std::as_const(m_subscriptions))
            watcher()->unsubscribe(subscription);
        m_subscriptions.clear();
    }

private:
    // Subscribes from the test's thread, for cleanup() to unsubscribe.
    int Subscribe(CDeviceWatcher::Listener listener)
    {
        const int subscription = watcher()->subscribe(std::move(listener));
        m_subscriptions << subscription;
        return subscription;
    }

    plugtest::CPlugWorld m_world;
    QList<int> m_subscriptions;
};

QTEST_GUILESS_MAIN(tst_CDeviceWatcher)
#include "tst_cdevicewatcher.moc"
