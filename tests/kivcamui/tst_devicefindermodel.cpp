// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "DeviceRows.h"
#include "DiscoveryTest.h"
#include "SignalLog.h"

#include <kivcamui/device/DeviceFinderModel.h>

#include <QAbstractItemModelTester>
#include <QJSEngine>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

namespace {

DeviceInfo* device(DeviceFinderModel& model, const QString& row)
{
    const int index = static_cast<int>(deviceRows(*model.devices()).indexOf(row));
    return qobject_cast<DeviceInfo*>(model.devices()->at(index));
}

QString parameter(DeviceInfo* device, const char* name)
{
    for (int i = 0; i < device->parameters()->size(); ++i) {
        auto* parameter = qobject_cast<DeviceParameter*>(device->parameters()->at(i));
        if (parameter->name() == QLatin1String(name))
            return parameter->value();
    }
    return "no " + QString::fromLatin1(name);
}

const QStringList allRealDevices{"ComPorts/COM1", "ComPorts/COM3", "ComPorts/com2",
    "Grabber/Port 0", "Grabber/Port 1", "VideoIn/Capture 0"};
const QStringList allDevices{"ComPorts/COM1", "ComPorts/COM3", "ComPorts/com2", "EmuLink/Emu 0",
    "Grabber/Port 0", "Grabber/Port 1", "VideoIn/Capture 0"};

} // namespace

// Runs over tests/kivcamui/data/devices-world.xml: real serial ports (control only), a real
// grabber (control and video), a real capture card (video only) and a slow emulated link.
class tst_DeviceFinderModel : public QObject {
    Q_OBJECT

private slots:
    void cleanupTestCase() { QThreadPool::globalInstance()->waitForDone(); }

