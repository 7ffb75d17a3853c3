// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "TestBackend.h"

#include <kivcam/CCameras.h>

#include <QTest>

using kiv::CString;
using kiv::cam::cameras;

class tst_CCameras : public QObject {
    Q_OBJECT

private slots:
    void singleInstance() { QCOMPARE(cameras(), cameras()); }
    void listsTheBackendsCameraTypes()
    {
        QCOMPARE(cameras()->cameraCount(), 3);
        QCOMPARE(QByteArray(cameras()->cameraAt(0)->name.c_str()), QByteArray("TypeA"));
        QCOMPARE(QByteArray(cameras()->cameraAt(2)->name.c_str()), QByteArray("TypeC"));
    }
    void indexOutsideTheCatalogueGivesEmpty()
    {
        QVERIFY(!cameras()->cameraAt(-1));
        QVERIFY(!cameras()->cameraAt(3));
    }
    void findsByExactName()
    {
        const kiv::TSharedPtr<kiv::cam::ICamera> type = cameras()->cameraByName("TypeB");
        QVERIFY(type);
        QCOMPARE(QByteArray(type->controller.c_str()), QByteArray("Special"));
        QCOMPARE(type.get(), cameras()->cameraAt(1).get());
        QVERIFY(!cameras()->cameraByName("typeb"));
        QVERIFY(!cameras()->cameraByName(CString()));
    }
    void typeNamesAreAppendedAndFindable()
    {
        kiv::TArray<CString> names{"existing"};
        cameras()->cameraTypeNames(names);
        QCOMPARE(names.count(), 4);
        QCOMPARE(QByteArray(names[0].c_str()), QByteArray("existing"));
        for (int i = 1; i < names.count(); ++i)
            QVERIFY(cameras()->cameraByName(names[i]));
    }
};

QTEST_APPLESS_MAIN(tst_CCameras)
#include "tst_ccameras.moc"
