// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "EmulatorTest.h"

#include <kiv/PixelType.h>
#include <kivcam/CCameraFinder.h>
#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/ICamera.h>

#include <QSet>
#include <QTest>

#include <algorithm>

using namespace emulatortest;

// The emulator backend serving its built-in default world.
class tst_CEmulatorBackend : public QObject {
    Q_OBJECT

private:
    static TArray<SCameraInfo> findCameras(unsigned flags)
    {
        CCameraFinder finder;
        if (!finder.Find(flags))
            qWarning("a scan of the default world failed");
        return found(finder);
    }
    static TArray<SDeviceInfo> findDevices()
    {
        TArray<SDeviceInfo> devices;
        if (!interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT))
            qWarning("a scan of the default world failed");
        return devices;
    }
    static int controlOnlyCount(const TArray<SCameraInfo>& cameras)
    {
        int count = 0;
        for (const SCameraInfo& camera : cameras)
            count += camera.video.empty() ? 1 : 0;
        return count;
    }

private slots:
    void initTestCase() { qunsetenv("KIVCAM_EMULATOR_WORLD"); }

    void init()
    {
        interfaces()->setEnableEmulators(true);
        CCameraFinder::setEnableEmulators(true);
    }

    void cameraTypesOfEveryFamily()
    {
        // Twenty families of the world's own, and the type of its emulated GenICam camera.
        QCOMPARE(cameras()->cameraCount(), 21);
        QSet<QByteArray> families;
        for (int i = 0; i < cameras()->cameraCount(); ++i)
            families << str(cameras()->cameraAt(i)->iconName);
        QCOMPARE(families,
            QSet<QByteArray>({"Aurora", "Basalt", "Cinder", "Drift", "Ember", "Fjord", "Glimmer",
                "Halo", "Iris", "Jasper", "Kelvin", "Lumen", "Mistral", "Nova", "Onyx", "Prism",
                "Quartz", "Radiant", "Solstice", "Tundra", "Emulator"}));
    }

    void cameraTypesAreComplete()
    {
        TArray<CString> controllers;
        controllerFactory()->getControllerNames(controllers);
        for (int i = 0; i < cameras()->cameraCount(); ++i) {
            const TSharedPtr<ICamera> type = cameras()->cameraAt(i);
            const QByteArray name = str(type->name);
            QVERIFY2(!type->displayName.empty(), name);
            QVERIFY2(!type->description.empty(), name);
            QVERIFY2(!type->models.empty(), name);
            QVERIFY2(!type->baseTypes.empty(), name);
            QVERIFY2(controllers.contains(type->controller), name);
            const SCameraInfo& info = type->defaultInfo;
            QCOMPARE(str(info.name), name);
            QCOMPARE(str(info.iconName), str(type->iconName));
            QCOMPARE(str(info.controller), str(type->controller));
            QVERIFY2(type->models.contains(info.model), name);
            QVERIFY2(info.width > 0 && info.height > 0, name);
            QVERIFY2(!PixelTypeToString(info.pixelType).empty(), name);
            QCOMPARE(info.dataType, PixelTypeToDataType(info.pixelType));
            QVERIFY2(info.adBits > 0, name);
            // The mask follows the bits as the UI's A/D setter keeps it: 0 for 32 bits.
            QVERIFY2(
                info.adMask == 0xFFFFu >> ((16u - static_cast<unsigned>(info.adBits)) & 31u), name);
            QVERIFY2(!info.vendor.empty(), name);
            QVERIFY2(!info.reduceFilter.empty(), name);
        }
    }

    void genericControllerServesSeveralTypes()
    {
        TArray<CString> names;
        controllerFactory()->getControllerNames(names);
        QVERIFY(names.contains("Generic"));
        int users = 0;
        for (int i = 0; i < cameras()->cameraCount(); ++i)
            users += cameras()->cameraAt(i)->controller == CString("Generic") ? 1 : 0;
        QVERIFY(users >= 3);
        for (const CString& name : names)
            QCOMPARE(str(controllerFactory()->createController(name)->name()), str(name));
        QVERIFY(!controllerFactory()->createController("NoSuchController"));
    }

    void transportsOfEveryKind()
    {
        QSet<QByteArray> icons;
        QSet<QByteArray> baseTypes;
        for (int i = 0; i < interfaces()->interfaceCount(); ++i) {
            const TSharedPtr<IInterface> transport = interfaces()->interfaceAt(i);
            icons << str(transport->icon);
            baseTypes << str(transport->baseType);
            QVERIFY(transport->isEmulator);
            QVERIFY(transport->comm || transport->video);
            QCOMPARE(str(transport->defaultDevice.interfaceName), str(transport->name));
            QCOMPARE(str(transport->defaultDevice.baseType), str(transport->baseType));
            QVERIFY(transport->defaultDevice.parameters.count() > 0);
        }
        QCOMPARE(icons,
            QSet<QByteArray>({"CameraLink", "CoaXPress", "Emulator", "Ethernet", "FrameGrabber",
                "Serial", "USB"}));
        for (const char* baseType : {"GEV", "USB3", "CameraLink", "CoaXPress", "Serial"})
            QVERIFY2(baseTypes.contains(baseType), baseType);
        QVERIFY(std::any_of(baseTypes.begin(), baseTypes.end(),
            [](const QByteArray& type) { return type.endsWith("Emu"); }));
    }

    void devicesWithRealisticParameters()
    {
        const TArray<SDeviceInfo> devices = findDevices();
        QVERIFY(devices.count() >= 15);
        QSet<int> editLevels;
        bool baudRates = false;
        for (const SDeviceInfo& device : devices) {
            QVERIFY(interfaces()->interfaceByName(device.interfaceName));
            QVERIFY(!device.baseType.empty() && !device.iconName.empty());
            for (unsigned i = 0; i < device.parameters.count(); ++i)
                editLevels << device.parameters[i].editLevel;
            if (device.parameters.Exists("BaudRate")) {
                const CVariant& rate = device.parameters["BaudRate"].value();
                baudRates = baudRates
                    || (rate.GetEnumCount() == 6 && rate.GetEnumValue(0) == 9600
                        && rate.GetEnumValue(5) == 921600);
            }
        }
        QVERIFY(baudRates);
        QVERIFY(editLevels.size() >= 4);
        QCOMPARE(
            str(byName(devices, "EmuEthernet", "192.168.10.22").baseType), QByteArray("PureGEV"));
        QVERIFY(!byName(devices, "EmuSerial", "COM6").canConnect);
    }

    void findDevicesOfBaseType()
    {
        TArray<SDeviceInfo> devices;
        QVERIFY(interfaces()->findDevicesOf(devices, {"USB3"}, CInterfaces::FIND_PRESENT));
        QCOMPARE(devices.count(), 3);
        for (const SDeviceInfo& device : devices)
            QCOMPARE(str(device.interfaceName), QByteArray("EmuUSB"));
        devices.clear();
        QVERIFY(interfaces()->findDevicesOf(devices, {"PureGEV"}, CInterfaces::FIND_PRESENT));
        QCOMPARE(deviceNames(devices), QByteArrayList({"EmuEthernet/192.168.10.22"}));
    }

    void camerasFoundWithEmulators()
    {
        const TArray<SCameraInfo> cameras = findCameras(CCameraFinder::FIND_COMM);
        QVERIFY(cameras.count() >= 12 && cameras.count() <= 16);
        for (const SCameraInfo& camera : cameras) {
            const TSharedPtr<ICamera> type = kiv::cam::cameras()->cameraByName(camera.name);
            QVERIFY2(type, camera.serial.c_str());
            QVERIFY2(type->IsSupportedBaseDeviceType(camera.comm.baseType), camera.serial.c_str());
            QVERIFY2(type->models.contains(camera.model), camera.serial.c_str());
            QVERIFY(camera.emulated);
            QVERIFY(!camera.serial.empty());
        }
        QVERIFY(controlOnlyCount(cameras) >= 2);
        const SCameraInfo throughDigitizer = bySerial(cameras, "BS320-10417");
        QCOMPARE(str(throughDigitizer.comm.interfaceName), QByteArray("EmuSerial"));
        QCOMPARE(str(throughDigitizer.video.interfaceName), QByteArray("EmuFrameGrabber"));
    }

    void noCamerasOrDevicesWithoutEmulators()
    {
        CCameraFinder::setEnableEmulators(false);
        interfaces()->setEnableEmulators(false);
        QCOMPARE(findCameras(CCameraFinder::FIND_COMM).count(), 0);
        QCOMPARE(findCameras(CCameraFinder::FIND_EMULATORS_ONLY).count(), 0);
        QCOMPARE(findDevices().count(), 0);
    }

    void emulatorsOnlyFindsThemAll()
    {
        QCOMPARE(serials(findCameras(CCameraFinder::FIND_EMULATORS_ONLY)),
            serials(findCameras(CCameraFinder::FIND_COMM)));
    }

    void completeLeavesOutControlOnlyCameras()
    {
        const TArray<SCameraInfo> all = findCameras(CCameraFinder::FIND_COMM);
        for (unsigned flags : {unsigned{CCameraFinder::FIND_COMPLETE},
                 CCameraFinder::FIND_COMPLETE | CCameraFinder::FIND_EMULATORS_ONLY}) {
            const TArray<SCameraInfo> complete = findCameras(flags);
            QCOMPARE(complete.count(), all.count() - controlOnlyCount(all));
            QCOMPARE(controlOnlyCount(complete), 0);
            QVERIFY(bySerial(complete, "CN640-22031").serial.empty());
        }
    }

    void someCamerasCannotConnect()
    {
        const TArray<SCameraInfo> cameras = findCameras(CCameraFinder::FIND_COMM);
        QByteArrayList refused;
        for (const SCameraInfo& camera : cameras) {
            if (!camera.canConnect) {
                refused << str(camera.serial);
                QVERIFY(!camera.errorSummary.empty());
                QVERIFY(camera.errorMessage.length() > camera.errorSummary.length());
            }
        }
        QCOMPARE(refused, QByteArrayList({"IR320-31544", "NV1280-0098", "QZ640-03305"}));
        QCOMPARE(
            str(bySerial(cameras, "QZ640-03305").errorSummary), QByteArray("Firmware too old"));
    }

    void findByCameraType()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find({"Kelvin640", "Mistral320"}, CCameraFinder::FIND_COMM));
        QCOMPARE(serials(found(finder)), QByteArrayList({"MS320-00871", "KV640-50212"}));
    }

    // Every camera the finder offers opens and connects: the world is consistent.
    void everyConnectableCameraConnects()
    {
        for (const SCameraInfo& camera : findCameras(CCameraFinder::FIND_COMM)) {
            if (!camera.canConnect)
                continue;
            const char* serial = camera.serial.c_str();
            const TSharedPtr<IDevice> comm
                = interfaces()->interfaceByName(camera.comm.interfaceName)->createDevice();
            QVERIFY2(comm->open(camera.comm, false), serial);
            if (!camera.video.empty() && camera.video.deviceName != camera.comm.deviceName) {
                const TSharedPtr<IDevice> video
                    = interfaces()->interfaceByName(camera.video.interfaceName)->createDevice();
                QVERIFY2(video->open(camera.video, false), serial);
            }
            const TSharedPtr<IController> controller
                = controllerFactory()->createController(camera.controller);
            QVERIFY2(controller, serial);
            QVERIFY2(controller->connect(comm, camera), serial);
            controller->disconnect();
            comm->close();
        }
    }
};

QTEST_GUILESS_MAIN(tst_CEmulatorBackend)
#include "tst_cemulatorbackend.moc"
