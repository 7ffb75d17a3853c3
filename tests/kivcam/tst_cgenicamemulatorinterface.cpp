// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "EmulatorTest.h"

#include <kiv/PixelType.h>
#include <kivcam/CCameraFinder.h>
#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/genicam/CAravisDevice.h>
#include <kivcam/genicam/CGenICamEmulatorInterface.h>

#include <QCoreApplication>
#include <QProcess>
#include <QTest>

#include <arv.h>
#include <cstdio>
#include <cstring>
#include <stop_token>

using namespace emulatortest;

namespace {

using Transport = CGenICamEmulatorInterface;

// The emulator reads its world once per process, so a world without GenICam cameras is loaded
// by a child process: this test program started with this argument, which prints what the
// catalogues hold of the emulated GenICam cameras.
constexpr const char* reportArgument = "--report-genicam";

int reportGenICam()
{
    interfaces()->setEnableEmulators(true);
    CCameraFinder::setEnableEmulators(true);
    CCameraFinder finder;
    finder.Find(CCameraFinder::FIND_COMM);
    int count = 0;
    for (const SCameraInfo& camera : found(finder))
        count += camera.name == CString(Transport::CameraTypeName) ? 1 : 0;
    std::printf("transports %d types %d cameras %d\n",
        interfaces()->interfaceByName(Transport::Name) ? 1 : 0,
        cameras()->cameraByName(Transport::CameraTypeName) ? 1 : 0, count);
    return 0;
}

// The record's device parameter of the serial number, checked for its value and edit level.
void checkSerial(const SDeviceInfo& device, const char* serial, CParameters::EEditLevel level)
{
    QVERIFY(device.parameters.Exists(Transport::SerialParameter));
    QCOMPARE(str(device.parameters.TextOf(Transport::SerialParameter)), QByteArray(serial));
    QCOMPARE(device.parameters[Transport::SerialParameter].editLevel, level);
}

QByteArrayList texts(const TArray<CString>& list)
{
    QByteArrayList result;
    for (const CString& text : list)
        result << str(text);
    return result;
}

QByteArray feature(ArvDevice* device, const char* name)
{
    return arv_device_get_string_feature_value(device, name, nullptr);
}

} // namespace

