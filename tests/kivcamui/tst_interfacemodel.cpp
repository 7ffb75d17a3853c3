// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcam/CInterfaces.h>
#include <kivcamui/device/InterfaceModel.h>

#include <QTest>

namespace {

// A transport the catalogue does not have, to show what a missing icon looks like.
class CIconlessInterface : public kiv::cam::IInterface {
public:
    CIconlessInterface()
    {
        icon = "NoSuchIcon";
        name = "Iconless";
    }
    kiv::TSharedPtr<kiv::cam::IDevice> createDevice() override { return {}; }
    bool findDevices(kiv::TArray<kiv::cam::SDeviceInfo>&, std::stop_token) override { return true; }
    bool findCameras(kiv::TArray<kiv::cam::SCameraInfo>&, std::stop_token) override { return true; }
};

} // namespace

// Runs over the documented example world (see the test's environment).
class tst_InterfaceModel : public QObject {
    Q_OBJECT

private slots:
    void showsTheTransport()
    {
        const auto transport = kiv::cam::interfaces()->interfaceByName("EmuSerial");
        QVERIFY(transport);
        const InterfaceModel model(transport, nullptr);
        QCOMPARE(model.icon(), QStringLiteral("qrc:///data/images/Serial.png"));
        QVERIFY(model.iconExists());
        QCOMPARE(model.name(), QStringLiteral("EmuSerial"));
        QCOMPARE(model.displayName(), QStringLiteral("Emulated serial ports"));
        QCOMPARE(
            model.description(), QStringLiteral("RS-232 ports that camera control may run over."));
        QCOMPARE(model.baseType(), QStringLiteral("Serial"));
        QVERIFY(model.comm());
        QVERIFY(!model.video());
        QVERIFY(model.isEmulator());
        QCOMPARE(model.property("displayName").toString(), model.displayName());
    }
    void videoTransport()
    {
        const InterfaceModel model(
            kiv::cam::interfaces()->interfaceByName("EmuCameraLink"), nullptr);
        QVERIFY(model.video());
        QCOMPARE(model.icon(), QStringLiteral("qrc:///data/images/CameraLink.png"));
    }
    void missingIconStillGivesAUrl()
    {
        const InterfaceModel model(
            kiv::TSharedPtr<kiv::cam::IInterface>(new CIconlessInterface), nullptr);
        QVERIFY(!model.iconExists());
        QCOMPARE(model.icon(), QStringLiteral("qrc:///data/images/NoSuchIcon.png"));
        QCOMPARE(model.description(), QString()); // a null text reads as empty
    }
    void keepsTheTransportAlive()
    {
        kiv::TSharedPtr<kiv::cam::IInterface> transport(new CIconlessInterface);
        QObject parent;
        auto* model = new InterfaceModel(transport, &parent);
        QCOMPARE(transport.useCount(), 2);
        transport.reset();
        QCOMPARE(model->name(), QStringLiteral("Iconless"));
    }
    void allPropertiesAreConstant()
    {
        const QMetaObject& meta = InterfaceModel::staticMetaObject;
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
            QVERIFY2(meta.property(i).isConstant(), meta.property(i).name());
    }
};

QTEST_MAIN(tst_InterfaceModel)
#include "tst_interfacemodel.moc"
