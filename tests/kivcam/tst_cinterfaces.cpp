// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "TestBackend.h"

#include <kivcam/CCameraFinder.h>
#include <kivcam/CInterfaces.h>

#include <QTest>

#include <barrier>
#include <stop_token>
#include <thread>

using kiv::CString;
using kiv::TArray;
using kiv::cam::CCameraFinder;
using kiv::cam::CInterfaces;
using kiv::cam::interfaces;
using kiv::cam::SDeviceInfo;
using test::SScanControl;

namespace {

QByteArrayList deviceNames(const TArray<SDeviceInfo>& devices)
{
    QByteArrayList names;
    for (const SDeviceInfo& device : devices)
        names << QByteArray(device.interfaceName.c_str()) + "/" + device.deviceName.c_str();
    return names;
}

} // namespace

class tst_CInterfaces : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        interfaces()->setEnableEmulators(false);
        SScanControl::failBroken = false;
        SScanControl::rendezvous = false;
        SScanControl::hold = false;
        SScanControl::holding = 0;
        SScanControl::stopped = 0;
    }
    void singleInstance() { QCOMPARE(interfaces(), interfaces()); }
    void listsEveryTransportEmulatorsIncluded()
    {
        QCOMPARE(interfaces()->interfaceCount(), 4);
        QCOMPARE(QByteArray(interfaces()->interfaceAt(2)->name.c_str()), QByteArray("TestEmu"));
        QVERIFY(interfaces()->interfaceAt(2)->isEmulator);
        QVERIFY(!interfaces()->interfaceAt(4));
        QVERIFY(!interfaces()->interfaceAt(-1));
    }
    void findsByName()
    {
        QCOMPARE(
            interfaces()->interfaceByName("TestGrabber").get(), interfaces()->interfaceAt(1).get());
        QVERIFY(!interfaces()->interfaceByName("Nothing"));
    }
    void emulatorsAreOffAtStart() { QVERIFY(!CInterfaces().enableEmulators()); }
    void findDevicesWithoutEmulators()
    {
        TArray<SDeviceInfo> devices;
        QVERIFY(interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT));
        QCOMPARE(deviceNames(devices),
            (QByteArrayList{"TestSerial/COM1", "TestSerial/COM2", "TestGrabber/Grabber 0 / Port 0",
                "TestBroken/COM9"}));
    }
    void findDevicesWithEmulators()
    {
        interfaces()->setEnableEmulators(true);
        TArray<SDeviceInfo> devices{SDeviceInfo()};
        QVERIFY(interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT));
        QCOMPARE(devices.count(), 6); // the record that was there is kept
        QVERIFY(deviceNames(devices).contains("TestEmu/Emu 0"));
    }
    void emulatorsOnly()
    {
        interfaces()->setEnableEmulators(true);
        TArray<SDeviceInfo> devices;
        QVERIFY(interfaces()->findDevices(
            devices, CInterfaces::FIND_PRESENT | CInterfaces::FIND_EMULATORS_ONLY));
        QCOMPARE(deviceNames(devices), QByteArrayList{"TestEmu/Emu 0"});
    }
    void findDevicesOfBaseTypeOrTransportName()
    {
        interfaces()->setEnableEmulators(true);
        TArray<SDeviceInfo> serial;
        QVERIFY(interfaces()->findDevicesOf(serial, {"Serial"}, CInterfaces::FIND_PRESENT));
        QCOMPARE(deviceNames(serial),
            (QByteArrayList{"TestSerial/COM1", "TestSerial/COM2", "TestBroken/COM9"}));
        TArray<SDeviceInfo> byName;
        QVERIFY(interfaces()->findDevicesOf(
            byName, {"TestGrabber", "CamEmu"}, CInterfaces::FIND_PRESENT));
        QCOMPARE(deviceNames(byName),
            (QByteArrayList{"TestGrabber/Grabber 0 / Port 0", "TestEmu/Emu 0"}));
        TArray<SDeviceInfo> none;
        QVERIFY(interfaces()->findDevicesOf(none, {}, CInterfaces::FIND_PRESENT));
        QVERIFY(none.empty());
    }
    void failedScanKeepsTheOthers()
    {
        SScanControl::failBroken = true;
        TArray<SDeviceInfo> devices;
        QVERIFY(!interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT));
        QCOMPARE(deviceNames(devices),
            (QByteArrayList{
                "TestSerial/COM1", "TestSerial/COM2", "TestGrabber/Grabber 0 / Port 0"}));
    }
    void transportsAreScannedAtTheSameTime()
    {
        // Each of the two scans waits for the other to start: run one after the other, the
        // first would give up and the search would fail.
        SScanControl::waiting = 0;
        SScanControl::rendezvous = true;
        TArray<SDeviceInfo> devices;
        QVERIFY(interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT));
        QCOMPARE(devices.count(), 4);
    }
    void stopEndsTheSearchEarly()
    {
        SScanControl::hold = true;
        std::stop_source stop;
        TArray<SDeviceInfo> devices;
        bool ok = true;
        std::thread search([&] {
            ok = interfaces()->findDevicesOf(
                devices, {"Serial"}, CInterfaces::FIND_PRESENT, stop.get_token());
        });
        QTRY_COMPARE(SScanControl::holding.load(), 1);
        stop.request_stop();
        search.join();
        QVERIFY(!ok);
        QCOMPARE(SScanControl::stopped.load(), 1);

        QVERIFY(!interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT, stop.get_token()));
        QCOMPARE(SScanControl::holding.load(), 1);
    }
    void eachThreadSearchesWithItsOwnSwitch()
    {
        // The thread that sets its switch first searches after the other has set the opposite.
        std::barrier setInTurn(2);
        int found[2] = {};
        auto search = [&](int turn) {
            if (turn == 1)
                setInTurn.arrive_and_wait();
            interfaces()->setEnableEmulators(turn == 0);
            if (turn == 0)
                setInTurn.arrive_and_wait();
            setInTurn.arrive_and_wait();
            TArray<SDeviceInfo> devices;
            interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT);
            found[turn] = devices.count();
        };
        std::thread on(search, 0);
        std::thread off(search, 1);
        on.join();
        off.join();
        QCOMPARE(found[0], 5);
        QCOMPARE(found[1], 4);
    }
    void threadsOwnSwitchServesOneSearch()
    {
        std::barrier turns(2);
        int found[2] = {};
        std::thread worker([&] {
            interfaces()->setEnableEmulators(true);
            turns.arrive_and_wait();
            turns.arrive_and_wait();
            TArray<SDeviceInfo> devices[2];
            interfaces()->findDevices(devices[0], CInterfaces::FIND_PRESENT);
            interfaces()->findDevices(devices[1], CInterfaces::FIND_PRESENT);
            found[0] = devices[0].count();
            found[1] = devices[1].count();
        });
        turns.arrive_and_wait();
        interfaces()->setEnableEmulators(false);
        turns.arrive_and_wait();
        worker.join();
        QCOMPARE(found[0], 5);
        QCOMPARE(found[1], 4);
        // Another catalogue's switch is not this one's.
        CInterfaces other;
        other.setEnableEmulators(true);
        QVERIFY(!interfaces()->enableEmulators());
        QVERIFY(other.enableEmulators());
    }
    void finderSwitchIsAnotherOne()
    {
        // This thread sets both switches one after the other, and then another thread sets both
        // the other way: each of this thread's values serves its own switch still.
        interfaces()->setEnableEmulators(true);
        CCameraFinder::setEnableEmulators(true);
        std::thread([] {
            interfaces()->setEnableEmulators(false);
            CCameraFinder::setEnableEmulators(false);
        }).join();
        QVERIFY(interfaces()->enableEmulators());
        QVERIFY(CCameraFinder::enableEmulators());
        CCameraFinder::setEnableEmulators(false);
    }
    void createsUnopenedDevices()
    {
        const kiv::TSharedPtr<kiv::cam::IDevice> device
            = interfaces()->interfaceByName("TestSerial")->createDevice();
        QVERIFY(device);
        QVERIFY(!device->isOpen());
    }
};

QTEST_APPLESS_MAIN(tst_CInterfaces)
#include "tst_cinterfaces.moc"
