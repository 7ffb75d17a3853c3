// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "TestBackend.h"

#include <kiv/CException.h>
#include <kivcam/CCameraFinder.h>

#include <QTest>

#include <barrier>
#include <stop_token>
#include <thread>

using kiv::CString;
using kiv::TArray;
using kiv::cam::CCameraFinder;
using kiv::cam::SCameraInfo;
using test::SScanControl;

namespace {

QByteArrayList serials(const CCameraFinder& finder)
{
    QByteArrayList found;
    for (std::uint64_t i = 0; i < finder.size(); ++i)
        found << QByteArray(finder.at(i).serial.c_str());
    return found;
}

SCameraInfo bySerial(const CCameraFinder& finder, const char* serial)
{
    for (std::uint64_t i = 0; i < finder.size(); ++i) {
        if (finder.at(i).serial == CString(serial))
            return finder.at(i);
    }
    return {};
}

} // namespace

class tst_CCameraFinder : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        CCameraFinder::setEnableEmulators(false);
        SScanControl::failBroken = false;
        SScanControl::rendezvous = false;
        SScanControl::hold = false;
        SScanControl::holding = 0;
        SScanControl::stopped = 0;
    }
    void emptyUntilFound()
    {
        const CCameraFinder finder;
        QCOMPARE(finder.size(), 0u);
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, finder.at(0));
    }
    void emulatorsAreOffAtStart() { QVERIFY(!CCameraFinder::enableEmulators()); }
    void controlFlagFindsEveryRealCamera()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(serials(finder), (QByteArrayList{"A-1", "A-2", "G-1", "C-1", "B-1", "B-2"}));
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, finder.at(finder.size()));
    }
    void noFlagsFindsLikeTheControlFlag()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(0));
        QCOMPARE(finder.size(), 6u);
    }
    void completeFlagKeepsCamerasWithVideo()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMPLETE));
        QCOMPARE(serials(finder), (QByteArrayList{"B-1", "B-2"}));
    }
    void emulatedCamerasNeedEmulators()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM | CCameraFinder::FIND_EMULATORS_ONLY));
        QCOMPARE(finder.size(), 0u);
        CCameraFinder::setEnableEmulators(true);
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(finder.size(), 7u);
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM | CCameraFinder::FIND_EMULATORS_ONLY));
        QCOMPARE(serials(finder), QByteArrayList{"E-1"});
        QVERIFY(finder.at(0).emulated);
    }
    void namesKeepOnlyThoseTypes()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find({"TypeB", "Nothing"}, CCameraFinder::FIND_COMM));
        QCOMPARE(serials(finder), (QByteArrayList{"B-1", "B-2"}));
        QVERIFY(finder.Find(TArray<CString>{}, CCameraFinder::FIND_COMM));
        QCOMPARE(finder.size(), 0u);
    }
    void eachFindReplacesTheResults()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        QVERIFY(finder.Find(CCameraFinder::FIND_COMPLETE));
        QCOMPARE(finder.size(), 2u);
    }
    void connectableCameraGetsItsTypesController()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        const SCameraInfo ready = bySerial(finder, "A-1");
        QVERIFY(ready.canConnect);
        QVERIFY(ready.errorSummary.empty());
        QCOMPARE(QByteArray(ready.controller.c_str()), QByteArray("Generic"));
        QCOMPARE(QByteArray(bySerial(finder, "B-1").controller.c_str()), QByteArray("Special"));
        QVERIFY(bySerial(finder, "B-1").canConnect);
    }
    void explainsWhyACameraCannotConnect_data()
    {
        QTest::addColumn<QByteArray>("serial");
        QTest::addColumn<QByteArray>("summary");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("transport's verdict") << QByteArray("B-2") << QByteArray("Firmware too old")
                                             << QByteArray("Update the firmware.");
        QTest::newRow("device unusable")
            << QByteArray("A-2") << QByteArray("Port busy")
            << QByteArray("The device \"COM2\" of \"TestSerial\" cannot be used. Another program "
                          "holds the port.");
        QTest::newRow("unknown type") << QByteArray("G-1") << QByteArray("Unknown camera type")
                                      << QByteArray("The camera type \"Ghost\" is not installed.");
        QTest::newRow("missing controller")
            << QByteArray("C-1") << QByteArray("No controller")
            << QByteArray("No controller named \"Missing\" is installed for this camera.");
    }
    void explainsWhyACameraCannotConnect()
    {
        QFETCH(QByteArray, serial);
        QFETCH(QByteArray, summary);
        QFETCH(QByteArray, message);
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        const SCameraInfo camera = bySerial(finder, serial.constData());
        QVERIFY(!camera.canConnect);
        QCOMPARE(QByteArray(camera.errorSummary.c_str()), summary);
        QCOMPARE(QByteArray(camera.errorMessage.c_str()), message);
    }
    void failedTransportScanKeepsTheOthers()
    {
        SScanControl::failBroken = true;
        CCameraFinder finder;
        QVERIFY(!finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(finder.size(), 6u);
    }
    void stopEndsTheSearchEarly()
    {
        // TestGrabber's scan would take a minute; the stop request wakes it.
        SScanControl::hold = true;
        std::stop_source stop;
        CCameraFinder finder;
        bool ok = true;
        std::thread search([&] { ok = finder.Find(CCameraFinder::FIND_COMM, stop.get_token()); });
        QTRY_COMPARE(SScanControl::holding.load(), 1);
        stop.request_stop();
        search.join();
        QVERIFY(!ok);
        QCOMPARE(SScanControl::stopped.load(), 1);
    }
    void searchStoppedBeforeItStartsScansNothing()
    {
        SScanControl::hold = true;
        std::stop_source stop;
        stop.request_stop();
        CCameraFinder finder;
        QVERIFY(!finder.Find({"TypeB"}, CCameraFinder::FIND_COMM, stop.get_token()));
        QCOMPARE(finder.size(), 0u);
        QCOMPARE(SScanControl::holding.load(), 0);
    }
    void searchWithAStopThatNeverComesIsComplete()
    {
        std::stop_source stop;
        CCameraFinder finder;
        QVERIFY(finder.Find({"TypeB"}, CCameraFinder::FIND_COMM, stop.get_token()));
        QCOMPARE(serials(finder), (QByteArrayList{"B-1", "B-2"}));
    }

    // Two threads set opposite switches, one after the other, and only then both search: each
    // search uses its own thread's switch, not the process-wide one, which is the last set.
    void eachThreadSearchesWithItsOwnSwitch_data()
    {
        QTest::addColumn<bool>("first");
        QTest::newRow("on, then off") << true;
        QTest::newRow("off, then on") << false;
    }
    void eachThreadSearchesWithItsOwnSwitch()
    {
        QFETCH(bool, first);
        std::barrier setInTurn(2);
        std::uint64_t found[2] = {};
        auto search = [&](int turn, bool enable) {
            CCameraFinder finder;
            if (turn == 1)
                setInTurn.arrive_and_wait();
            CCameraFinder::setEnableEmulators(enable);
            if (turn == 0)
                setInTurn.arrive_and_wait();
            setInTurn.arrive_and_wait();
            finder.Find(CCameraFinder::FIND_COMM);
            found[turn] = finder.size();
        };
        std::thread one(search, 0, first);
        std::thread other(search, 1, !first);
        one.join();
        other.join();
        QCOMPARE(found[0], first ? 7u : 6u);
        QCOMPARE(found[1], first ? 6u : 7u);
    }
    void threadThatSetNothingFollowsTheProcessWideSwitch()
    {
        CCameraFinder::setEnableEmulators(true);
        std::uint64_t found = 0;
        std::thread([&] {
            CCameraFinder finder;
            finder.Find(CCameraFinder::FIND_COMM);
            found = finder.size();
        }).join();
        QCOMPARE(found, 7u);
    }
    void threadsOwnSwitchServesOneSearch()
    {
        // A pool thread reused by a task that sets nothing must not search with the switch of
        // the task before.
        std::barrier turns(2);
        std::uint64_t found[2] = {};
        std::thread worker([&] {
            CCameraFinder::setEnableEmulators(true);
            turns.arrive_and_wait();
            turns.arrive_and_wait();
            CCameraFinder finder;
            finder.Find(CCameraFinder::FIND_COMM);
            found[0] = finder.size();
            finder.Find(CCameraFinder::FIND_COMM);
            found[1] = finder.size();
        });
        turns.arrive_and_wait();
        CCameraFinder::setEnableEmulators(false);
        turns.arrive_and_wait();
        worker.join();
        QCOMPARE(found[0], 7u);
        QCOMPARE(found[1], 6u);
    }
    void transportsAreSearchedAtTheSameTime()
    {
        SScanControl::waiting = 0;
        SScanControl::rendezvous = true;
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(finder.size(), 6u);
    }
};

QTEST_APPLESS_MAIN(tst_CCameraFinder)
#include "tst_ccamerafinder.moc"
