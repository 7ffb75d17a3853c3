// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcamui/device/DeviceInfo.h>

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QJSEngine>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>
#include <thread>

using kiv::CString;
using kiv::CVariant;
using kiv::cam::CParameters;
using kiv::cam::SDeviceInfo;

namespace {

SDeviceInfo serialPort()
{
    SDeviceInfo device;
    device.interfaceName = "EmuSerial";
    device.deviceName = "COM1";
    device.baseType = "Serial";
    device.iconName = "Serial";
    device.errorSummary = "Busy";
    device.errorMessage = "Another program holds the port.";
    device.canConnect = false;
    device.parameters.Add({"Control", "Port", "", CParameters::EDIT_ALWAYS, CVariant("COM1")});
    kiv::TArray<CVariant::SEnumItem> rates;
    rates.add({"9600", 9600});
    rates.add({"115200", 115200});
    device.parameters.Add(
        {"BaudRate", "Baud rate", "", CParameters::EDIT_CUSTOM, CVariant::Enum(rates, 9600)});
    return device;
}

DeviceParameter* parameter(DeviceInfo& device, int index)
{
    return qobject_cast<DeviceParameter*>(device.parameters()->at(index));
}

} // namespace

// Runs over the documented example world (see the test's environment).
class tst_DeviceInfo : public QObject {
    Q_OBJECT

private slots:
    void showsTheRecord()
    {
        DeviceInfo device(serialPort(), CParameters::EDIT_CUSTOM);
        QCOMPARE(device.interfaceName(), QStringLiteral("EmuSerial"));
        QCOMPARE(device.deviceName(), QStringLiteral("COM1"));
        QCOMPARE(device.baseType(), QStringLiteral("Serial"));
        QCOMPARE(device.icon(), QStringLiteral("qrc:///data/images/Serial.png"));
        QVERIFY(device.iconExists());
        QVERIFY(device.isFound());
        QVERIFY(!device.canConnect());
        QCOMPARE(device.errorSummary(), QStringLiteral("Busy"));
        QCOMPARE(device.errorMessage(), QStringLiteral("Another program holds the port."));
        QCOMPARE(device.editLevel(), DeviceParameter::EDIT_CUSTOM);
    }
    void listsEveryParameterAtItsLevel()
    {
        DeviceInfo device(serialPort(), CParameters::EDIT_ALWAYS);
        QAbstractItemModelTester tester(
            device.parameters(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(device.parameters()->size(), 2);
        QCOMPARE(parameter(device, 1)->name(), QStringLiteral("BaudRate"));
        QVERIFY(parameter(device, 0)->isWritable());
        QVERIFY(!parameter(device, 1)->isWritable());
        QCOMPARE(QJSEngine::objectOwnership(device.parameters()), QJSEngine::CppOwnership);
    }
    void emptyBaseTypeShowsTheTransport()
    {
        SDeviceInfo record = serialPort();
        record.baseType = CString();
        const DeviceInfo device(record, CParameters::EDIT_CUSTOM);
        QCOMPARE(device.baseType(), QStringLiteral("EmuSerial"));
    }
    void customSelectIsATemplate_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<bool>("found");
        for (int level = 0; level <= 4; ++level)
            QTest::addRow("level %d", level) << level << (level != 2);
    }
    void customSelectIsATemplate()
    {
        QFETCH(int, level);
        QFETCH(bool, found);
        const DeviceInfo device(serialPort(), static_cast<CParameters::EEditLevel>(level));
        QCOMPARE(device.isFound(), found);
        QCOMPARE(device.deviceName(), found ? QStringLiteral("COM1") : QStringLiteral("Custom"));
    }
    void interfaceIsMadeOnceOnFirstRead()
    {
        DeviceInfo device(serialPort(), CParameters::EDIT_CUSTOM);
        InterfaceModel* transport = device.interface();
        QVERIFY(transport);
        QCOMPARE(transport->name(), QStringLiteral("EmuSerial"));
        QCOMPARE(transport->parent(), &device);
        QCOMPARE(device.interface(), transport);
    }
    void unknownInterfaceIsNull()
    {
        SDeviceInfo record = serialPort();
        record.interfaceName = "NoSuchTransport";
        DeviceInfo device(record, CParameters::EDIT_CUSTOM);
        QCOMPARE(device.interface(), nullptr);
        QCOMPARE(device.interface(), nullptr);
    }
    void editLevelCascadesToTheParameters()
    {
        SDeviceInfo record = serialPort();
        DeviceInfo device(record, CParameters::EDIT_ALWAYS);
        parameter(device, 1)->setEditLevel(DeviceParameter::EDIT_INTERNAL);
        QStringList order;
        connect(&device, &DeviceInfo::editLevelChanged, this, [&] { order << "device"; });
        connect(parameter(device, 0), &DeviceParameter::editLevelChanged, this,
            [&] { order << "Control"; });
        connect(parameter(device, 1), &DeviceParameter::editLevelChanged, this,
            [&] { order << "BaudRate"; });
        device.setEditLevel(DeviceParameter::EDIT_INTERNAL);
        QCOMPARE(order, (QStringList{"device", "Control"})); // BaudRate was already there
        QCOMPARE(parameter(device, 0)->editLevel(), DeviceParameter::EDIT_INTERNAL);
        order.clear();
        device.setEditLevel(DeviceParameter::EDIT_INTERNAL);
        QVERIFY(order.isEmpty());
        device.setEditLevel(DeviceParameter::EDIT_NEVER);
        QCOMPARE(order, (QStringList{"device", "Control", "BaudRate"}));
    }
    void constantNamesAreNotReannounced()
    {
        DeviceInfo device(serialPort(), CParameters::EDIT_CUSTOM_SELECT);
        QSignalSpy level(&device, &DeviceInfo::editLevelChanged);
        device.setEditLevel(DeviceParameter::EDIT_CUSTOM);
        QCOMPARE(level.count(), 1);
        QCOMPARE(device.deviceName(), QStringLiteral("COM1")); // read afresh
        const QMetaObject& meta = DeviceInfo::staticMetaObject;
        QVERIFY(meta.property(meta.indexOfProperty("deviceName")).isConstant());
        QVERIFY(meta.property(meta.indexOfProperty("isFound")).isConstant());
    }
    void copyingFormIsIndependent()
    {
        SDeviceInfo record = serialPort();
        DeviceInfo device(record, CParameters::EDIT_ALWAYS);
        parameter(device, 0)->setValue("COM7");
        QCOMPARE(QByteArray(record.parameters[0u].value().ToString().c_str()), QByteArray("COM1"));
        QCOMPARE(QByteArray(device.info().parameters[0u].value().ToString().c_str()),
            QByteArray("COM7"));
    }
    void referringFormEditsTheRecordAtOnce()
    {
        SDeviceInfo record = serialPort();
        DeviceInfo device(0, record, CParameters::EDIT_NEVER);
        QCOMPARE(&device.info(), &record);
        parameter(device, 1)->setValueIndex(1);
        QCOMPARE(record.parameters[1u].value().ToInt64(), 115200);
    }
    void cloneIsAnIndependentCopy()
    {
        SDeviceInfo record = serialPort();
        DeviceInfo device(0, record, CParameters::EDIT_INTERNAL);
        parameter(device, 0)->setValue("COM3");
        std::unique_ptr<DeviceInfo> copy(device.clone());
        QCOMPARE(copy->parent(), nullptr);
        QCOMPARE(copy->editLevel(), DeviceParameter::EDIT_INTERNAL);
        QVERIFY(&copy->info() != &record);
        QCOMPARE(parameter(*copy, 0)->value(), QStringLiteral("COM3"));
        parameter(*copy, 0)->setValue("COM5");
        QCOMPARE(parameter(device, 0)->value(), QStringLiteral("COM3"));
        parameter(device, 0)->setValue("COM6");
        QCOMPARE(parameter(*copy, 0)->value(), QStringLiteral("COM5"));
    }
    void sharingFormKeepsTheRecordAlive()
    {
        auto record = std::make_shared<SDeviceInfo>(serialPort());
        const std::weak_ptr<SDeviceInfo> watch = record;
        DeviceInfo device(record, CParameters::EDIT_NEVER);
        QCOMPARE(&device.info(), record.get());
        parameter(device, 0)->setValue("COM4");
        QCOMPARE(QByteArray(record->parameters[0u].value().ToString().c_str()), QByteArray("COM4"));
        record.reset();
        QVERIFY(!watch.expired());
        QCOMPARE(parameter(device, 0)->value(), QStringLiteral("COM4"));
    }
    void parametersAreMadeOnceAtTheLevelOfTheirFirstRead()
    {
        DeviceInfo device(serialPort(), CParameters::EDIT_ALWAYS);
        QSignalSpy level(&device, &DeviceInfo::editLevelChanged);
        device.setEditLevel(DeviceParameter::EDIT_CUSTOM);
        QCOMPARE(level.count(), 1);
        ObjectListModel* parameters = device.parameters();
        QCOMPARE(device.parameters(), parameters);
        QCOMPARE(parameters->size(), 2);
        QCOMPARE(parameter(device, 0)->editLevel(), DeviceParameter::EDIT_CUSTOM);
        QVERIFY(parameter(device, 1)->isWritable());
    }
    void madeOnAnotherThreadAndMovedHere()
    {
        // As a search task makes devices: on its thread, then moved to the thread showing them.
        DeviceInfo* device = nullptr;
        std::thread maker([&] {
            device = new DeviceInfo(serialPort(), CParameters::EDIT_CUSTOM);
            device->moveToThread(QCoreApplication::instance()->thread());
        });
        maker.join();
        std::unique_ptr<DeviceInfo> owned(device);
        QCOMPARE(owned->thread(), QThread::currentThread());
        QCOMPARE(owned->parameters()->thread(), QThread::currentThread());
        QCOMPARE(parameter(*owned, 1)->thread(), QThread::currentThread());
        QCOMPARE(owned->interface()->thread(), QThread::currentThread());
        QCOMPARE(parameter(*owned, 1)->allowedValues(), (QStringList{"9600", "115200"}));
    }
    void recordWithoutParametersGivesAnEmptyList()
    {
        const SDeviceInfo empty;
        DeviceInfo device(empty, CParameters::EDIT_CUSTOM);
        QCOMPARE(device.parameters()->size(), 0);
        QCOMPARE(device.interfaceName(), QString());
    }
};

QTEST_MAIN(tst_DeviceInfo)
#include "tst_deviceinfo.moc"
