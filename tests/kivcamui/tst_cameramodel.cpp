// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcam/CCameras.h>
#include <kivcamui/custom/CameraModel.h>

#include <QTest>

using kiv::TSharedPtr;
using kiv::cam::ICamera;
using kiv::cam::ui::CameraModel;

// Runs over the documented example world (see the test's environment).
class tst_CameraModel : public QObject {
    Q_OBJECT

private slots:
    void customType()
    {
        const CameraModel custom(TSharedPtr<ICamera>(), nullptr);
        QVERIFY(custom.isCustom());
        QCOMPARE(custom.name(), QStringLiteral("Custom"));
        QCOMPARE(custom.displayName(), QStringLiteral("Custom"));
        QCOMPARE(custom.description(), QStringLiteral("Custom camera type."));
        QCOMPARE(custom.icon(), QStringLiteral("qrc:///data/images/Custom.png"));
        QVERIFY(!custom.iconExists());
        QVERIFY(custom.isSupportedBaseDeviceType(QString()));
        QVERIFY(custom.isSupportedBaseDeviceType("Anything"));
    }
    void cameraType()
    {
        const CameraModel kelvin(kiv::cam::cameras()->cameraByName("Kelvin640"), nullptr);
        QVERIFY(!kelvin.isCustom());
        QCOMPARE(kelvin.name(), QStringLiteral("Kelvin640"));
        QCOMPARE(kelvin.displayName(), QStringLiteral("Kelvin 640"));
        QCOMPARE(kelvin.description(),
            QStringLiteral("Long-wave camera that delivers calibrated temperatures."));
        QCOMPARE(kelvin.icon(), QStringLiteral("qrc:///data/images/Kelvin.png"));
        QVERIFY(kelvin.iconExists());
        QVERIFY(kelvin.isSupportedBaseDeviceType("CameraLink"));
        QVERIFY(kelvin.isSupportedBaseDeviceType("Serial"));
        QVERIFY(!kelvin.isSupportedBaseDeviceType("USB3"));
        QVERIFY(!kelvin.isSupportedBaseDeviceType(QString()));
    }
    void missingIconStillGivesAUrl()
    {
        TSharedPtr<ICamera> type(new ICamera);
        type->name = "Ghost";
        type->iconName = "NoSuchFamily";
        const CameraModel ghost(type, nullptr);
        QCOMPARE(ghost.icon(), QStringLiteral("qrc:///data/images/NoSuchFamily.png"));
        QVERIFY(!ghost.iconExists());
    }
    void holdsOneReference()
    {
        TSharedPtr<ICamera> type(new ICamera);
        {
            const CameraModel model(type, nullptr);
            QCOMPARE(type.useCount(), 2);
            QCOMPARE(model.camera().get(), type.get());
        }
        QCOMPARE(type.useCount(), 1);
    }
    void allPropertiesAreConstant()
    {
        const QMetaObject& meta = CameraModel::staticMetaObject;
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
            QVERIFY2(meta.property(i).isConstant(), meta.property(i).name());
    }
};

QTEST_MAIN(tst_CameraModel)
#include "tst_cameramodel.moc"
