// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "EmulatorTest.h"

#include <kivcam/CInterfaces.h>
#include <kivcam/IDevice.h>
#include <kivcam/emulator/CEmulatorWorld.h>

#include <QTest>

#include <future>

using namespace emulatortest;

// Devices of the emulated transports of a world with every fault, opened and closed.
class tst_CEmulatorDevice : public QObject {
    Q_OBJECT

private:
    static TSharedPtr<IDevice> create(const char* transport)
    {
        return interfaces()->interfaceByName(transport)->createDevice();
    }
    static SDeviceInfo record(const char* transport, const char* name)
    {
        return byName(devicesOf(transport), transport, name);
    }
    // The built-in world, apart from the process's.
    static TSharedPtr<const CEmulatorWorld> builtInWorld()
    {
        return CEmulatorWorld::LoadFile(":/kivcam/DefaultWorld.xml");
    }

private slots:
    void initTestCase() { useWorld("emulator-faults.xml"); }

    void newDeviceIsClosed()
    {
        const TSharedPtr<IDevice> device = create("SlowSerial");
        QVERIFY(device);
        QVERIFY(!device->isOpen());
        QVERIFY(device->info().empty());
    }

    void openAndClose()
    {
        const TSharedPtr<IDevice> device = create("SlowSerial");
        QVERIFY(device->open(record("SlowSerial", "COM1"), false));
        QVERIFY(device->isOpen());
        QCOMPARE(str(device->info().interfaceName), QByteArray("SlowSerial"));
        QCOMPARE(str(device->info().deviceName), QByteArray("COM1"));
        device->close();
        QVERIFY(!device->isOpen());
    }

    void openTwiceFails()
    {
        const TSharedPtr<IDevice> device = create("SlowSerial");
        QVERIFY(device->open(record("SlowSerial", "COM1"), true));
        QVERIFY(!device->open(record("SlowSerial", "COM1"), true));
        QCOMPARE(str(device->errorMessage()), QByteArray("The device is open already."));
        QVERIFY(device->isOpen());
        QCOMPARE(str(device->info().deviceName), QByteArray("COM1"));
    }

    void closeIsIdempotentAndReopens()
    {
        const TSharedPtr<IDevice> device = create("RealGrabber");
        device->close();
        QVERIFY(!device->isOpen());
        QVERIFY(device->open(record("RealGrabber", "Grabber 0 / Port 0"), false));
        device->close();
        device->close();
        QVERIFY(!device->isOpen());
        QVERIFY(device->open(record("RealGrabber", "Grabber 0 / Port 1"), false));
        QCOMPARE(str(device->info().deviceName), QByteArray("Grabber 0 / Port 1"));
    }

    void openFaultRefuses()
    {
        const TSharedPtr<IDevice> device = create("SlowSerial");
        QVERIFY(!device->open(record("SlowSerial", "COM2"), false));
        QCOMPARE(str(device->errorMessage()),
            QByteArray("The device \"COM2\" on \"SlowSerial\" did not open."));
        QVERIFY(!device->isOpen());
        QVERIFY(device->open(record("SlowSerial", "COM1"), false));
        QVERIFY(device->errorMessage().empty());
    }

    void deviceThatCannotConnectRefuses()
    {
        const SDeviceInfo busy = record("SlowSerial", "COM3");
        QVERIFY(!busy.canConnect);
        const TSharedPtr<IDevice> device = create("SlowSerial");
        QVERIFY(!device->open(busy, false));
        // The device's own words.
        QCOMPARE(device->errorMessage(), busy.errorMessage);
    }

    void recordMustNameADeviceOfTheTransport()
    {
        const TSharedPtr<IDevice> device = create("SlowSerial");
        QVERIFY(!device->open(SDeviceInfo(), false));
        SDeviceInfo unknown = record("SlowSerial", "COM1");
        unknown.deviceName = "COM9";
        QVERIFY(!device->open(unknown, false));
        QCOMPARE(str(device->errorMessage()),
            QByteArray("There is no device \"COM9\" on \"SlowSerial\" now."));
        // The right device name on the wrong transport.
        SDeviceInfo elsewhere = record("SlowSerial", "COM1");
        elsewhere.interfaceName = "Emu";
        QVERIFY(!device->open(elsewhere, false));
        QCOMPARE(str(device->errorMessage()),
            QByteArray("The device \"COM1\" is a device of \"Emu\", not of \"SlowSerial\"."));
        QVERIFY(!device->open(record("Emu", "Emu 0"), false));
        QVERIFY(!device->isOpen());
    }

    // A transport whose devices have no identifying parameter (SlowSerial's have none) opens a
    // record entered by hand as a free slot, named by nothing.
    void recordEnteredByHandWithoutAnAddressOpensAFreeSlot()
    {
        SDeviceInfo byHand = interfaces()->interfaceByName("SlowSerial")->defaultDevice;
        byHand.parameters["BaudRate"].setValue("9600");
        const TSharedPtr<IDevice> device = create("SlowSerial");
        QVERIFY(device->open(byHand, false));
        QVERIFY(device->info().deviceName.empty());
        QCOMPARE(str(device->info().interfaceName), QByteArray("SlowSerial"));
        QCOMPARE(str(device->info().parameters["BaudRate"].value().ToString()), QByteArray("9600"));
    }

