// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "StreamTest.h"

#include <kiv/CVariant.h>
#include <kiv/PixelType.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/IController.h>

#include <QCoreApplication>
#include <QProcess>
#include <QTest>
#include <QVariant>

#include <cstring>
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

struct SSetup {
    SCameraInfo camera;
    TSharedPtr<IDevice> device;
    TSharedPtr<IController> controller;
};

// A camera with its control device open and its controller made.
SSetup setUp(const SCameraInfo& camera)
{
    SSetup setup;
    setup.camera = camera;
    setup.device = interfaces()->interfaceByName(camera.comm.interfaceName)->createDevice();
    if (!setup.device->open(camera.comm, false))
        qWarning("cannot open the control device: %s", setup.device->errorMessage().c_str());
    setup.controller = controllerFactory()->createController(camera.controller);
    return setup;
}

// A camera of the world, so set up.
SSetup setUp(const char* transport, const char* serial)
{
    return setUp(bySerial(camerasOf(transport), serial));
}

// The first image a connected setup streams; null when none comes.
TSharedPtr<const CImage> firstImage(const SSetup& setup)
{
    streamtest::CRecorder recorder;
    setup.controller->frameSource()->subscribe(&recorder);
    const bool arrived = recorder.waitForFrames(1);
    setup.controller->frameSource()->unsubscribe(&recorder);
    return arrived ? recorder.frames().front() : TSharedPtr<const CImage>();
}

// Why the setup's camera, made that wide, does not connect; empty when it connects.
QByteArray refusalAtWidth(const SSetup& setup, int width)
{
    SCameraInfo camera = setup.camera;
    camera.width = static_cast<std::uint16_t>(width);
    const bool connected = setup.controller->connect(setup.device, camera);
    setup.controller->disconnect();
    return connected ? QByteArray() : str(setup.controller->errorMessage());
}

// A description of the user's own: no type, no serial, the generic controller.
SCameraInfo customCamera(const SDeviceInfo& device, int width, int height)
{
    SCameraInfo camera;
    camera.controller = "Generic";
    camera.pixelType = ParsePixelType("Mono16");
    camera.dataType = kiv::DATA_TYPE_UINT16;
    camera.adBits = 16;
    camera.width = static_cast<std::uint16_t>(width);
    camera.height = static_cast<std::uint16_t>(height);
    camera.comm = device;
    return camera;
}

// This program started with this argument runs tst_CEmulatorControllerInTheBuiltInWorld: the
// emulator reads its world once per process.
constexpr const char* builtInWorldArgument = "--built-in-world";

} // namespace

// Controllers of a world with every fault, connecting to its cameras.
class tst_CEmulatorController : public QObject {
    Q_OBJECT

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

    // A description of the user's own on a device of the world takes the sensor of the
    // device's camera, not its faults: S-2 refuses to connect, the device's first camera,
    // S-1, has a 320 x 256 sensor.
    void ownDescriptionTakesTheSensorNotTheFaults()
    {
        const SCameraInfo s2 = bySerial(camerasOf("SlowSerial"), "S-2");
        const SSetup setup = setUp(customCamera(s2.comm, 320, 256));
        QCOMPARE(refusalAtWidth(setup, 320), QByteArray());
        QCOMPARE(refusalAtWidth(setup, 640),
            QByteArray("The frame 640 x 256 does not fit the 320 x 256 sensor of the camera on "
                       "\"COM1\"; make it at most 320 x 256."));
    }

    void theBuiltInWorld()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("KIVCAM_EMULATOR_WORLD");
        QProcess child;
        child.setProcessEnvironment(environment);
        child.setProcessChannelMode(QProcess::ForwardedChannels);
        child.start(QCoreApplication::applicationFilePath(), {builtInWorldArgument});
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
    }
};

// Controllers of the built-in world, whose devices carry a test pattern and a frame rate, and
// whose cameras' sensors bound the frames described.
class tst_CEmulatorControllerInTheBuiltInWorld : public QObject {
    Q_OBJECT

private:
    // An entry for a device's parameters, of any value.
    static CParameters::CEntry entry(const char* name, CVariant value)
    {
        return CParameters::CEntry(name, name, {}, CParameters::EDIT_ALWAYS, std::move(value));
    }
    static SCameraInfo trainingRig() { return bySerial(camerasOf("EmuCamera"), "GL-0001"); }

private slots:
    // Glimmer640 runs at 50 a second; its device, "Emulator 0", says 30.
    void theDeviceSetsTheFrameRate()
    {
        const SSetup setup = setUp(trainingRig());
        QCOMPARE(str(setup.camera.identity), QByteArray("Training rig"));
        QCOMPARE(str(setup.camera.comm.deviceName), QByteArray("Emulator 0"));
        QCOMPARE(setup.camera.frameRate, 50.0);
        QCOMPARE(setup.camera.comm.parameters["FrameRate"].value().ToDouble(), 30.0);
        QVERIFY(setup.controller->connect(setup.device, setup.camera));
        QCOMPARE(setup.controller->frameSource()->frameRate(), 30.0);
        // The panel's control still changes the rate of the running stream.
        QVERIFY(setup.controller->frameSource()->setFrameRate(10));
        QCOMPARE(setup.controller->frameSource()->frameRate(), 10.0);
        setup.controller->disconnect();
    }

