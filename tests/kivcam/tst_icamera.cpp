// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcam/ICamera.h>

#include <QTest>

using kiv::CString;
using kiv::cam::ICamera;

class tst_ICamera : public QObject {
    Q_OBJECT

private slots:
    void supportsExactlyItsBaseTypes()
    {
        ICamera type;
        type.baseTypes = {"CameraLink", "GEV"};
        QVERIFY(type.IsSupportedBaseDeviceType("CameraLink"));
        QVERIFY(type.IsSupportedBaseDeviceType("GEV"));
        QVERIFY(!type.IsSupportedBaseDeviceType("gev"));
        QVERIFY(!type.IsSupportedBaseDeviceType("USB3"));
        QVERIFY(!type.IsSupportedBaseDeviceType(CString()));
    }
    void noBaseTypesSupportsNothing()
    {
        const ICamera type;
        QVERIFY(!type.IsSupportedBaseDeviceType("Serial"));
    }
    void destroysThroughSharedPointer()
    {
        kiv::TSharedPtr<ICamera> type(new ICamera);
        type->name = "Nova";
        kiv::TSharedPtr<ICamera> copy = type;
        QCOMPARE(copy.useCount(), 2);
        type.reset();
        QCOMPARE(QByteArray(copy->name.c_str()), QByteArray("Nova"));
    }
};

QTEST_APPLESS_MAIN(tst_ICamera)
#include "tst_icamera.moc"
