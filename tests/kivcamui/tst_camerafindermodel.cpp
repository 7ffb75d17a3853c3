// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "../HostileFiles.h"
#include "DiscoveryTest.h"

#include <kivcamui/camera/CameraFinderModel.h>

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJSEngine>
#include <QPointer>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QTimer>
#include <QUrl>

#include <cstdio>
#include <cstdlib>
#include <cstring>

using kiv::cam::SCameraInfo;
using kiv::cam::ui::CameraFinderModel;
using kiv::cam::ui::CameraInfo;

namespace {

QStringList serials(CameraFinderModel& model)
{
    QStringList found;
    for (int i = 0; i < model.cameras()->size(); ++i)
        found << qobject_cast<CameraInfo*>(model.cameras()->at(i))->serial();
    return found;
}

// Two models with opposite emulator switches search at the same time, round after round, in a
// child process over tests/kivcamui/data/race-world.xml, whose transports answer at once: this
// test program started with this argument and a number of rounds. It prints the rounds run and
// how many of them gave a model the other's switch.
constexpr const char* raceArgument = "--race";

int race(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int rounds = std::atoi(argv[2]);
    CameraFinderModel on;
    CameraFinderModel off;
    on.setEnableEmulators(true);
    off.setEnableEmulators(false);
    int run = 0;
    int mixedUp = 0;
    for (; run < rounds; ++run) {
        on.scan();
        off.scan();
        while (on.scanning() || off.scanning())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (serials(on) != QStringList{"R-1", "E-1"} || serials(off) != QStringList{"R-1"})
            ++mixedUp;
    }
    std::printf("rounds %d\nmixed up %d\n", run, mixedUp);
    return 0;
}

} // namespace

// Runs over tests/kivcamui/data/finder-world.xml: a real transport with a control-only camera
// (M-1) and a slow emulated one with a complete camera (K-1), one that cannot connect (K-2) and
// a control-only camera (M-2).
class tst_CameraFinderModel : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;

