#include "EmulatorTest.h"

#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/IController.h>

#include <QTest>

#include <future>
#include <mutex>

using namespace emulatortest;

namespace {

// A device that is open from any record and goes away when the test says.
class CVanishingDevice : public IDevice {
public:
    bool open(SDeviceInfo info, bool) override
    {
        m_info = std::move(info);
        m_open = true;
        return true;
    }
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    const SDeviceInfo& info() const override { return m_info; }
    void vanish(const CString& reason) const { reportLost(reason); }

private:
    SDeviceInfo m_info;
    bool m_open = false;
};

} // namespace

// Controllers of a world with every fault, connecting to its cameras.
class tst_CEmulatorController : public QObject {
    Q_OBJECT

private:
    struct SSetup {
        SCameraInfo camera;
        TSharedPtr<IDevice> device;
        TSharedPtr<IController> controller;
    };

    // A camera of the world with its control device open and its type's controller made.
    static SSetup setUp(const char* transport, const char* serial)
    {
        SSetup setup;
        setup.camera = bySerial(camerasOf(transport), serial);
        setup.device = interfaces()->interfaceByName(transport)->createDevice();
        if (!setup.device->open(setup.camera.comm, false))
            qWarning("cannot open the control device of %s", serial);
        setup.controller = controllerFactory()->createController(setup.camera.controller);
        return setup;
    }

private slots:
    void initTestCase() { useWorld("emulator-faults.xml"); }

    void controllersComeFromTheWorld()
    {
        TArray<CString> names;
        controllerFactory()->getControllerNames(names);
        QVERIFY(names.contains("Generic"));
        QVERIFY(names.contains("Stubborn"));
        QVERIFY(names.contains("Slow"));
        QVERIFY(!names.contains("Absent"));
        const TSharedPtr<IController> controller = controllerFactory()->createController("Slow");
        QVERIFY(controller);
        QCOMPARE(str(controller->name()), QByteArray("Slow"));
        QVERIFY(!controller->isConnected());
        QVERIFY(!controllerFactory()->createController("Absent"));
    }

    void connectAndDisconnect()
    {
        const SSetup setup = setUp("SlowSerial", "S-1");
        QCOMPARE(str(setup.controller->name()), QByteArray("Generic"));
        QVERIFY(setup.controller->connect(setup.device, setup.camera));
        QVERIFY(setup.controller->isConnected());
        setup.controller->disconnect();
        QVERIFY(!setup.controller->isConnected());
        setup.controller->disconnect();
        QVERIFY(!setup.controller->isConnected());
        QVERIFY(setup.controller->connect(setup.device, setup.camera));
        QVERIFY(setup.controller->isConnected());
    }

    void deviceMustBeOpen()
    {
        const SSetup setup = setUp("SlowSerial", "S-1");
        QVERIFY(!setup.controller->connect(TSharedPtr<IDevice>(), setup.camera));
        QVERIFY(!setup.controller->isConnected());
        setup.device->close();
        QVERIFY(!setup.controller->connect(setup.device, setup.camera));
        QVERIFY(!setup.controller->isConnected());
    }

    void failedConnectEndsTheConnection()
    {
        const SSetup setup = setUp("SlowSerial", "S-1");
        QVERIFY(setup.controller->connect(setup.device, setup.camera));
        setup.device->close();
        QVERIFY(!setup.controller->connect(setup.device, setup.camera));
        QVERIFY(!setup.controller->isConnected());
    }

    void controllerFaultRefuses()
    {
        const SSetup setup = setUp("RealGrabber", "G-2");
        QCOMPARE(str(setup.controller->name()), QByteArray("Stubborn"));
        QVERIFY(setup.device->isOpen());
        QVERIFY(!setup.controller->connect(setup.device, setup.camera));
        QVERIFY(!setup.controller->isConnected());
        QCOMPARE(str(setup.controller->errorMessage()),
            QByteArray("The camera G-2 did not answer the controller \"Stubborn\"."));
    }

