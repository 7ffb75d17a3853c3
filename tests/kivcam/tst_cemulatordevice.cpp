#include "EmulatorTest.h"

#include <kivcam/CInterfaces.h>
#include <kivcam/IDevice.h>

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
        QVERIFY(!device->open(interfaces()->interfaceByName("SlowSerial")->defaultDevice, false));
        QVERIFY(!device->isOpen());
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
