// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcamui/device/DeviceParameter.h>

#include <QSignalSpy>
#include <QTest>

using kiv::CString;
using kiv::CVariant;
using kiv::cam::CParameters;

namespace {

CParameters sample()
{
    CParameters parameters;
    kiv::TArray<CVariant::SEnumItem> rates;
    for (long long rate : {9600, 19200, 115200})
        rates.add({CString(std::to_string(rate)), rate});
    parameters.Add({"BaudRate", "Baud rate", "Serial speed", CParameters::EDIT_CUSTOM_SELECT,
        CVariant::Enum(rates, 9600)});
    parameters.Add({"Control", "Control channel", "", CParameters::EDIT_ALWAYS, CVariant("COM1")});
    CVariant timeout(CVariant::TYPE_UINT16);
    timeout.Assign(CVariant(500));
    parameters.Add({"Timeout", "", "", CParameters::EDIT_CUSTOM, timeout});
    return parameters;
}

} // namespace

class tst_DeviceParameter : public QObject {
    Q_OBJECT

private slots:
    void editLevelNumbers()
    {
        QCOMPARE(int(DeviceParameter::EDIT_ALWAYS), 0);
        QCOMPARE(int(DeviceParameter::EDIT_CUSTOM), 1);
        QCOMPARE(int(DeviceParameter::EDIT_CUSTOM_SELECT), 2);
        QCOMPARE(int(DeviceParameter::EDIT_INTERNAL), 3);
        QCOMPARE(int(DeviceParameter::EDIT_NEVER), 4);
    }
    void showsTheEntry()
    {
        CParameters parameters = sample();
        const DeviceParameter rate(parameters, 0, CParameters::EDIT_CUSTOM);
        QCOMPARE(rate.index(), 0u);
        QCOMPARE(rate.name(), QStringLiteral("BaudRate"));
        QCOMPARE(rate.displayName(), QStringLiteral("Baud rate"));
        QCOMPARE(rate.description(), QStringLiteral("Serial speed"));
        QCOMPARE(rate.value(), QStringLiteral("9600"));
        QVERIFY(rate.hasAllowedValues());
        QCOMPARE(rate.allowedValues(), (QStringList{"9600", "19200", "115200"}));
        QCOMPARE(rate.valueIndex(), 0);
        QCOMPARE(rate.editLevel(), DeviceParameter::EDIT_CUSTOM);
        const DeviceParameter control(parameters, 1, CParameters::EDIT_CUSTOM);
        QCOMPARE(control.description(), QString());
    }
    void freeTextParameter()
    {
        CParameters parameters = sample();
        DeviceParameter control(parameters, 1, CParameters::EDIT_ALWAYS);
        QVERIFY(!control.hasAllowedValues());
        QVERIFY(control.allowedValues().isEmpty());
        QCOMPARE(control.valueIndex(), -1);
        QSignalSpy value(&control, &DeviceParameter::valueChanged);
        QSignalSpy index(&control, &DeviceParameter::valueIndexChanged);
        control.setValueIndex(0);
        QCOMPARE(value.count(), 0);
        QCOMPARE(index.count(), 0);
    }
    void writingTheSameTextEmitsNothing()
    {
        CParameters parameters = sample();
        DeviceParameter control(parameters, 1, CParameters::EDIT_ALWAYS);
        QSignalSpy value(&control, &DeviceParameter::valueChanged);
        control.setValue("COM1");
        QCOMPARE(value.count(), 0);
        control.setValue("COM4");
        QCOMPARE(value.count(), 1);
        QCOMPARE(control.value(), QStringLiteral("COM4"));
        QCOMPARE(QByteArray(parameters[1u].value().ToString().c_str()), QByteArray("COM4"));
    }
    void refusedTextStillAnnouncesARead()
    {
        CParameters parameters = sample();
        DeviceParameter timeout(parameters, 2, CParameters::EDIT_NEVER);
        QSignalSpy value(&timeout, &DeviceParameter::valueChanged);
        timeout.setValue("seventy");
        QCOMPARE(value.count(), 1);
        QCOMPARE(timeout.value(), QStringLiteral("500"));
        timeout.setValue("0x10"); // normalised by the library
        QCOMPARE(value.count(), 2);
        QCOMPARE(timeout.value(), QStringLiteral("16"));
    }
    void setValueNeverAnnouncesTheIndex()
    {
        CParameters parameters = sample();
        DeviceParameter rate(parameters, 0, CParameters::EDIT_ALWAYS);
        QSignalSpy index(&rate, &DeviceParameter::valueIndexChanged);
        rate.setValue("115200");
        QCOMPARE(rate.valueIndex(), 2);
        QCOMPARE(index.count(), 0);
    }
    void valueIndexWritesTheName()
    {
        CParameters parameters = sample();
        DeviceParameter rate(parameters, 0, CParameters::EDIT_ALWAYS);
        QSignalSpy value(&rate, &DeviceParameter::valueChanged);
        QSignalSpy index(&rate, &DeviceParameter::valueIndexChanged);
        rate.setValueIndex(1);
        QCOMPARE(rate.value(), QStringLiteral("19200"));
        QCOMPARE(value.count(), 1);
        QCOMPARE(index.count(), 1);
        QCOMPARE(parameters[0u].value().ToInt64(), 19200);
    }
    void valueIndexOutOfRangeOrCurrentIsIgnored_data()
    {
        QTest::addColumn<int>("index");
        QTest::newRow("current") << 0;
        QTest::newRow("minus one") << -1;
        QTest::newRow("size") << 3;
    }
    void valueIndexOutOfRangeOrCurrentIsIgnored()
    {
        QFETCH(int, index);
        CParameters parameters = sample();
        DeviceParameter rate(parameters, 0, CParameters::EDIT_ALWAYS);
        QSignalSpy value(&rate, &DeviceParameter::valueChanged);
        QSignalSpy indexSpy(&rate, &DeviceParameter::valueIndexChanged);
        rate.setValueIndex(index);
        QCOMPARE(value.count(), 0);
        QCOMPARE(indexSpy.count(), 0);
        QCOMPARE(rate.value(), QStringLiteral("9600"));
    }
    void writabilityRisesWithTheLevel_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<bool>("writable");
        QTest::newRow("always") << 0 << false;
        QTest::newRow("custom") << 1 << false;
        QTest::newRow("custom select") << 2 << true;
        QTest::newRow("internal") << 3 << true;
        QTest::newRow("never") << 4 << true;
    }
    void writabilityRisesWithTheLevel()
    {
        QFETCH(int, level);
        QFETCH(bool, writable);
        CParameters parameters = sample(); // BaudRate's own level is 2
        const DeviceParameter rate(parameters, 0, static_cast<CParameters::EEditLevel>(level));
        QCOMPARE(rate.isWritable(), writable);
    }
    void setEditLevelAnnouncesOnlyChanges()
    {
        CParameters parameters = sample();
        DeviceParameter rate(parameters, 0, CParameters::EDIT_ALWAYS);
        QSignalSpy level(&rate, &DeviceParameter::editLevelChanged);
        rate.setEditLevel(DeviceParameter::EDIT_INTERNAL);
        rate.setEditLevel(DeviceParameter::EDIT_INTERNAL);
        QCOMPARE(level.count(), 1);
        QVERIFY(rate.isWritable());
    }
    void twoViewsShareTheEntry()
    {
        CParameters parameters = sample();
        DeviceParameter a(parameters, 1, CParameters::EDIT_ALWAYS);
        const DeviceParameter b(parameters, 1, CParameters::EDIT_ALWAYS);
        QSignalSpy bChanged(&b, &DeviceParameter::valueChanged);
        a.setValue("COM9");
        QCOMPARE(b.value(), QStringLiteral("COM9"));
        QCOMPARE(bChanged.count(), 0);
    }
    void propertiesReachQml()
    {
        CParameters parameters = sample();
        DeviceParameter rate(parameters, 0, CParameters::EDIT_ALWAYS);
        QCOMPARE(rate.property("editLevel").toInt(), 0);
        QVERIFY(rate.setProperty("valueIndex", 2));
        QCOMPARE(rate.property("value").toString(), QStringLiteral("115200"));
        QVERIFY(rate.setProperty("editLevel", int(DeviceParameter::EDIT_NEVER)));
        QCOMPARE(rate.property("isWritable").toBool(), true);
    }
};

QTEST_APPLESS_MAIN(tst_DeviceParameter)
#include "tst_deviceparameter.moc"