private slots:
    void init() { qunsetenv("KIVCAM_ENABLE_EMULATORS"); }
    void cleanupTestCase() { QThreadPool::globalInstance()->waitForDone(); }

    void startsIdle()
    {
        CameraFinderModel model;
        QAbstractItemModelTester tester(
            model.cameras(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QVERIFY(!model.scanning());
        QVERIFY(!model.scanned());
        QVERIFY(!model.enableEmulators());
        QVERIFY(!model.emulatorsOnly());
        QVERIFY(model.commOnly());
        QVERIFY(model.supportedCameras().isEmpty());
        QCOMPARE(model.cameras()->size(), 0);
        QCOMPARE(model.parent(), nullptr);
    }
    void environmentTurnsEmulatorsOn_data() { addEmulatorEnvironmentRows(); }
    void environmentTurnsEmulatorsOn()
    {
        const bool enabled = applyEmulatorEnvironment();
        const CameraFinderModel model;
        QCOMPARE(model.enableEmulators(), enabled);
    }
    void firstSearchAnnouncesScannedThenScanning()
    {
        CameraFinderModel model;
        QStringList order;
        connect(&model, &CameraFinderModel::scanningChanged, this,
            [&] { order << (model.scanning() ? "scanning" : "idle"); });
        connect(&model, &CameraFinderModel::scannedChanged, this, [&] { order << "scanned"; });
        QVERIFY(scanToEnd(model));
        QCOMPARE(order, (QStringList{"scanning", "scanned", "idle"}));
        order.clear();
        QVERIFY(scanToEnd(model));
        QCOMPARE(order, (QStringList{"scanning", "idle"}));
        QVERIFY(model.scanned());
    }
    void realCamerasOnlyByDefault()
    {
        CameraFinderModel model;
        QVERIFY(scanToEnd(model));
        QCOMPARE(serials(model), QStringList{"M-1"});
        auto* camera = qobject_cast<CameraInfo*>(model.cameras()->at(0));
        QCOMPARE(camera->parent(), &model);
        QCOMPARE(camera->name(), QStringLiteral("Mistral320"));
    }
    void scanDuringAScanDoesNothing()
    {
        CameraFinderModel model;
        model.setEnableEmulators(true);
        QSignalSpy scanning(&model, &CameraFinderModel::scanningChanged);
        QSignalSpy scanned(&model, &CameraFinderModel::scannedChanged);
        model.scan();
        QCOMPARE(scanning.count(), 1);
        model.scan();
        model.scan();
        QCOMPARE(scanning.count(), 1);
        QCOMPARE(scanned.count(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QCOMPARE(scanning.count(), 2);
        QCOMPARE(scanned.count(), 1);
        QCOMPARE(serials(model), (QStringList{"M-1", "K-1", "K-2", "M-2"}));
    }
    void listIsEmptyWhileSearching()
    {
        CameraFinderModel model;
        QVERIFY(scanToEnd(model));
        QPointer<QObject> old = model.cameras()->at(0);
        model.setEnableEmulators(true);
        model.scan();
        QCOMPARE(model.cameras()->size(), 0);
        QVERIFY(old.isNull());
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QCOMPARE(model.cameras()->size(), 4);
    }
    void flagsNine()
    {
        CameraFinderModel model;
        model.setEnableEmulators(true);
        model.setEmulatorsOnly(true); // with commOnly: flags 1 + 8
        QVERIFY(scanToEnd(model));
        QCOMPARE(serials(model), (QStringList{"K-1", "K-2", "M-2"}));
        // Flags 4 + 8 leave out the control-only emulated camera.
        model.setCommOnly(false);
        QVERIFY(scanToEnd(model));
        QCOMPARE(serials(model), (QStringList{"K-1", "K-2"}));
    }
    void flagsFour()
    {
        CameraFinderModel model;
        model.setEnableEmulators(true);
        model.setCommOnly(false);
        QVERIFY(scanToEnd(model));
        QCOMPARE(serials(model), (QStringList{"K-1", "K-2"}));
        model.setEnableEmulators(false);
        QVERIFY(scanToEnd(model));
        QCOMPARE(serials(model), QStringList());
    }
    void namesArePassedToTheFinder()
    {
        CameraFinderModel model;
        model.setEnableEmulators(true);
        model.setSupportedCameras({"Kelvin640"});
        QVERIFY(scanToEnd(model));
        QCOMPARE(serials(model), (QStringList{"K-1", "K-2"}));
        model.setSupportedCameras({"NoSuchType"});
        QVERIFY(scanToEnd(model));
        QCOMPARE(model.cameras()->size(), 0);
    }
    void camerasThatCannotConnectAreListedWithTheirReasons()
    {
        CameraFinderModel model;
        model.setEnableEmulators(true);
        model.setSupportedCameras({"Kelvin640"});
        QVERIFY(scanToEnd(model));
        auto* standby = qobject_cast<CameraInfo*>(model.cameras()->at(1));
        QVERIFY(!standby->canConnect());
        QCOMPARE(standby->errorSummary(), QStringLiteral("Camera in standby"));
        QCOMPARE(standby->errorMessage(), QStringLiteral("Wake the camera up and search again."));
        QVERIFY(qobject_cast<CameraInfo*>(model.cameras()->at(0))->canConnect());
    }
    void switchesReadWhenTheSearchStarts()
    {
        // Switches changed after scan() but before the task starts are the ones it uses.
        CameraFinderModel model;
        QVERIFY(scanWithChangesBeforeTheTaskStarts(model, [&] {
            model.setEnableEmulators(true);
            model.setEmulatorsOnly(true);
        }));
        QCOMPARE(serials(model), (QStringList{"K-1", "K-2", "M-2"}));
        QVERIFY(scanWithChangesBeforeTheTaskStarts(model, [&] { model.setCommOnly(false); }));
        QCOMPARE(serials(model), (QStringList{"K-1", "K-2"}));
        QVERIFY(scanWithChangesBeforeTheTaskStarts(model, [&] {
            model.setEnableEmulators(false);
            model.setEmulatorsOnly(false);
            model.setCommOnly(true);
        }));
        QCOMPARE(serials(model), QStringList{"M-1"});
    }
    void emulatorSwitchesEmitNothing()
    {
        CameraFinderModel model;
        QSignalSpy scanning(&model, &CameraFinderModel::scanningChanged);
        QSignalSpy scanned(&model, &CameraFinderModel::scannedChanged);
        QSignalSpy supported(&model, &CameraFinderModel::supportedCamerasChanged);
        QSignalSpy commOnly(&model, &CameraFinderModel::commOnlyChanged);
        model.setEnableEmulators(true);
        model.setEnableEmulators(false);
        model.setEmulatorsOnly(true);
        QVERIFY(model.emulatorsOnly());
        QCOMPARE(scanning.count() + scanned.count() + supported.count() + commOnly.count(), 0);
        const QMetaObject& meta = CameraFinderModel::staticMetaObject;
        QVERIFY(!meta.property(meta.indexOfProperty("enableEmulators")).hasNotifySignal());
        QVERIFY(!meta.property(meta.indexOfProperty("emulatorsOnly")).hasNotifySignal());
    }
    void settersAnnounceOnlyChanges()
    {
        CameraFinderModel model;
        QSignalSpy supported(&model, &CameraFinderModel::supportedCamerasChanged);
        QSignalSpy commOnly(&model, &CameraFinderModel::commOnlyChanged);
        model.setCommOnly(true);
        QCOMPARE(commOnly.count(), 0);
        model.setCommOnly(false);
        QCOMPARE(commOnly.count(), 1);
        model.setSupportedCameras({});
        QCOMPARE(supported.count(), 0);
        model.setSupportedCameras({"A", "B"});
        model.setSupportedCameras({"A", "B"});
        QCOMPARE(supported.count(), 1);
        model.setSupportedCameras({"A", "b"});
        QCOMPARE(supported.count(), 2);
    }
    void eventLoopTurnsDuringASlowSearch()
    {
        // The emulated grabber takes two seconds to answer; the GUI thread must keep going.
        CameraFinderModel model;
        model.setEnableEmulators(true);
        model.scan();
        bool turnedWhileScanning = false;
        QTimer::singleShot(0, this, [&] { turnedWhileScanning = model.scanning(); });
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QVERIFY(turnedWhileScanning);
    }
    void resultsArriveAsOneInsertionBeforeTheEndIsAnnounced()
    {
        QStringList order; // outlives the model, whose list announces its end
        CameraFinderModel model;
        model.setEnableEmulators(true);
        QAbstractItemModelTester tester(
            model.cameras(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        recordAnnouncements(model, *model.cameras(), order);
        QVERIFY(scanToEnd(model));
        QCOMPARE(order, (QStringList{"scanning with 0", "rows 0-3", "scanned", "idle with 4"}));
        order.clear();
        QVERIFY(scanToEnd(model));
        QCOMPARE(order, (QStringList{"reset", "scanning with 0", "rows 0-3", "idle with 4"}));
    }
    void foundCamerasAreTheModelsOnItsThread()
    {
        CameraFinderModel model;
        model.setEnableEmulators(true);
        QVERIFY(scanToEnd(model));
        QList<QPointer<QObject>> found;
        for (int i = 0; i < model.cameras()->size(); ++i) {
            QObject* camera = model.cameras()->at(i);
            QCOMPARE(camera->parent(), &model);
            QCOMPARE(camera->thread(), model.thread());
            QCOMPARE(QJSEngine::objectOwnership(camera), QJSEngine::CppOwnership);
            found << camera;
        }
        // Listed, they stay, whatever the event loop does meanwhile.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QTest::qWait(10);
        for (const QPointer<QObject>& camera : std::as_const(found))
            QVERIFY(!camera.isNull());
        // The next search removes them, and they are gone at once.
        model.scan();
        for (const QPointer<QObject>& camera : std::as_const(found))
            QVERIFY(camera.isNull());
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
    }
    void foundRecordsAreTheCamerasOwn()
    {
        // The cameras of one search share its records, each its own: an edit of one reaches no
        // other, and a camera of a finished search outlives its model through a clone only.
        CameraFinderModel model;
        model.setEnableEmulators(true);
        QVERIFY(scanToEnd(model));
        auto* first = qobject_cast<CameraInfo*>(model.cameras()->at(0));
        auto* second = qobject_cast<CameraInfo*>(model.cameras()->at(1));
        first->setIdentity("Edited");
        QVERIFY(second->identity() != QStringLiteral("Edited"));
        QCOMPARE(QByteArray(first->info().identity.c_str()), QByteArray("Edited"));
        std::unique_ptr<CameraInfo> kept(second->clone());
        QVERIFY(scanToEnd(model));
        QCOMPARE(kept->serial(), QStringLiteral("K-1"));
    }
    void destroyedBeforeItsEndedSearchIsTaken()
    {
        // The task has made its cameras and moved them to this thread, but the event loop has
        // not turned: the model goes with them (the sanitizer build checks that nothing leaks).
        for (int i = 0; i < 5; ++i) {
            auto* model = new CameraFinderModel;
            model->scan();
            QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
            // Ended in the pool, not yet taken: still searching, nothing listed.
            QVERIFY(model->scanning());
            QCOMPARE(model->cameras()->size(), 0);
            delete model;
        }
        QThreadPool::globalInstance()->waitForDone();
        // What the searches posted finds no model to tell.
        QCoreApplication::sendPostedEvents();
    }
    void destroyedWhileSearching()
    {
        for (int i = 0; i < 20; ++i) {
            auto* model = new CameraFinderModel;
            model->setEnableEmulators(i % 5 == 0);
            model->scan();
            if (i % 3 == 0)
                QTest::qWait(1);
            delete model;
        }
        // The searches end on their own, with nobody to tell.
        QThreadPool::globalInstance()->waitForDone();
        CameraFinderModel model;
        QVERIFY(scanToEnd(model));
        QCOMPARE(serials(model), QStringList{"M-1"});
    }
    void abandonedSearchesStop()
    {
        // A thousand models destroyed while their two-second searches run: run to their ends,
        // they would keep the pool busy for a quarter of an hour. Stopped, they are gone at once
        // and a new search takes its two seconds.
        for (int i = 0; i < 1000; ++i) {
            auto* model = new CameraFinderModel;
            model->setEnableEmulators(true);
            model->scan();
            delete model;
        }
        QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
        CameraFinderModel model;
        model.setEnableEmulators(true);
        QElapsedTimer search;
        search.start();
        QVERIFY(scanToEnd(model));
        qInfo("the search after a thousand abandoned ones took %lld ms", search.elapsed());
        QVERIFY(search.elapsed() < 15000);
        QCOMPARE(serials(model), (QStringList{"M-1", "K-1", "K-2", "M-2"}));
    }
    void oppositeSwitchesNeverMix()
    {
        // With the process-wide switch alone, ten to twenty rounds in five thousand mixed them up.
        const int rounds = 5000;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("KIVCAM_EMULATOR_WORLD", KIVCAMUI_TEST_DATA "/race-world.xml");
        QProcess child;
        child.setProcessEnvironment(environment);
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(
            QCoreApplication::applicationFilePath(), {raceArgument, QString::number(rounds)});
        QVERIFY(child.waitForFinished(240000));
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
        const QByteArray output = child.readAllStandardOutput();
        QCOMPARE(output,
            QByteArray("rounds %1\nmixed up 0\n").replace("%1", QByteArray::number(rounds)));
    }
    void loadsADescriptionFile()
    {
        QTemporaryDir dir;
        SCameraInfo record;
        record.name = "Kelvin640";
        record.serial = "K-9";
        QVERIFY(record.Save(kiv::CStringW(dir.filePath("camera.xml").toStdWString().c_str())));
        std::unique_ptr<CameraInfo> camera(CameraFinderModel::loadCameraInfo(
            QUrl::fromLocalFile(dir.filePath("camera.xml")).toString()));
        QVERIFY(camera);
        QCOMPARE(camera->parent(), nullptr);
        QCOMPARE(camera->serial(), QStringLiteral("K-9"));
    }
    void badFilesGiveNull()
    {
        QTemporaryDir dir;
        QFile bad(dir.filePath("bad.xml"));
        QVERIFY(bad.open(QIODevice::WriteOnly));
        bad.write("<camera><width>wide</width></camera>");
        bad.close();
        QCOMPARE(CameraFinderModel::loadCameraInfo(QUrl::fromLocalFile(bad.fileName()).toString()),
            nullptr);
        QCOMPARE(CameraFinderModel::loadCameraInfo(
                     QUrl::fromLocalFile(dir.filePath("missing.xml")).toString()),
            nullptr);
        QCOMPARE(CameraFinderModel::loadCameraInfo(dir.filePath("plain-path.xml")), nullptr);
        QCOMPARE(CameraFinderModel::loadCameraInfo(QString()), nullptr);
    }
    void hostileFilesGiveNullAtOnce_data() { hostile::addPathRows(m_folder); }
    void hostileFilesGiveNullAtOnce()
    {
        // A FIFO used to block the GUI thread in loadCameraInfo for ever.
        QFETCH(QString, path);
        QCOMPARE(CameraFinderModel::loadCameraInfo(QUrl::fromLocalFile(path).toString()), nullptr);
    }
    void hugeTextGivesNull()
    {
        const QString huge = "<camera><name>Nova</name><!--"
            + QString(static_cast<qsizetype>(SCameraInfo::maxFileSize), 'x') + "--></camera>";
        QCOMPARE(CameraFinderModel::loadCameraInfoFromString(huge), nullptr);
    }
    void loadsFromText()
    {
        std::unique_ptr<CameraInfo> camera(CameraFinderModel::loadCameraInfoFromString(
            "<camera><name>Mistral320</name><identity>Bench \u00b5</identity></camera>"));
        QVERIFY(camera);
        QCOMPARE(camera->parent(), nullptr);
        QCOMPARE(camera->identity(), QStringLiteral("Bench \u00b5"));
    }
    void badTextGivesNull_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("not xml") << QStringLiteral("hello");
        QTest::newRow("truncated") << QStringLiteral("<camera><name>Mis");
        QTest::newRow("other kind") << QStringLiteral("<world/>");
    }
    void badTextGivesNull()
    {
        QFETCH(QString, text);
        QCOMPARE(CameraFinderModel::loadCameraInfoFromString(text), nullptr);
    }
};

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], raceArgument) == 0)
        return race(argc, argv);
    QCoreApplication app(argc, argv);
    tst_CameraFinderModel test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}
#include "tst_camerafindermodel.moc"
