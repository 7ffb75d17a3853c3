// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/PixelType.h>
#include <kivcamui/camera/CameraInfo.h>

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QUrl>

#include <memory>
#include <thread>
#include <vector>

using kiv::CString;
using kiv::CVariant;
using kiv::cam::CParameters;
using kiv::cam::SCameraInfo;
using kiv::cam::ui::CameraInfo;

namespace {

SCameraInfo kelvin(const char* commBaseType = "CameraLink")
{
    SCameraInfo camera;
    camera.iconName = "Kelvin";
    camera.name = "Kelvin640";
    camera.displayName = "Kelvin 640";
    camera.baseModel = "Kelvin";
    camera.model = "Kelvin 640 LW";
    camera.serial = "KV640-50212";
    camera.identity = "Lab bench";
    camera.controller = "Thermal";
    camera.comm.interfaceName = "EmuCameraLink";
    camera.comm.deviceName = "Grabber 0 / Port 0";
    camera.comm.baseType = commBaseType;
    camera.comm.parameters.Add(
        {"Control", "Control", "", CParameters::EDIT_ALWAYS, CVariant("Port 0")});
    camera.pixelType = kiv::ParsePixelType("Mono14");
    camera.dataType = kiv::DATA_TYPE_UINT16;
    camera.adBits = 14;
    camera.width = 640;
    camera.height = 512;
    return camera;
}

} // namespace

