// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "EmulatorTest.h"

#include <kiv/PixelType.h>
#include <kivcam/CCameraFinder.h>
#include <kivcam/CInterfaces.h>

#include <QTest>

#include <stop_token>

using namespace emulatortest;

// The emulated transports of a world with every fault, searched directly and through the
// catalogues.
class tst_CEmulatorInterface : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { useWorld("emulator-faults.xml"); }

    void init()
    {
        interfaces()->setEnableEmulators(true);
        CCameraFinder::setEnableEmulators(true);
    }

    void transportsComeFromTheWorld()
    {
        QCOMPARE(interfaces()->interfaceCount(), 4);
        const TSharedPtr<IInterface> serial = interfaces()->interfaceByName("SlowSerial");
        QVERIFY(serial);
        QCOMPARE(str(serial->icon), QByteArray("Serial"));
        QCOMPARE(str(serial->displayName), QByteArray("SlowSerial"));
        QCOMPARE(str(serial->baseType), QByteArray("Serial"));
        QVERIFY(serial->comm);
        QVERIFY(!serial->video);
        QVERIFY(serial->isEmulator);
        const TSharedPtr<IInterface> grabber = interfaces()->interfaceByName("RealGrabber");
        QCOMPARE(str(grabber->displayName), QByteArray("Grabber, not emulated"));
        QVERIFY(grabber->comm && grabber->video);
        QVERIFY(!grabber->isEmulator);
    }

    void defaultDeviceIsCompleted()
    {
        const SDeviceInfo& device = interfaces()->interfaceByName("SlowSerial")->defaultDevice;
        QCOMPARE(str(device.interfaceName), QByteArray("SlowSerial"));
        QCOMPARE(str(device.baseType), QByteArray("Serial"));
        QCOMPARE(str(device.iconName), QByteArray("Serial"));
        QVERIFY(device.deviceName.empty());
        QCOMPARE(device.parameters.count(), 1u);
        QCOMPARE(str(device.parameters["BaudRate"].value().ToString()), QByteArray("115200"));
        QCOMPARE(device.parameters["BaudRate"].editLevel, CParameters::EDIT_CUSTOM);
    }

    // SlowSerial takes its time; only the arrival of its results is checked.
    void slowScanDelivers()
    {
        TArray<SDeviceInfo> devices;
        QVERIFY(interfaces()->interfaceByName("SlowSerial")->findDevices(devices, {}));
        QCOMPARE(deviceNames(devices),
            QByteArrayList({"SlowSerial/COM1", "SlowSerial/COM2", "SlowSerial/COM3"}));
        TArray<SCameraInfo> cameras;
        QVERIFY(interfaces()->interfaceByName("SlowSerial")->findCameras(cameras, {}));
        QCOMPARE(serials(cameras), QByteArrayList({"S-1", "S-2", "S-3", "O-1", "S-4", "S-5"}));
    }

    void stoppedScanGivesFalseAndNothing()
    {
        std::stop_source stop;
        stop.request_stop();
        const TSharedPtr<IInterface> serial = interfaces()->interfaceByName("SlowSerial");
        TArray<SDeviceInfo> devices;
        QVERIFY(!serial->findDevices(devices, stop.get_token()));
        QVERIFY(devices.empty());
        TArray<SCameraInfo> cameras;
        QVERIFY(!serial->findCameras(cameras, stop.get_token()));
        QVERIFY(cameras.empty());
    }

    void deviceRecordsAreCompleted()
    {
        const TArray<SDeviceInfo> serial = devicesOf("SlowSerial");
        QCOMPARE(str(serial[0].interfaceName), QByteArray("SlowSerial"));
        QCOMPARE(str(serial[0].iconName), QByteArray("Serial"));
        QCOMPARE(str(serial[0].baseType), QByteArray("Serial"));
        QVERIFY(serial[0].canConnect);
        QVERIFY(!serial[2].canConnect);
        QCOMPARE(str(serial[2].errorSummary), QByteArray("Port in use"));

        // A record's own icon and base type win over the transport's.
        const TArray<SDeviceInfo> grabber = devicesOf("RealGrabber");
        QCOMPARE(str(grabber[0].iconName), QByteArray("FrameGrabber"));
        QCOMPARE(str(grabber[0].baseType), QByteArray("CameraLink"));
        QCOMPARE(str(grabber[1].iconName), QByteArray("CameraLink"));
        QCOMPARE(str(grabber[1].baseType), QByteArray("CameraLinkHS"));
    }

    void failingScanGivesFalseAndNothing()
    {
        const TSharedPtr<IInterface> broken = interfaces()->interfaceByName("BrokenUSB");
        TArray<SDeviceInfo> devices{SDeviceInfo()};
        QVERIFY(!broken->findDevices(devices, {}));
        QCOMPARE(devices.count(), 1);
        TArray<SCameraInfo> cameras{SCameraInfo()};
        QVERIFY(!broken->findCameras(cameras, {}));
        QCOMPARE(cameras.count(), 1);
    }

    void cameraStartsFromItsType()
    {
        const SCameraInfo camera = bySerial(camerasOf("SlowSerial"), "S-1");
        QCOMPARE(str(camera.name), QByteArray("Basic"));
        QCOMPARE(str(camera.iconName), QByteArray("Kelvin"));
        QCOMPARE(str(camera.displayName), QByteArray("Basic camera"));
        QCOMPARE(str(camera.controller), QByteArray("Generic"));
        QCOMPARE(str(camera.model), QByteArray("Basic 1"));
        QCOMPARE(str(camera.vendor), QByteArray("Test Vendor"));
        QCOMPARE(PixelTypeToString(camera.pixelType), CString("Mono14"));
        QCOMPARE(camera.dataType, DATA_TYPE_UINT16);
        QCOMPARE(camera.adBits, 14);
        QCOMPARE(camera.width, std::uint16_t{320});
        QCOMPARE(camera.height, std::uint16_t{256});
        QVERIFY(camera.canConnect);
        QVERIFY(camera.emulated);
    }

    void cameraSitsOnItsDevice()
    {
        const SCameraInfo camera = bySerial(camerasOf("SlowSerial"), "S-1");
        const SDeviceInfo com1 = byName(devicesOf("SlowSerial"), "SlowSerial", "COM1");
        QCOMPARE(str(camera.comm.interfaceName), QByteArray("SlowSerial"));
        QCOMPARE(str(camera.comm.deviceName), QByteArray("COM1"));
        QCOMPARE(str(camera.comm.baseType), str(com1.baseType));
        QCOMPARE(str(camera.comm.iconName), str(com1.iconName));
        QVERIFY(camera.video.empty());
    }

    void cameraOverridesItsType()
    {
        const SCameraInfo camera = bySerial(camerasOf("RealGrabber"), "G-1");
        QCOMPARE(str(camera.name), QByteArray("Basic"));
        QCOMPARE(str(camera.model), QByteArray("Basic 2"));
        QCOMPARE(str(camera.displayName), QByteArray("Bench camera"));
        QCOMPARE(camera.width, std::uint16_t{640});
        QCOMPARE(camera.height, std::uint16_t{256});
        QVERIFY(!camera.emulated);
        QCOMPARE(str(camera.video.interfaceName), QByteArray("RealGrabber"));
        QCOMPARE(str(camera.video.deviceName), QByteArray("Grabber 0 / Port 0"));
        QCOMPARE(str(camera.video.iconName), QByteArray("FrameGrabber"));
    }

    void videoMayBeOnAnotherTransport()
    {
        const SCameraInfo camera = bySerial(camerasOf("Emu"), "E-1");
        QCOMPARE(str(camera.comm.interfaceName), QByteArray("Emu"));
        QCOMPARE(str(camera.video.interfaceName), QByteArray("RealGrabber"));
        QCOMPARE(str(camera.video.deviceName), QByteArray("Grabber 0 / Port 1"));
        QCOMPARE(str(camera.video.baseType), QByteArray("CameraLinkHS"));
    }

    void cameraThatCannotConnectCarriesItsReasons()
    {
        const SCameraInfo camera = bySerial(camerasOf("SlowSerial"), "S-3");
        QVERIFY(!camera.canConnect);
        QCOMPARE(str(camera.errorSummary), QByteArray("Firmware too old"));
        QCOMPARE(str(camera.errorMessage),
            QByteArray("Update the camera's firmware to version 2.0 or later."));
    }

    void failingScanKeepsTheOthersDevices()
    {
        TArray<SDeviceInfo> devices;
        QVERIFY(!interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT));
        QCOMPARE(deviceNames(devices),
            QByteArrayList({"SlowSerial/COM1", "SlowSerial/COM2", "SlowSerial/COM3",
                "RealGrabber/Grabber 0 / Port 0", "RealGrabber/Grabber 0 / Port 1", "Emu/Emu 0"}));
    }

    void emulatorsOnlyLeavesOutRealTransports()
    {
        TArray<SDeviceInfo> devices;
        QVERIFY(!interfaces()->findDevices(devices, CInterfaces::FIND_EMULATORS_ONLY));
        QCOMPARE(deviceNames(devices),
            QByteArrayList({"SlowSerial/COM1", "SlowSerial/COM2", "SlowSerial/COM3", "Emu/Emu 0"}));
    }

    void realTransportStaysVisibleWithoutEmulators()
    {
        interfaces()->setEnableEmulators(false);
        TArray<SDeviceInfo> devices;
        QVERIFY(interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT));
        QCOMPARE(deviceNames(devices),
            QByteArrayList({"RealGrabber/Grabber 0 / Port 0", "RealGrabber/Grabber 0 / Port 1"}));

        CCameraFinder::setEnableEmulators(false);
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(serials(found(finder)), QByteArrayList({"G-1", "G-2"}));
        QVERIFY(finder.Find(CCameraFinder::FIND_EMULATORS_ONLY));
        QCOMPARE(finder.size(), std::uint64_t{0});
    }

    void findDevicesOfBaseType()
    {
        TArray<SDeviceInfo> devices;
        QVERIFY(!interfaces()->findDevicesOf(devices, {"CameraLink"}, CInterfaces::FIND_PRESENT));
        QCOMPARE(deviceNames(devices), QByteArrayList({"RealGrabber/Grabber 0 / Port 0"}));
        devices.clear();
        QVERIFY(!interfaces()->findDevicesOf(
            devices, {"CameraLinkHS", "CamEmu"}, CInterfaces::FIND_PRESENT));
        QCOMPARE(
            deviceNames(devices), QByteArrayList({"RealGrabber/Grabber 0 / Port 1", "Emu/Emu 0"}));
        devices.clear();
        QVERIFY(!interfaces()->findDevicesOf(devices, {"SlowSerial"}, CInterfaces::FIND_PRESENT));
        QCOMPARE(devices.count(), 3);
    }

    void finderKeepsTheOthersCameras()
    {
        CCameraFinder finder;
        QVERIFY(!finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(serials(found(finder)),
            QByteArrayList({"S-1", "S-2", "S-3", "O-1", "S-4", "S-5", "G-1", "G-2", "P-1", "E-1"}));
    }

    void finderJudgesTheWorldsCameras()
    {
        CCameraFinder finder;
        finder.Find(CCameraFinder::FIND_COMM);
        const TArray<SCameraInfo> cameras = found(finder);
        for (const char* serial : {"S-1", "S-2", "S-4", "G-1", "G-2", "P-1", "E-1"})
            QVERIFY2(bySerial(cameras, serial).canConnect, serial);

        const SCameraInfo refused = bySerial(cameras, "S-3");
        QVERIFY(!refused.canConnect);
        QCOMPARE(str(refused.errorSummary), QByteArray("Firmware too old"));

        const SCameraInfo busy = bySerial(cameras, "S-5");
        QVERIFY(!busy.canConnect);
        QCOMPARE(str(busy.errorSummary), QByteArray("Port in use"));

        const SCameraInfo orphan = bySerial(cameras, "O-1");
        QVERIFY(!orphan.canConnect);
        QCOMPARE(str(orphan.errorSummary), QByteArray("No controller"));
    }

    void completeCamerasOnly()
    {
        CCameraFinder finder;
        QVERIFY(!finder.Find(CCameraFinder::FIND_COMPLETE));
        QCOMPARE(serials(found(finder)), QByteArrayList({"G-1", "G-2", "P-1", "E-1"}));
    }

    void emulatedCamerasOnly()
    {
        CCameraFinder finder;
        QVERIFY(!finder.Find(CCameraFinder::FIND_EMULATORS_ONLY));
        QCOMPARE(serials(found(finder)),
            QByteArrayList({"S-1", "S-2", "S-3", "O-1", "S-4", "S-5", "P-1", "E-1"}));
        QVERIFY(!finder.Find(CCameraFinder::FIND_EMULATORS_ONLY | CCameraFinder::FIND_COMPLETE));
        QCOMPARE(serials(found(finder)), QByteArrayList({"P-1", "E-1"}));
    }
};

QTEST_GUILESS_MAIN(tst_CEmulatorInterface)
#include "tst_cemulatorinterface.moc"
