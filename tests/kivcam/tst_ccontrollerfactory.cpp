// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "TestBackend.h"

#include <kivcam/CControllerFactory.h>

#include <QTest>

using kiv::CString;
using kiv::cam::controllerFactory;

class tst_CControllerFactory : public QObject {
    Q_OBJECT

private slots:
    void singleInstance() { QCOMPARE(controllerFactory(), controllerFactory()); }
    void namesInCatalogueOrder()
    {
        kiv::TArray<CString> names{"kept"};
        controllerFactory()->getControllerNames(names);
        QCOMPARE(names.count(), 3);
        QCOMPARE(QByteArray(names[0].c_str()), QByteArray("kept"));
        QCOMPARE(QByteArray(names[1].c_str()), QByteArray("Generic"));
        QCOMPARE(QByteArray(names[2].c_str()), QByteArray("Special"));
    }
    void createsANewControllerEachTime()
    {
        const auto first = controllerFactory()->createController("Generic");
        const auto second = controllerFactory()->createController("Generic");
        QVERIFY(first);
        QVERIFY(second);
        QVERIFY(first.get() != second.get());
        QCOMPARE(QByteArray(first->name().c_str()), QByteArray("Generic"));
        QVERIFY(!first->isConnected());
    }
    void unknownNameGivesEmpty()
    {
        QVERIFY(!controllerFactory()->createController("Missing"));
        QVERIFY(!controllerFactory()->createController(CString()));
    }
};

QTEST_APPLESS_MAIN(tst_CControllerFactory)
#include "tst_ccontrollerfactory.moc"