    void cameraFaultRefuses()
    {
        const SSetup refusing = setUp("SlowSerial", "S-2");
        QVERIFY(refusing.device->isOpen());
        QVERIFY(!refusing.controller->connect(refusing.device, refusing.camera));
        QVERIFY(!refusing.controller->isConnected());
        QCOMPARE(str(refusing.controller->errorMessage()),
            QByteArray("The camera S-2 did not answer the controller \"Generic\"."));

        // The same controller and device serve the camera beside it, and the reason goes.
        const SCameraInfo neighbour = bySerial(camerasOf("SlowSerial"), "S-1");
        QVERIFY(refusing.controller->connect(refusing.device, neighbour));
        QVERIFY(refusing.controller->errorMessage().empty());
    }

    // A camera with lostAfter falls silent that long after each connect: its pictures stop, the
    // lost handler hears it once, and the controller stays connected until disconnect().
    void aCameraOfTheWorldFallsSilent()
    {
        const SSetup setup = setUp("Emu", "P-1");
        std::mutex mutex;
        QByteArrayList heard;
        setup.controller->setLostHandler([&](const CString& reason) {
            const std::lock_guard lock(mutex);
            heard << str(reason);
        });
        QVERIFY(setup.controller->connect(setup.device, setup.camera));
        QTRY_VERIFY([&] {
            const std::lock_guard lock(mutex);
            return !heard.isEmpty();
        }());
        QTest::qWait(300);
        {
            const std::lock_guard lock(mutex);
            QCOMPARE(heard, QByteArrayList{"The camera P-1 stopped answering."});
        }
        QVERIFY(setup.controller->isConnected());
        QCOMPARE(str(setup.controller->errorMessage()), heard.first());
        // A disconnect before the silence leaves nothing to hear.
        setup.controller->disconnect();
        QVERIFY(setup.controller->connect(setup.device, setup.camera));
        setup.controller->disconnect();
        QTest::qWait(300);
        const std::lock_guard lock(mutex);
        QCOMPARE(heard.size(), 1);
    }

    // The device going away is the camera's loss.
    void aDeviceThatGoesAwayLosesTheCamera()
    {
        const SSetup setup = setUp("SlowSerial", "S-1");
        CString heard;
        setup.controller->setLostHandler([&](const CString& reason) { heard = reason; });
        const TSharedPtr<IDevice> device(new CVanishingDevice);
        QVERIFY(device->open(setup.camera.comm, false));
        QVERIFY(setup.controller->connect(device, setup.camera));
        auto* vanishing = static_cast<CVanishingDevice*>(device.get());
        vanishing->vanish("The port went away.");
        QCOMPARE(str(heard), QByteArray("The port went away."));
        QVERIFY(setup.controller->isConnected());
        // After the disconnect the device is no longer the controller's.
        setup.controller->disconnect();
        heard = CString();
        vanishing->vanish("Again.");
        QVERIFY(heard.empty());
    }

    void cameraIsKnownByDeviceAndSerial()
    {
        const SSetup setup = setUp("SlowSerial", "S-1");
        SCameraInfo other = setup.camera;
        other.serial = "S-2";
        QVERIFY(!setup.controller->connect(setup.device, other));
        other.comm.deviceName = "COM2";
        QVERIFY(setup.controller->connect(setup.device, other));
    }

    void openFaultStopsTheCameraBeforeItsController()
    {
        const SCameraInfo camera = bySerial(camerasOf("SlowSerial"), "S-4");
        QVERIFY(camera.canConnect);
        const TSharedPtr<IDevice> device
            = interfaces()->interfaceByName("SlowSerial")->createDevice();
        QVERIFY(!device->open(camera.comm, false));
        const TSharedPtr<IController> controller
            = controllerFactory()->createController(camera.controller);
        QVERIFY(!controller->connect(device, camera));
    }

    // The slow controller takes its time; only the outcome is checked.
    void slowControllerConnects()
    {
        const SSetup setup = setUp("Emu", "P-1");
        QCOMPARE(str(setup.controller->name()), QByteArray("Slow"));
        QVERIFY(setup.controller->connect(setup.device, setup.camera));
        QVERIFY(setup.controller->isConnected());
    }

    void connectsOnAWorkerThread()
    {
        const SSetup setup = setUp("Emu", "E-1");
        std::future<bool> connected = std::async(std::launch::async,
            [&setup] { return setup.controller->connect(setup.device, setup.camera); });
        QVERIFY(connected.get());
        QVERIFY(setup.controller->isConnected());
    }
};

QTEST_GUILESS_MAIN(tst_CEmulatorController)
#include "tst_cemulatorcontroller.moc"
