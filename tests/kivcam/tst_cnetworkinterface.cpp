// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "GigETest.h"

#include <kivcam/CInterfaces.h>
#include <kivcam/network/CNetworkInterface.h>

#include <QtTest>

using namespace gigetest;

namespace {

TSharedPtr<IInterface> network()
{
    return interfaces()->interfaceByName("Network");
}

} // namespace

class tst_CNetworkInterface : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        NETNS_REQUIRE();
        QVERIFY(netns::ip({"link", "set", "lo", "up"}));
        QVERIFY(netns::ip({"link", "add", "veth0", "type", "veth", "peer", "name", "veth1"}));
        QVERIFY(netns::ip({"addr", "add", "10.1.0.1/24", "dev", "veth0"}));
        QVERIFY(netns::ip(
            {"link", "set", "veth0", "mtu", "1400", "address", "02:00:00:00:01:01", "up"}));
        QVERIFY(network());
    }

    void describesItself()
    {
        const TSharedPtr<IInterface> transport = network();
        QCOMPARE(str(transport->displayName), QByteArray("Network adapters"));
        QCOMPARE(str(transport->icon), QByteArray("Ethernet"));
        QCOMPARE(str(transport->baseType), QByteArray("Ethernet"));
        QVERIFY(!transport->isEmulator);
        QCOMPARE(parameter(transport->defaultDevice, "Adapter"), QByteArray("eth0"));
        QCOMPARE(transport->defaultDevice.parameters[CString("Adapter")].editLevel,
            CParameters::EDIT_ALWAYS);
    }

    void anAdapterIsADeviceWithItsAddresses()
    {
        TArray<SDeviceInfo> devices;
        QVERIFY(network()->findDevices(devices, {}));
        QCOMPARE(devices.count(), 2); // lo and veth0; veth1 is down
        const SDeviceInfo& veth = devices[1];
        QCOMPARE(str(veth.interfaceName), QByteArray("Network"));
        QCOMPARE(str(veth.deviceName), QByteArray("veth0"));
        QCOMPARE(str(veth.baseType), QByteArray("Ethernet"));
        QCOMPARE(str(veth.iconName), QByteArray("Ethernet"));
        QCOMPARE(str(veth.description), QByteArray("10.1.0.1/255.255.255.0"));
        QCOMPARE(parameter(veth, "Adapter"), QByteArray("veth0"));
        QCOMPARE(parameter(veth, "Address"), QByteArray("10.1.0.1"));
        QCOMPARE(parameter(veth, "Netmask"), QByteArray("255.255.255.0"));
        QCOMPARE(parameter(veth, "MTU"), QByteArray("1400"));
        QCOMPARE(parameter(veth, "MAC"), QByteArray("02:00:00:00:01:01"));
        for (unsigned i = 0; i < veth.parameters.count(); ++i)
            QCOMPARE(veth.parameters[i].editLevel, CParameters::EDIT_NEVER);
        QVERIFY(veth.canConnect);
        const SDeviceInfo& lo = devices[0];
        QCOMPARE(str(lo.description), QByteArray("Loopback 127.0.0.1/255.0.0.0"));
        QCOMPARE(parameter(lo, "MAC"), QByteArray(""));
    }

    void adaptersHaveNoCamerasOfTheirOwn()
    {
        TArray<SCameraInfo> cameras;
        QVERIFY(network()->findCameras(cameras, {}));
        QVERIFY(cameras.empty());
    }

    void theCatalogueSearchesIt()
    {
        TArray<SDeviceInfo> devices;
        QVERIFY(
            interfaces()->findDevicesOf(devices, {CString("Ethernet")}, CInterfaces::FIND_PRESENT));
        QCOMPARE(devices.count(), 2);
    }
};

KIVCAM_NETWORK_TEST_MAIN(tst_CNetworkInterface)
#include "tst_cnetworkinterface.moc"