    // The device that carries the pictures sets them: the video device, or the control device
    // when the video device is the same.
    void theVideoDeviceSetsThePictures()
    {
        SSetup setup = setUp("EmuSerial", "BS320-10417");
        QCOMPARE(str(setup.camera.video.deviceName), QByteArray("Digitizer 0"));
        setup.camera.comm.parameters.Add(entry("FrameRate", 5.0));
        QVERIFY(setup.controller->connect(setup.device, setup.camera));
        QCOMPARE(setup.controller->frameSource()->frameRate(), 60.0);
        setup.camera.video.parameters.Add(entry("FrameRate", 7.0));
        QVERIFY(setup.controller->connect(setup.device, setup.camera));
        QCOMPARE(setup.controller->frameSource()->frameRate(), 7.0);
        setup.controller->disconnect();
    }

    void impossibleSettingsAreRefused_data()
    {
        QTest::addColumn<QByteArray>("parameter");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QByteArray>("reason");
        const QByteArray range = "choose a rate above 0 and at most 1000 Hz.";
        QTest::newRow("rate 0") << QByteArray("FrameRate") << QVariant(0.0)
                                << "The frame rate 0 Hz of \"Emulator 0\" is not possible; "
                + range;
        QTest::newRow("rate below 0")
            << QByteArray("FrameRate") << QVariant(-5.0)
            << "The frame rate -5 Hz of \"Emulator 0\" is not possible; " + range;
        QTest::newRow("rate too high")
            << QByteArray("FrameRate") << QVariant(1000.5)
            << "The frame rate 1000.5 Hz of \"Emulator 0\" is not possible; " + range;
        QTest::newRow("rate not a number")
            << QByteArray("FrameRate") << QVariant("fast")
            << "The frame rate \"fast\" of \"Emulator 0\" is not a number; " + range;
        QTest::newRow("unknown pattern")
            << QByteArray("Pattern") << QVariant("Stripes")
            << QByteArray("The test pattern \"Stripes\" of \"Emulator 0\" is not one the "
                          "emulator draws; choose Gradient, Noise or Bars.");
    }
    void impossibleSettingsAreRefused()
    {
        QFETCH(QByteArray, parameter);
        QFETCH(QVariant, value);
        QFETCH(QByteArray, reason);
        SSetup setup = setUp(trainingRig());
        const CVariant given = value.typeId() == QMetaType::Double
            ? CVariant(value.toDouble())
            : CVariant(CString(value.toByteArray().constData()));
        setup.camera.comm.parameters.Add(entry(parameter.constData(), given));
        QVERIFY(!setup.controller->connect(setup.device, setup.camera));
        QVERIFY(!setup.controller->isConnected());
        QCOMPARE(str(setup.controller->errorMessage()), reason);
    }

    void frameWithinTheSensor_data()
    {
        QTest::addColumn<QByteArray>("serial");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("too wide") << QByteArray("MS320-00871") << 333 << 256
                                  << QByteArray("The frame 333 x 256 does not fit the 320 x 256 "
                                                "sensor of the camera on \"COM3\"; make it at "
                                                "most 320 x 256.");
        QTest::newRow("too high") << QByteArray("BS320-10417") << 320 << 257
                                  << QByteArray("The frame 320 x 257 does not fit the 320 x 256 "
                                                "sensor of the camera on \"COM1\"; make it at "
                                                "most 320 x 256.");
        QTest::newRow("no width") << QByteArray("MS320-00871") << 0 << 256
                                  << QByteArray("The frame 0 x 256 has no pixels for the 320 x "
                                                "256 sensor of the camera on \"COM3\"; make it "
                                                "at least 1 x 1 and at most 320 x 256.");
        QTest::newRow("within") << QByteArray("MS320-00871") << 200 << 100 << QByteArray();
        QTest::newRow("all of it") << QByteArray("BS320-10417") << 320 << 256 << QByteArray();
    }
    void frameWithinTheSensor()
    {
        QFETCH(QByteArray, serial);
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(QByteArray, reason);
        SSetup setup = setUp("EmuSerial", serial.constData());
        setup.camera.width = static_cast<std::uint16_t>(width);
        setup.camera.height = static_cast<std::uint16_t>(height);
        const bool connected = setup.controller->connect(setup.device, setup.camera);
        QCOMPARE(str(setup.controller->errorMessage()), reason);
        QCOMPARE(connected, reason.isEmpty());
        if (!connected)
            return;
        const TSharedPtr<const CImage> image = firstImage(setup);
        QVERIFY(image);
        QCOMPARE(image->width(), width);
        QCOMPARE(image->height(), height);
        setup.controller->disconnect();
    }