// The emulated GenICam cameras of a world with two of them, listed by the catalogues.
class tst_CGenICamEmulatorInterface : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useWorld("emulator-genicam.xml"); }

    void init()
    {
        interfaces()->setEnableEmulators(true);
        CCameraFinder::setEnableEmulators(true);
    }

    void transport()
    {
        QCOMPARE(interfaces()->interfaceCount(), 1);
        const TSharedPtr<IInterface> transport = interfaces()->interfaceByName(Transport::Name);
        QVERIFY(transport);
        QCOMPARE(str(transport->icon), QByteArray("Emulator"));
        QCOMPARE(str(transport->baseType), QByteArray("GenICam-Emulator"));
        QVERIFY(transport->isEmulator);
        QVERIFY(transport->comm);
        QVERIFY(transport->video);
        QVERIFY(!transport->displayName.empty());
        QVERIFY(!transport->description.empty());
        // A device filled in by hand names its camera by a serial number of the user's.
        const SDeviceInfo& custom = transport->defaultDevice;
        QCOMPARE(str(custom.interfaceName), QByteArray(Transport::Name));
        QCOMPARE(str(custom.baseType), QByteArray(Transport::BaseType));
        QCOMPARE(str(custom.iconName), QByteArray("Emulator"));
        checkSerial(custom, "", CParameters::EDIT_ALWAYS);
    }

    void cameraType()
    {
        QCOMPARE(cameras()->cameraCount(), 1);
        const TSharedPtr<ICamera> type = cameras()->cameraByName(Transport::CameraTypeName);
        QVERIFY(type);
        QCOMPARE(str(type->iconName), QByteArray("Emulator"));
        QCOMPARE(str(type->displayName), QByteArray("Emulated GenICam camera"));
        QVERIFY(!type->description.empty());
        QCOMPARE(str(type->controller), QByteArray("GenICam"));
        QCOMPARE(texts(type->models), QByteArrayList({"Emulated GenICam"}));
        QCOMPARE(texts(type->baseTypes), QByteArrayList({"GenICam-Emulator"}));
        QVERIFY(type->IsSupportedBaseDeviceType(Transport::BaseType));
        const SCameraInfo& info = type->defaultInfo;
        QCOMPARE(str(info.name), QByteArray(Transport::CameraTypeName));
        QCOMPARE(str(info.iconName), QByteArray("Emulator"));
        QCOMPARE(str(info.controller), QByteArray("GenICam"));
        QCOMPARE(str(info.model), QByteArray("Emulated GenICam"));
        QCOMPARE(str(info.vendor), QByteArray("kivcam"));
        QCOMPARE(str(PixelTypeToString(info.pixelType)), QByteArray("Mono8"));
        QCOMPARE(info.dataType, PixelTypeToDataType(info.pixelType));
        QCOMPARE(info.adBits, 8);
        QCOMPARE(info.adMask, 0xFFu);
        QCOMPARE(str(info.reduceFilter), QByteArray("Passthrough8"));
        QCOMPARE(info.width, 512);
        QCOMPARE(info.height, 512);
        QCOMPARE(info.frameRate, 25.0);
        QVERIFY(info.emulated);
    }

    void devicesListed()
    {
        TArray<SDeviceInfo> devices;
        QVERIFY(interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT));
        QCOMPARE(deviceNames(devices),
            QByteArrayList({"GenICamEmulator/GC-0001", "GenICamEmulator/GC-0002"}));
        for (const SDeviceInfo& device : devices) {
            QCOMPARE(str(device.baseType), QByteArray(Transport::BaseType));
            QCOMPARE(str(device.iconName), QByteArray("Emulator"));
            QVERIFY(device.canConnect);
            checkSerial(device, device.deviceName.c_str(), CParameters::EDIT_NEVER);
        }
    }

    void camerasListed()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        const TArray<SCameraInfo> cameras = found(finder);
        QCOMPARE(serials(cameras), QByteArrayList({"GC-0001", "GC-0002"}));
        // The finder lets them connect when the GenICam controller is there.
        TArray<CString> controllers;
        controllerFactory()->getControllerNames(controllers);
        for (const SCameraInfo& camera : cameras) {
            const QByteArray serial = str(camera.serial);
            QCOMPARE(str(camera.name), QByteArray(Transport::CameraTypeName));
            QCOMPARE(str(camera.displayName), QByteArray(Transport::CameraTypeName));
            QCOMPARE(str(camera.model), QByteArray("Emulated GenICam"));
            QCOMPARE(str(camera.vendor), QByteArray("kivcam"));
            QCOMPARE(str(camera.firmwareVersion), QByteArray("1.0.0"));
            QCOMPARE(str(camera.controller), QByteArray("GenICam"));
            QCOMPARE(str(PixelTypeToString(camera.pixelType)), QByteArray("Mono8"));
            QCOMPARE(camera.width, 512);
            QCOMPARE(camera.height, 512);
            QCOMPARE(camera.frameRate, 25.0);
            QVERIFY(camera.emulated);
            QCOMPARE(camera.canConnect, controllers.contains("GenICam"));
            // One device for control and images, named by the serial number.
            QCOMPARE(str(camera.comm.interfaceName), QByteArray(Transport::Name));
            QCOMPARE(str(camera.comm.deviceName), serial);
            checkSerial(camera.comm, serial.constData(), CParameters::EDIT_NEVER);
            QCOMPARE(str(camera.video.deviceName), serial);
            checkSerial(camera.video, serial.constData(), CParameters::EDIT_NEVER);
        }
        QCOMPARE(str(cameras[0].identity), QByteArray("Bench camera"));
        QCOMPARE(str(cameras[1].identity), QByteArray());
        // The transport itself lets every camera connect.
        for (const SCameraInfo& camera : camerasOf(Transport::Name)) {
            QVERIFY(camera.canConnect);
            QVERIFY(camera.errorSummary.empty());
        }
    }

    void completeCameras()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMPLETE | CCameraFinder::FIND_EMULATORS_ONLY));
        QCOMPARE(serials(found(finder)), QByteArrayList({"GC-0001", "GC-0002"}));
    }

    void notListedWithoutEmulators()
    {
        interfaces()->setEnableEmulators(false);
        CCameraFinder::setEnableEmulators(false);
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(finder.size(), std::uint64_t{0});
        TArray<SDeviceInfo> devices;
        QVERIFY(interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT));
        QCOMPARE(devices.count(), 0);
    }

    void stoppedScanFails()
    {
        const TSharedPtr<IInterface> transport = interfaces()->interfaceByName(Transport::Name);
        std::stop_source source;
        source.request_stop();
        TArray<SCameraInfo> cameras;
        QVERIFY(!transport->findCameras(cameras, source.get_token()));
        QCOMPARE(cameras.count(), 0);
        TArray<SDeviceInfo> devices;
        QVERIFY(!transport->findDevices(devices, source.get_token()));
        QCOMPARE(devices.count(), 0);
    }

    // A found camera's record opens a camera that is what the record says.
    void foundCameraOpens()
    {
        const SCameraInfo camera = bySerial(camerasOf(Transport::Name), "GC-0002");
        const TSharedPtr<IDevice> device
            = interfaces()->interfaceByName(Transport::Name)->createDevice();
        QVERIFY(device->open(camera.comm, true));
        auto* aravis = dynamic_cast<CAravisDevice*>(device.get());
        QVERIFY(aravis);
        ArvDevice* arv = aravis->arvDevice();
        QCOMPARE(feature(arv, "DeviceSerialNumber"), QByteArray("GC-0002"));
        QCOMPARE(feature(arv, "DeviceVendorName"), str(camera.vendor));
        QCOMPARE(feature(arv, "DeviceModelName"), str(camera.model));
        QCOMPARE(feature(arv, "DeviceFirmwareVersion"), str(camera.firmwareVersion));
        QCOMPARE(feature(arv, "PixelFormat"), str(PixelTypeToString(camera.pixelType)));
        QCOMPARE(arv_device_get_integer_feature_value(arv, "Width", nullptr), camera.width);
        QCOMPARE(arv_device_get_integer_feature_value(arv, "Height", nullptr), camera.height);
        QCOMPARE(arv_device_get_float_feature_value(arv, "AcquisitionFrameRate", nullptr),
            camera.frameRate);
        device->close();
        QVERIFY(!device->isOpen());
    }

    // Worlds without GenICam cameras have neither their transport nor their camera type.
    void onlyInWorldsWithThem_data()
    {
        QTest::addColumn<QString>("world");
        QTest::addColumn<QByteArray>("report");
        const QByteArray none = "transports 0 types 0 cameras 0\n";
        QTest::newRow("empty world") << QStringLiteral(KIVCAM_TEST_DATA "/empty-world.xml") << none;
        QTest::newRow("world of other cameras")
            << QStringLiteral(KIVCAM_TEST_DATA "/emulator-faults.xml") << none;
        QTest::newRow("world with GenICam cameras")
            << QStringLiteral(KIVCAM_TEST_DATA "/emulator-genicam.xml")
            << QByteArray("transports 1 types 1 cameras 2\n");
    }
    void onlyInWorldsWithThem()
    {
        QFETCH(QString, world);
        QFETCH(QByteArray, report);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("KIVCAM_EMULATOR_WORLD", world);
        QProcess child;
        child.setProcessEnvironment(environment);
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(QCoreApplication::applicationFilePath(), {reportArgument});
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.exitCode(), 0);
        QCOMPARE(child.readAllStandardOutput(), report);
    }
};

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 2 && std::strcmp(argv[1], reportArgument) == 0)
        return reportGenICam();
    tst_CGenICamEmulatorInterface test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_cgenicamemulatorinterface.moc"