    void startsIdle()
    {
        qputenv("KIVCAM_ENABLE_EMULATORS", "1"); // not this model's business
        DeviceFinderModel model;
        qunsetenv("KIVCAM_ENABLE_EMULATORS");
        QVERIFY(!model.scanning());
        QVERIFY(!model.scanned());
        QVERIFY(!model.enableEmulators());
        QVERIFY(model.supportedDevices().isEmpty());
        QVERIFY(model.defaultControl().isEmpty());
        QCOMPARE(model.defaultBaudRate(), -1);
        QCOMPARE(model.devices()->size(), 0);
        QCOMPARE(QJSEngine::objectOwnership(model.devices()), QJSEngine::CppOwnership);
    }
    void firstSearchAnnouncesScanningThenScanned()
    {
        DeviceFinderModel model;
        SignalLog log(&model);
        model.scan();
        QCOMPARE(log.take(), QStringList{"scanningChanged"});
        QVERIFY(model.scanning());
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QCOMPARE(log.take(), (QStringList{"scanningChanged", "scannedChanged"}));
        QVERIFY(model.scanned());
        // The second completed search announces the end of the search alone.
        QVERIFY(scanToEnd(model));
        QCOMPARE(log.take(), (QStringList{"scanningChanged", "scanningChanged"}));
        QVERIFY(model.scanned());
    }
    void scanDuringAScanDoesNothing()
    {
        DeviceFinderModel model;
        model.setEnableEmulators(true);
        model.scan();
        SignalLog log(&model);
        model.scan();
        model.scan();
        QCOMPARE(log.take(), QStringList());
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QCOMPARE(log.take(), (QStringList{"scanningChanged", "scannedChanged"}));
        // One search's devices, not two.
        QCOMPARE(deviceRows(*model.devices()), allDevices);
    }
    void withoutSupportedDevicesAllAreSearchedAndNoneIsCustom()
    {
        DeviceFinderModel model;
        QAbstractItemModelTester tester(
            model.devices(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QVERIFY(scanToEnd(model));
        // By transport name, then by device name, case-sensitively; the emulator is left out.
        QCOMPARE(deviceRows(*model.devices()), allRealDevices);
        for (int i = 0; i < model.devices()->size(); ++i) {
            auto* found = qobject_cast<DeviceInfo*>(model.devices()->at(i));
            QVERIFY(found->isFound());
            QCOMPARE(found->editLevel(), DeviceParameter::EDIT_CUSTOM);
            // The list owns it.
            QCOMPARE(found->parent(), nullptr);
        }
    }
    void eachSupportedTransportHeadsItsDevicesWithOneCustomEntry()
    {
        DeviceFinderModel model;
        QAbstractItemModelTester tester(
            model.devices(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setSupportedDevices({"Grabber", "ComPorts"});
        QVERIFY(scanToEnd(model));
        QCOMPARE(deviceRows(*model.devices()),
            (QStringList{"ComPorts/Custom", "ComPorts/COM1", "ComPorts/COM3", "ComPorts/com2",
                "Grabber/Custom", "Grabber/Port 0", "Grabber/Port 1"}));
        DeviceInfo* custom = device(model, "Grabber/Custom");
        QVERIFY(!custom->isFound());
        QCOMPARE(custom->editLevel(), DeviceParameter::EDIT_CUSTOM_SELECT);
        // The transport's template: its parameters, writable at this level.
        QCOMPARE(parameter(custom, "Timeout"), QStringLiteral("1000"));
        QVERIFY(qobject_cast<DeviceParameter*>(custom->parameters()->at(1))->isWritable());
    }
    void supportedNamesAreMatchedExactly()
    {
        DeviceFinderModel model;
        model.setSupportedDevices({"grabber", "Serial"});
        QVERIFY(scanToEnd(model));
        // "Serial" is the ports' base type: the search keeps them, but no transport is named so.
        QCOMPARE(deviceRows(*model.devices()),
            (QStringList{"ComPorts/COM1", "ComPorts/COM3", "ComPorts/com2"}));
    }
    void emulatorsOnlyWhenEnabled()
    {
        DeviceFinderModel model;
        model.setSupportedDevices({"EmuLink", "VideoIn"});
        QVERIFY(scanToEnd(model));
        QCOMPARE(
            deviceRows(*model.devices()), (QStringList{"VideoIn/Custom", "VideoIn/Capture 0"}));
        model.setEnableEmulators(true);
        QVERIFY(scanToEnd(model));
        QCOMPARE(deviceRows(*model.devices()),
            (QStringList{
                "EmuLink/Custom", "EmuLink/Emu 0", "VideoIn/Custom", "VideoIn/Capture 0"}));
    }
    void searchTakesTheSwitchWhenItStarts()
    {
        DeviceFinderModel model;
        model.setSupportedDevices({"EmuLink"});
        QVERIFY(scanWithChangesBeforeTheTaskStarts(model, [&] { model.setEnableEmulators(true); }));
        QCOMPARE(deviceRows(*model.devices()), (QStringList{"EmuLink/Custom", "EmuLink/Emu 0"}));
    }
    void customEntriesTakeTheSwitchWhenTheSearchEnds()
    {
        // The search ran without emulators; they were enabled before its end was taken.
        DeviceFinderModel model;
        model.setSupportedDevices({"EmuLink"});
        model.scan();
        QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
        model.setEnableEmulators(true);
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QCOMPARE(deviceRows(*model.devices()), QStringList{"EmuLink/Custom"});
    }
    void oppositeSwitchesAtTheSameTime()
    {
        DeviceFinderModel on;
        DeviceFinderModel off;
        on.setEnableEmulators(true);
        on.scan();
        off.scan();
        QTRY_VERIFY_WITH_TIMEOUT(!on.scanning() && !off.scanning(), 30000);
        QCOMPARE(deviceRows(*on.devices()), allDevices);
        QCOMPARE(deviceRows(*off.devices()), allRealDevices);
    }
    void listIsEmptiedWhenASearchStarts()
    {
        DeviceFinderModel model;
        QVERIFY(scanToEnd(model));
        QPointer<QObject> old = model.devices()->at(0);
        model.scan();
        QCOMPARE(model.devices()->size(), 0);
        QVERIFY(old.isNull());
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QCOMPARE(model.devices()->size(), allRealDevices.size());
    }
    void resultsArriveAsOneInsertionBeforeTheEndIsAnnounced()
    {
        QStringList order; // outlives the model, whose list announces its end
        DeviceFinderModel model;
        model.setSupportedDevices({"Grabber", "ComPorts"});
        QAbstractItemModelTester tester(
            model.devices(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        recordAnnouncements(model, *model.devices(), order);
        QVERIFY(scanToEnd(model));
        // The devices found on the two transports and their two placeholders.
        QCOMPARE(order, (QStringList{"scanning with 0", "rows 0-6", "idle with 7", "scanned"}));
        order.clear();
        QVERIFY(scanToEnd(model));
        QCOMPARE(order, (QStringList{"reset", "scanning with 0", "rows 0-6", "idle with 7"}));
    }
    void devicesAreTheListsOnTheModelsThread()
    {
        DeviceFinderModel model;
        model.setSupportedDevices({"Grabber"});
        QVERIFY(scanToEnd(model));
        QList<QPointer<QObject>> found;
        for (int i = 0; i < model.devices()->size(); ++i) {
            QObject* device = model.devices()->at(i);
            QCOMPARE(device->thread(), model.thread());
            QCOMPARE(QJSEngine::objectOwnership(device), QJSEngine::CppOwnership);
            found << device;
        }
        // Each device has its record of its own.
        DeviceInfo* port0 = device(model, "Grabber/Port 0");
        DeviceInfo* port1 = device(model, "Grabber/Port 1");
        QVERIFY(&port0->info() != &port1->info());
        qobject_cast<DeviceParameter*>(port0->parameters()->at(0))->setValue("Edited");
        QVERIFY(parameter(port1, "Control") != QStringLiteral("Edited"));
        // Listed, they stay; with the model, they go.
        QTest::qWait(10);
        for (const QPointer<QObject>& device : std::as_const(found))
            QVERIFY(!device.isNull());
        {
            DeviceFinderModel other;
            QVERIFY(scanToEnd(other));
            found = {other.devices()->at(0)};
        }
        QVERIFY(found.at(0).isNull());
    }
    void destroyedBeforeItsEndedSearchIsTaken()
    {
        // The task has made its devices and moved them to this thread, but the event loop has
        // not turned: the model goes with them (the sanitizer build checks that nothing leaks).
        for (int i = 0; i < 5; ++i) {
            auto* model = new DeviceFinderModel;
            model->setSupportedDevices({"Grabber", "ComPorts"});
            model->scan();
            QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
            // Ended in the pool, not yet taken: still searching, nothing listed.
            QVERIFY(model->scanning());
            QCOMPARE(model->devices()->size(), 0);
            delete model;
        }
        QThreadPool::globalInstance()->waitForDone();
        // What the searches posted finds no model to tell.
        QCoreApplication::sendPostedEvents();
    }
    void controlPreset()
    {
        DeviceFinderModel model;
        model.setSupportedDevices({"ComPorts", "Grabber"});
        model.setDefaultControl("COM9");
        QVERIFY(scanToEnd(model));
        for (const char* row :
            {"ComPorts/Custom", "ComPorts/COM1", "ComPorts/COM3", "ComPorts/com2"})
            QCOMPARE(parameter(device(model, row), "Control"), QStringLiteral("COM9"));
        // The grabber's channel is a choice that has no "COM9": the library refuses it.
        QCOMPARE(parameter(device(model, "Grabber/Port 1"), "Control"), QStringLiteral("Port 1"));
        // A preset changed after the end waits for the next search.
        model.setDefaultControl("COM7");
        QCOMPARE(parameter(device(model, "ComPorts/COM1"), "Control"), QStringLiteral("COM9"));
        model.setDefaultControl("Port 1");
        QVERIFY(scanToEnd(model));
        QCOMPARE(parameter(device(model, "Grabber/Port 0"), "Control"), QStringLiteral("Port 1"));
        QCOMPARE(parameter(device(model, "ComPorts/COM3"), "Control"), QStringLiteral("Port 1"));
    }
    void noControlPresetWhenEmpty()
    {
        DeviceFinderModel model;
        model.setSupportedDevices({"ComPorts"});
        QVERIFY(scanToEnd(model));
        QCOMPARE(parameter(device(model, "ComPorts/COM3"), "Control"), QStringLiteral("COM3"));
        QCOMPARE(parameter(device(model, "ComPorts/Custom"), "Control"), QStringLiteral("COM1"));
    }
    void baudRatePreset_data()
    {
        QTest::addColumn<int>("rate");
        QTest::addColumn<QString>("com1");
        QTest::addColumn<QString>("com3");
        QTest::addColumn<QString>("custom");
        QTest::newRow("initial") << -1 << "9600"
                                 << "9600"
                                 << "9600";
        QTest::newRow("zero") << 0 << "9600"
                              << "9600"
                              << "9600";
        QTest::newRow("negative") << -19200 << "9600"
                                  << "9600"
                                  << "9600";
        // COM3 does not offer 19200 and keeps its rate.
        QTest::newRow("19200") << 19200 << "19200"
                               << "9600"
                               << "19200";
        QTest::newRow("115200") << 115200 << "115200"
                                << "115200"
                                << "115200";
        QTest::newRow("not a rate") << 12345 << "9600"
                                    << "9600"
                                    << "9600";
    }
    void baudRatePreset()
    {
        QFETCH(int, rate);
        DeviceFinderModel model;
        model.setSupportedDevices({"ComPorts", "Grabber"});
        model.setDefaultBaudRate(rate);
        QVERIFY(scanToEnd(model));
        QTEST(parameter(device(model, "ComPorts/COM1"), "BaudRate"), "com1");
        QTEST(parameter(device(model, "ComPorts/COM3"), "BaudRate"), "com3");
        QTEST(parameter(device(model, "ComPorts/Custom"), "BaudRate"), "custom");
        QCOMPARE(
            parameter(device(model, "Grabber/Port 0"), "BaudRate"), QStringLiteral("no BaudRate"));
    }
    void settersAnnounceOnlyChanges()
    {
        DeviceFinderModel model;
        SignalLog log(&model);
        model.setEnableEmulators(false);
        model.setSupportedDevices({});
        model.setDefaultControl(QString());
        model.setDefaultBaudRate(-1);
        QCOMPARE(log.take(), QStringList());

        model.setEnableEmulators(true);
        model.setEnableEmulators(true);
        model.setSupportedDevices({"A", "B"});
        model.setSupportedDevices({"A", "B"});
        model.setDefaultControl("COM1");
        model.setDefaultControl("COM1");
        model.setDefaultBaudRate(9600);
        model.setDefaultBaudRate(9600);
        QCOMPARE(log.take(),
            (QStringList{"enableEmulatorsChanged", "supportedDevicesChanged",
                "defaultControlChanged", "defaultBaudRateChanged"}));
        model.setSupportedDevices({"A", "b"});
        model.setSupportedDevices({"A"});
        model.setDefaultControl("com1");
        model.setDefaultBaudRate(0);
        QCOMPARE(log.take(),
            (QStringList{"supportedDevicesChanged", "supportedDevicesChanged",
                "defaultControlChanged", "defaultBaudRateChanged"}));
        QCOMPARE(model.supportedDevices(), QStringList{"A"});
        QCOMPARE(model.defaultControl(), QStringLiteral("com1"));
        QCOMPARE(model.defaultBaudRate(), 0);
        QVERIFY(model.enableEmulators());
    }
    void cancelledSearchCountsAsEmpty()
    {
        // A task cancelled before it ran reports no result; the list gets the custom entries.
        DeviceFinderModel model;
        model.setSupportedDevices({"Grabber"});
        QVERIFY(cancelQueuedScan(model));
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QVERIFY(model.scanned());
        QCOMPARE(deviceRows(*model.devices()), QStringList{"Grabber/Custom"});
    }
    void destroyedWhileSearching()
    {
        for (int i = 0; i < 20; ++i) {
            auto* model = new DeviceFinderModel;
            model->setEnableEmulators(i % 2 == 0);
            model->setSupportedDevices(i % 3 == 0 ? QStringList{"EmuLink"} : QStringList{});
            model->scan();
            if (i % 4 == 0)
                QTest::qWait(1);
            delete model;
        }
        QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
        DeviceFinderModel model;
        QVERIFY(scanToEnd(model));
        QCOMPARE(deviceRows(*model.devices()), allRealDevices);
    }
    void abandonedSearchesStop()
    {
        // A thousand half-second searches left running would keep the pool busy for minutes;
        // stopped, they end at once.
        for (int i = 0; i < 1000; ++i) {
            auto* model = new DeviceFinderModel;
            model->setEnableEmulators(true);
            model->scan();
            delete model;
        }
        QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
    }
};

QTEST_GUILESS_MAIN(tst_DeviceFinderModel)
#include "tst_devicefindermodel.moc"
