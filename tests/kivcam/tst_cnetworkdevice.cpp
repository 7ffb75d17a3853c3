// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "GigETest.h"

#include <kivcam/CInterfaces.h>
#include <kivcam/network/CNetworkDevice.h>

#include <QtTest>

using namespace gigetest;

namespace {

SDeviceInfo adapter(const char* name)
{
    SDeviceInfo device = interfaces()->interfaceByName("Network")->defaultDevice;
    device.parameters[CString("Adapter")].setValue(CVariant(name));
    return device;
}

} // namespace

class tst_CNetworkDevice : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        NETNS_REQUIRE();
        QVERIFY(netns::ip({"link", "set", "lo", "up"}));
        QVERIFY(netns::ip({"link", "add", "veth0", "type", "veth", "peer", "name", "veth1"}));
        QVERIFY(netns::ip({"addr", "add", "10.1.0.1/24", "dev", "veth1"}));
    }

    void opensAnAdapterThatIsUp()
    {
        const TSharedPtr<IDevice> device = interfaces()->interfaceByName("Network")->createDevice();
        QVERIFY(device->open(adapter("lo"), true));
        QVERIFY(device->isOpen());
        QVERIFY(device->errorMessage().empty());
        QCOMPARE(parameter(device->info(), "Adapter"), QByteArray("lo"));
        QVERIFY(!device->open(adapter("lo"), true));
        QVERIFY(str(device->errorMessage()).contains("open already"));
        device->close();
        QVERIFY(!device->isOpen());
        QVERIFY(device->open(adapter("lo"), true));
    }

    void refusesAnAdapterThatIsNotThere_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("missing") << QByteArray("nosuch0");
        QTest::newRow("down") << QByteArray("veth1");
        QTest::newRow("no IPv4 address") << QByteArray("veth0");
    }
    void refusesAnAdapterThatIsNotThere()
    {
        QFETCH(QByteArray, name);
        if (name == "veth0")
            QVERIFY(netns::ip({"link", "set", "veth0", "up"}));
        CNetworkDevice device;
        QVERIFY(!device.open(adapter(name.constData()), true));
        QVERIFY(!device.isOpen());
        QVERIFY2(str(device.errorMessage()).contains("\"" + name + "\" is not there, not up"),
            device.errorMessage().c_str());
    }
};

KIVCAM_NETWORK_TEST_MAIN(tst_CNetworkDevice)
#include "tst_cnetworkdevice.moc"