// Runs over the documented example world (see the test's environment).
class tst_CameraInfo : public QObject {
    Q_OBJECT

private slots:
    void showsTheRecord()
    {
        SCameraInfo record = kelvin();
        record.canConnect = false;
        record.errorSummary = "Firmware too old";
        record.errorMessage = "Update it.";
        CameraInfo camera(record, nullptr);
        QCOMPARE(camera.model(), QStringLiteral("Kelvin 640 LW"));
        QCOMPARE(camera.serial(), QStringLiteral("KV640-50212"));
        QCOMPARE(camera.identity(), QStringLiteral("Lab bench"));
        QCOMPARE(camera.icon(), QStringLiteral("qrc:///data/images/Kelvin.png"));
        QVERIFY(camera.iconExists());
        QCOMPARE(camera.name(), QStringLiteral("Kelvin640"));
        QCOMPARE(camera.displayName(), QStringLiteral("Kelvin 640"));
        QCOMPARE(camera.baseModel(), QStringLiteral("Kelvin"));
        QCOMPARE(camera.width(), 640);
        QCOMPARE(camera.height(), 512);
        QCOMPARE(camera.adBits(), 14);
        QCOMPARE(camera.pixelTypeName(), QStringLiteral("Mono14"));
        QVERIFY(!camera.canConnect());
        QCOMPARE(camera.errorSummary(), QStringLiteral("Firmware too old"));
        QCOMPARE(camera.errorMessage(), QStringLiteral("Update it."));
        QCOMPARE(camera.comm()->deviceName(), QStringLiteral("Grabber 0 / Port 0"));
        QCOMPARE(camera.comm()->editLevel(), DeviceParameter::EDIT_CUSTOM);
        QCOMPARE(camera.video()->editLevel(), DeviceParameter::EDIT_CUSTOM);
    }
    void friendlyInterfaceName_data()
    {
        QTest::addColumn<QByteArray>("baseType");
        QTest::addColumn<QString>("friendly");
        QTest::newRow("gev lower case") << QByteArray("gev") << "GigE";
        QTest::newRow("PureGEV") << QByteArray("PureGEV") << "GigE";
        QTest::newRow("GigE-Vision") << QByteArray("GIGE-VISION") << "GigE";
        QTest::newRow("PgrGenTL") << QByteArray("pgrgentl") << "GigE";
        QTest::newRow("USB inside") << QByteArray("MyUSB3") << "USB";
        QTest::newRow("usb lower case") << QByteArray("myusb3") << "myusb3";
        QTest::newRow("ends in Emu") << QByteArray("CamEmu") << "Emulator";
        QTest::newRow("ends in EMU") << QByteArray("CamEMU") << "CamEMU";
        QTest::newRow("QUEXRNDIS") << QByteArray("QUEXRNDIS") << "ResourceTree";
        QTest::newRow("quexrndis") << QByteArray("quexrndis") << "quexrndis";
        QTest::newRow("QUEXRTSP") << QByteArray("QUEXRTSP") << "RTSP";
        QTest::newRow("CameraLink") << QByteArray("CameraLink") << "CameraLink";
        QTest::newRow("empty shows the transport") << QByteArray() << "EmuCameraLink";
    }
    void friendlyInterfaceName()
    {
        QFETCH(QByteArray, baseType);
        QFETCH(QString, friendly);
        const CameraInfo camera(kelvin(baseType.constData()), nullptr);
        QCOMPARE(camera.userFriendlyInterfaceName(), friendly);
    }
    void friendlyNameIsNeverRecomputed()
    {
        CameraInfo camera(kelvin("GEV"), nullptr);
        camera.info().comm.baseType = "USB3";
        QCOMPARE(camera.userFriendlyInterfaceName(), QStringLiteral("GigE"));
    }
    void adBitsKeepTheMask_data()
    {
        QTest::addColumn<int>("bits");
        QTest::addColumn<uint>("mask");
        QTest::newRow("14") << 14 << 0x3FFFu;
        QTest::newRow("0") << 0 << 0u;
        QTest::newRow("16") << 16 << 0xFFFFu;
        QTest::newRow("17") << 17 << 0u;
        QTest::newRow("31") << 31 << 0u;
        QTest::newRow("-16") << -16 << 0xFFFFu;
        QTest::newRow("8") << 8 << 0xFFu;
    }
    void adBitsKeepTheMask()
    {
        QFETCH(int, bits);
        QFETCH(uint, mask);
        SCameraInfo record = kelvin();
        record.adBits = 99;
        CameraInfo camera(record, nullptr);
        camera.setADBits(bits);
        QCOMPARE(camera.info().adMask, mask);
        QCOMPARE(camera.adBits(), bits);
    }
    void adBitsAnnounceOnlyChanges()
    {
        CameraInfo camera(kelvin(), nullptr);
        camera.info().adMask = 0;
        QSignalSpy bits(&camera, &CameraInfo::adBitsChanged);
        camera.setADBits(14); // unchanged: the mask is not touched either
        QCOMPARE(bits.count(), 0);
        QCOMPARE(camera.info().adMask, 0u);
        camera.setADBits(12);
        camera.setADBits(12);
        QCOMPARE(bits.count(), 1);
        QCOMPARE(camera.info().adMask, 0x0FFFu);
    }
    void adBitShiftLeavesTheMask()
    {
        CameraInfo camera(kelvin(), nullptr);
        camera.info().adMask = 0x3FFF;
        QSignalSpy shift(&camera, &CameraInfo::adBitShiftChanged);
        camera.setADBitShift(2);
        camera.setADBitShift(2);
        QCOMPARE(shift.count(), 1);
        QCOMPARE(camera.info().adMask, 0x3FFFu);
    }
    void sizesAnnounceOnlyChanges()
    {
        CameraInfo camera(kelvin(), nullptr);
        QSignalSpy width(&camera, &CameraInfo::widthChanged);
        QSignalSpy height(&camera, &CameraInfo::heightChanged);
        camera.setWidth(640);
        QCOMPARE(width.count(), 0);
        camera.setWidth(320);
        camera.setHeight(256);
        camera.setHeight(256);
        QCOMPARE(width.count(), 1);
        QCOMPARE(height.count(), 1);
        QCOMPARE(camera.info().width, 320);
    }
    void cropsAreSixteenBitViews()
    {
        SCameraInfo record = kelvin();
        record.cropLeft = 70000;
        CameraInfo camera(record, nullptr);
        QCOMPARE(camera.cropLeft(), ushort(70000 & 0xFFFF));
        QSignalSpy left(&camera, &CameraInfo::cropLeftChanged);
        QSignalSpy top(&camera, &CameraInfo::cropTopChanged);
        QSignalSpy right(&camera, &CameraInfo::cropRightChanged);
        QSignalSpy bottom(&camera, &CameraInfo::cropBottomChanged);
        camera.setCropLeft(ushort(70000 & 0xFFFF)); // differs from the 32-bit field
        QCOMPARE(left.count(), 1);
        QCOMPARE(camera.info().cropLeft, 70000u & 0xFFFFu);
        camera.setCropTop(4);
        camera.setCropRight(5);
        camera.setCropBottom(6);
        camera.setCropBottom(6);
        QCOMPARE(top.count(), 1);
        QCOMPARE(right.count(), 1);
        QCOMPARE(bottom.count(), 1);
        QCOMPARE(camera.info().cropRight, 5u);
    }
    void identityAndController()
    {
        CameraInfo camera(kelvin(), nullptr);
        QSignalSpy identity(&camera, &CameraInfo::identityChanged);
        QSignalSpy controller(&camera, &CameraInfo::controllerChanged);
        camera.setIdentity("Lab bench");
        camera.setIdentity("Roof \u00b5");
        QCOMPARE(identity.count(), 1);
        QCOMPARE(QString::fromUtf8(camera.info().identity.c_str()), QStringLiteral("Roof \u00b5"));
        camera.setController("NotInTheCatalogue");
        QCOMPARE(controller.count(), 1);
        QCOMPARE(camera.controllerIndex(), -1);
    }
    void controllerIndexFollowsTheCatalogue()
    {
        CameraInfo camera(kelvin(), nullptr);
        QCOMPARE(camera.controllerNames(), (QStringList{"Generic", "Thermal"}));
        QCOMPARE(camera.controllerIndex(), 1);
        QSignalSpy controller(&camera, &CameraInfo::controllerChanged);
        for (int ignored : {1, -1, 2})
            camera.setControllerIndex(ignored);
        QCOMPARE(controller.count(), 0);
        camera.setControllerIndex(0);
        QCOMPARE(controller.count(), 1);
        QCOMPARE(camera.controller(), QStringLiteral("Generic"));
    }
    void pixelTypeIndexSetsTypeFilterAndDataType()
    {
        CameraInfo camera(kelvin(), nullptr);
        const QStringList names = camera.pixelTypeNames();
        QCOMPARE(names.size(), 21);
        QCOMPARE(camera.pixelTypeIndex(), names.indexOf("Mono14"));
        QSignalSpy pixelType(&camera, &CameraInfo::pixelTypeChanged);
        camera.setPixelTypeIndex(names.indexOf("Mono32f"));
        QCOMPARE(pixelType.count(), 1);
        QCOMPARE(camera.pixelTypeName(), QStringLiteral("Mono32f"));
        QCOMPARE(camera.info().dataType, kiv::DATA_TYPE_FLOAT32);
        QCOMPARE(QByteArray(camera.info().reduceFilter.c_str()), QByteArray("Float32"));
    }
    void pixelTypeIndexIgnoresCurrentAndOutOfRange()
    {
        CameraInfo camera(kelvin(), nullptr);
        QSignalSpy pixelType(&camera, &CameraInfo::pixelTypeChanged);
        for (int ignored : {camera.pixelTypeIndex(), -1, int(camera.pixelTypeNames().size())})
            camera.setPixelTypeIndex(ignored);
        QCOMPARE(pixelType.count(), 0);
        QCOMPARE(camera.pixelTypeName(), QStringLiteral("Mono14"));
        QVERIFY(camera.info().reduceFilter.empty());
    }
    void unknownPixelTypeHasNoIndex()
    {
        SCameraInfo record = kelvin();
        record.pixelType = kiv::SGuid();
        const CameraInfo camera(record, nullptr);
        QCOMPARE(camera.pixelTypeName(), QString());
        QCOMPARE(camera.pixelTypeIndex(), -1);
    }
    void cameraIsMadeOnce()
    {
        CameraInfo camera(kelvin(), nullptr);
        kiv::cam::ui::CameraModel* type = camera.camera();
        QVERIFY(type);
        QCOMPARE(camera.camera(), type);
        QCOMPARE(type->parent(), &camera);
        QCOMPARE(type->name(), QStringLiteral("Kelvin640"));
    }
    void unknownTypeGivesACustomModel()
    {
        SCameraInfo record = kelvin();
        record.name = "Ghost";
        CameraInfo camera(record, nullptr);
        QVERIFY(camera.camera()->isCustom());
    }
    void iconOfUnknownFamily()
    {
        SCameraInfo record = kelvin();
        record.iconName = "NoSuchFamily";
        const CameraInfo camera(record, nullptr);
        QVERIFY(!camera.iconExists());
        QCOMPARE(camera.icon(), QStringLiteral("qrc:///data/images/NoSuchFamily.png"));
    }
    void deviceEditsReachTheRecord()
    {
        CameraInfo camera(kelvin(), nullptr);
        auto* control = qobject_cast<DeviceParameter*>(camera.comm()->parameters()->at(0));
        control->setValue("Port 1");
        QCOMPARE(QByteArray(camera.info().comm.parameters[0u].value().ToString().c_str()),
            QByteArray("Port 1"));
    }
    void devicesAreMadeOnceOverTheRecord()
    {
        CameraInfo camera(kelvin(), nullptr);
        DeviceInfo* comm = camera.comm();
        DeviceInfo* video = camera.video();
        QCOMPARE(camera.comm(), comm);
        QCOMPARE(camera.video(), video);
        QVERIFY(comm != video);
        QCOMPARE(&comm->info(), &camera.info().comm);
        QCOMPARE(&video->info(), &camera.info().video);
        QCOMPARE(comm->editLevel(), DeviceParameter::EDIT_CUSTOM);
        QCOMPARE(video->editLevel(), DeviceParameter::EDIT_CUSTOM);
    }
    void sharedRecordIsKeptAliveAndEditedInPlace()
    {
        // As a search shares one block of records among its cameras.
        auto records = std::make_shared<std::vector<SCameraInfo>>(2, kelvin());
        const std::weak_ptr<std::vector<SCameraInfo>> watch = records;
        CameraInfo first(std::shared_ptr<SCameraInfo>(records, &(*records)[0]), nullptr);
        CameraInfo second(std::shared_ptr<SCameraInfo>(records, &(*records)[1]), nullptr);
        records.reset();
        QVERIFY(!watch.expired());
        first.setIdentity("First");
        qobject_cast<DeviceParameter*>(second.comm()->parameters()->at(0))->setValue("Port 2");
        QCOMPARE(first.identity(), QStringLiteral("First"));
        QCOMPARE(second.identity(), QStringLiteral("Lab bench"));
        QCOMPARE(QByteArray(second.info().comm.parameters[0u].value().ToString().c_str()),
            QByteArray("Port 2"));
        QCOMPARE(QByteArray(first.info().comm.parameters[0u].value().ToString().c_str()),
            QByteArray("Port 0"));
        QCOMPARE(second.userFriendlyInterfaceName(), QStringLiteral("CameraLink"));
    }
    void madeOnAnotherThreadAndMovedHere()
    {
        // As a search task makes cameras: on its thread, then moved to the thread showing them.
        CameraInfo* made = nullptr;
        std::thread maker([&] {
            made = new CameraInfo(kelvin("GEV"), nullptr);
            made->moveToThread(QCoreApplication::instance()->thread());
        });
        maker.join();
        std::unique_ptr<CameraInfo> camera(made);
        QCOMPARE(camera->thread(), QThread::currentThread());
        QCOMPARE(camera->userFriendlyInterfaceName(), QStringLiteral("GigE"));
        QCOMPARE(camera->comm()->thread(), QThread::currentThread());
        QCOMPARE(camera->comm()->parameters()->thread(), QThread::currentThread());
        QCOMPARE(camera->camera()->thread(), QThread::currentThread());
    }
    void saveAndLoadThroughAUrl()
    {
        QTemporaryDir dir;
        CameraInfo camera(kelvin(), nullptr);
        camera.setIdentity("Saved");
        const QString url = QUrl::fromLocalFile(dir.filePath("camera.xml")).toString();
        QVERIFY(camera.save(url));
        SCameraInfo loaded;
        QVERIFY(loaded.Load(kiv::CStringW(dir.filePath("camera.xml").toStdWString().c_str())));
        QCOMPARE(QByteArray(loaded.identity.c_str()), QByteArray("Saved"));
        QCOMPARE(loaded.width, 640);
    }
    void plainPathIsNotAUrl()
    {
        QTemporaryDir dir;
        const CameraInfo camera(kelvin(), nullptr);
        QVERIFY(!camera.save(dir.filePath("camera.xml")));
        QVERIFY(!QFile::exists(dir.filePath("camera.xml")));
    }
    void cloneIsIndependent()
    {
        CameraInfo camera(kelvin("GEV"), nullptr);
        QObject parent;
        CameraInfo* copy = camera.clone(&parent);
        QCOMPARE(copy->parent(), &parent);
        QCOMPARE(copy->userFriendlyInterfaceName(), QStringLiteral("GigE"));
        copy->setWidth(100);
        qobject_cast<DeviceParameter*>(copy->comm()->parameters()->at(0))->setValue("Port 1");
        QCOMPARE(camera.width(), 640);
        QCOMPARE(QByteArray(camera.info().comm.parameters[0u].value().ToString().c_str()),
            QByteArray("Port 0"));
        QVERIFY(copy->camera() != camera.camera());
        std::unique_ptr<CameraInfo> orphan(camera.clone());
        QCOMPARE(orphan->parent(), nullptr);
    }
    void writingThroughInfoEmitsNothing()
    {
        CameraInfo camera(kelvin(), nullptr);
        QSignalSpy width(&camera, &CameraInfo::widthChanged);
        camera.info().width = 1;
        QCOMPARE(camera.width(), 1);
        QCOMPARE(width.count(), 0);
    }
    void signalsAreDeclaredInOrder()
    {
        const QMetaObject& meta = CameraInfo::staticMetaObject;
        QStringList signalNames;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            if (meta.method(i).methodType() == QMetaMethod::Signal)
                signalNames << meta.method(i).name();
        }
        QCOMPARE(signalNames,
            (QStringList{"userFriendlyInterfaceNameChanged", "identityChanged", "widthChanged",
                "heightChanged", "cropLeftChanged", "cropTopChanged", "cropRightChanged",
                "cropBottomChanged", "adBitsChanged", "adBitShiftChanged", "pixelTypeChanged",
                "controllerChanged"}));
    }
};

QTEST_MAIN(tst_CameraInfo)
#include "tst_camerainfo.moc"