    void pixelTypeMustBeDrawable()
    {
        SSetup setup = setUp("EmuSerial", "MS320-00871");
        SGuid unknown = setup.camera.pixelType;
        unknown.data1 = 0x12345678;
        setup.camera.pixelType = unknown;
        QVERIFY(!setup.controller->connect(setup.device, setup.camera));
        QCOMPARE(str(setup.controller->errorMessage()),
            "The pixel type " + str(unknown.ToString())
                + " cannot be drawn by the emulator; choose one of the camera library's pixel "
                  "types, such as Mono16.");
        setup.camera.pixelType = SGuid();
        QVERIFY(!setup.controller->connect(setup.device, setup.camera));
        QCOMPARE(str(setup.controller->errorMessage()),
            QByteArray("The camera description gives no pixel type, so the emulator cannot draw "
                       "its pictures; choose one, such as Mono16."));
    }

    // A custom camera on the training rig's device: no name, no serial.
    void customCameraStreams()
    {
        const SSetup setup = setUp(customCamera(trainingRig().comm, 640, 480));
        QVERIFY2(setup.controller->connect(setup.device, setup.camera),
            setup.controller->errorMessage().c_str());
        const TSharedPtr<const CImage> image = firstImage(setup);
        QVERIFY(image);
        QCOMPARE(image->width(), 640);
        QCOMPARE(image->height(), 480);
        QCOMPARE(setup.controller->frameSource()->frameRate(), 30.0);
        setup.controller->disconnect();
    }

    // A camera slot entered by hand is free: any frame up to 4096 x 4096, in its own pattern.
    void customCameraOnASlotEnteredByHand()
    {
        SDeviceInfo slot = interfaces()->interfaceByName("EmuCamera")->defaultDevice;
        slot.parameters["FrameRate"].setValue(20.0);
        slot.parameters["Pattern"].setValue("Bars");
        const SSetup setup = setUp(customCamera(slot, 1024, 1024));
        QVERIFY(setup.device->isOpen());
        QVERIFY2(setup.controller->connect(setup.device, setup.camera),
            setup.controller->errorMessage().c_str());
        QCOMPARE(setup.controller->frameSource()->frameRate(), 20.0);
        const TSharedPtr<const CImage> image = firstImage(setup);
        QVERIFY(image);
        QCOMPARE(image->width(), 1024);
        QCOMPARE(refusalAtWidth(setup, 5000),
            QByteArray("The frame 5000 x 1024 does not fit the 4096 x 4096 sensor of an emulated "
                       "camera slot; make it at most 4096 x 4096."));
    }

    // A port entered by hand is the device it names, with that device's camera and sensor.
    void customCameraOnAPortEnteredByHand()
    {
        SDeviceInfo port = interfaces()->interfaceByName("EmuSerial")->defaultDevice;
        port.parameters["Control"].setValue("COM3");
        const SSetup setup = setUp(customCamera(port, 333, 256));
        QCOMPARE(str(setup.device->info().deviceName), QByteArray("COM3"));
        QCOMPARE(refusalAtWidth(setup, 333),
            QByteArray("The frame 333 x 256 does not fit the 320 x 256 sensor of the camera on "
                       "\"COM3\"; make it at most 320 x 256."));
        QCOMPARE(refusalAtWidth(setup, 320), QByteArray());
    }
};

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc >= 2 && std::strcmp(argv[1], builtInWorldArgument) == 0) {
        QStringList arguments = app.arguments();
        arguments.removeAt(1);
        tst_CEmulatorControllerInTheBuiltInWorld test;
        return QTest::qExec(&test, arguments);
    }
    tst_CEmulatorController test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_cemulatorcontroller.moc"