    // In the built-in world, a port or an address entered by hand names the found device that
    // carries it: the record opens as that device, with its own parameter values.
    void recordEnteredByHandOpensTheDeviceItNames_data()
    {
        QTest::addColumn<QByteArray>("transport");
        QTest::addColumn<QByteArray>("parameter");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QByteArray>("deviceName");
        QTest::newRow("port") << QByteArray("EmuSerial") << QByteArray("Control")
                              << QByteArray("COM3") << QByteArray("COM3");
        QTest::newRow("address") << QByteArray("EmuEthernet") << QByteArray("Address")
                                 << QByteArray("192.168.10.22") << QByteArray("192.168.10.22");
        QTest::newRow("bus position") << QByteArray("EmuUSB") << QByteArray("Control")
                                      << QByteArray("4-2") << QByteArray("USB 4-2");
    }
    void recordEnteredByHandOpensTheDeviceItNames()
    {
        QFETCH(QByteArray, transport);
        QFETCH(QByteArray, parameter);
        QFETCH(QByteArray, value);
        QFETCH(QByteArray, deviceName);
        const auto world = builtInWorld();
        const TSharedPtr<CEmulatorInterface> emulated = world->interfaceByName(transport.data());
        QVERIFY(emulated);
        SDeviceInfo byHand = emulated->defaultDevice;
        QVERIFY(byHand.deviceName.empty());
        QCOMPARE(byHand.parameters[parameter.data()].value().getType(), CVariant::TYPE_STRING);
        byHand.parameters[parameter.data()].setValue(value.data());
        const TSharedPtr<IDevice> device = emulated->createDevice();
        QVERIFY2(device->open(byHand, false), device->errorMessage().c_str());
        QCOMPARE(str(device->info().deviceName), deviceName);
        QCOMPARE(str(device->info().parameters[parameter.data()].value().ToString()), value);
        // The record's own values, not the found device's.
        QCOMPARE(device->info().parameters.count(), byHand.parameters.count());
    }

    void recordEnteredByHandWithAnUnknownAddressIsRefused()
    {
        const auto world = builtInWorld();
        const TSharedPtr<CEmulatorInterface> serial = world->interfaceByName("EmuSerial");
        SDeviceInfo byHand = serial->defaultDevice;
        byHand.parameters["Control"].setValue("COM9");
        const TSharedPtr<IDevice> device = serial->createDevice();
        QVERIFY(!device->open(byHand, false));
        QCOMPARE(str(device->errorMessage()),
            QByteArray("No emulated device on \"Emulated serial ports\" answers at \"COM9\"."));
        QVERIFY(!device->isOpen());
        // The same record with a port that answers opens on the same object.
        byHand.parameters["Control"].setValue("COM1");
        QVERIFY(device->open(byHand, false));
        QCOMPARE(str(device->info().deviceName), QByteArray("COM1"));
    }

    // The camera emulator's record entered by hand has only its pattern and rate, which its
    // found devices let anyone change: it opens a free slot, with its own pattern and rate.
    void emulatedCameraSlotEnteredByHandOpensAFreeSlot()
    {
        const auto world = builtInWorld();
        const TSharedPtr<CEmulatorInterface> cameraSlots = world->interfaceByName("EmuCamera");
        SDeviceInfo byHand = cameraSlots->defaultDevice;
        QVERIFY(byHand.parameters.Exists("Pattern"));
        byHand.parameters["Pattern"].setValue("Noise");
        const TSharedPtr<IDevice> device = cameraSlots->createDevice();
        QVERIFY2(device->open(byHand, false), device->errorMessage().c_str());
        QVERIFY(device->info().deviceName.empty());
        QCOMPARE(str(device->info().parameters.TextOf("Pattern")), QByteArray("Noise"));
    }

    void recordFilledByHandOpens()
    {
        SDeviceInfo byHand = interfaces()->interfaceByName("SlowSerial")->defaultDevice;
        byHand.deviceName = "COM1";
        byHand.parameters["BaudRate"].setValue("9600");
        const TSharedPtr<IDevice> device = create("SlowSerial");
        QVERIFY(device->open(byHand, false));
        QCOMPARE(str(device->info().parameters["BaudRate"].value().ToString()), QByteArray("9600"));
    }

    void opensOnAWorkerThread()
    {
        const TSharedPtr<IDevice> device = create("Emu");
        const SDeviceInfo emu = record("Emu", "Emu 0");
        std::future<bool> opened
            = std::async(std::launch::async, [device, emu] { return device->open(emu, true); });
        QVERIFY(opened.get());
        QVERIFY(device->isOpen());
        std::async(std::launch::async, [device] { device->close(); }).wait();
        QVERIFY(!device->isOpen());
    }
};

QTEST_GUILESS_MAIN(tst_CEmulatorDevice)
#include "tst_cemulatordevice.moc"
