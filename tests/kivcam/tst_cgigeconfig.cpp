// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcam/gige/CGigEConfig.h>

#include <QtTest>

using namespace kiv;
using namespace kiv::cam;

class tst_CGigEConfig : public QObject {
    Q_OBJECT

private slots:
    void offUnlessAdaptersAreNamed()
    {
        qunsetenv("KIVCAM_GIGE_INTERFACES");
        QVERIFY(!CGigEConfig::Enabled());
        QVERIFY(!CGigEConfig::Allows("lo"));
        QVERIFY(CGigEConfig::Adapters().empty());
        qputenv("KIVCAM_GIGE_INTERFACES", " , ");
        QVERIFY(!CGigEConfig::Enabled());
        QVERIFY(CGigEConfig::Adapters().empty());
    }

    void namesAreSeparatedByCommasOrSpaces()
    {
        qputenv("KIVCAM_GIGE_INTERFACES", "eth1, eth2 eth3\teth4");
        QVERIFY(CGigEConfig::Enabled());
        for (const char* name : {"eth1", "eth2", "eth3", "eth4"})
            QVERIFY(CGigEConfig::Allows(name));
        QVERIFY(!CGigEConfig::Allows("eth"));
        QVERIFY(!CGigEConfig::Allows("ETH1"));
        QVERIFY(!CGigEConfig::Allows(""));
        QCOMPARE(
            QByteArray(CGigEConfig::AllowedText().c_str()), QByteArray("eth1, eth2, eth3, eth4"));
    }

    void starAllowsEveryAdapter()
    {
        qputenv("KIVCAM_GIGE_INTERFACES", "*");
        QVERIFY(CGigEConfig::Allows("lo"));
        QVERIFY(CGigEConfig::Allows("anything0"));
        QVERIFY(!CGigEConfig::Allows(""));
    }

    void onlyAllowedAdaptersThatAreUpAreSearched()
    {
        // Listing adapters sends nothing.
        qputenv("KIVCAM_GIGE_INTERFACES", "nosuch0");
        QVERIFY(CGigEConfig::Adapters().empty());
    }

    void theWaitIsBounded_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<int>("wait");
        QTest::newRow("unset") << QByteArray() << 1000;
        QTest::newRow("given") << QByteArray("250") << 250;
        QTest::newRow("too short") << QByteArray("1") << 10;
        QTest::newRow("too long") << QByteArray("999999") << 60000;
        QTest::newRow("not a number") << QByteArray("soon") << 1000;
    }
    void theWaitIsBounded()
    {
        QFETCH(QByteArray, value);
        QFETCH(int, wait);
        if (value.isEmpty())
            qunsetenv("KIVCAM_GIGE_DISCOVERY_MS");
        else
            qputenv("KIVCAM_GIGE_DISCOVERY_MS", value);
        QCOMPARE(CGigEConfig::DiscoveryWait().count(), wait);
    }
};

QTEST_GUILESS_MAIN(tst_CGigEConfig)
#include "tst_cgigeconfig.moc"
