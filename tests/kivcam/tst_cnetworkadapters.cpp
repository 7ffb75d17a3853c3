// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "NetworkNamespace.h"

#include <kivcam/network/CNetworkAdapters.h>

#include <QtTest>

using namespace kiv;
using namespace kiv::cam;

namespace {

QByteArray str(const CString& text)
{
    return QByteArray(text.c_str());
}

QByteArrayList names(const TArray<SNetworkAdapter>& adapters)
{
    QByteArrayList found;
    for (const SNetworkAdapter& adapter : adapters)
        found << str(adapter.name);
    return found;
}

} // namespace

class tst_CNetworkAdapters : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        NETNS_REQUIRE();
        // Up with an address: lo, and a veth end with two; up without IPv4: veth2; down: veth1.
        QVERIFY(netns::ip({"link", "set", "lo", "up"}));
        QVERIFY(netns::ip({"link", "add", "veth0", "type", "veth", "peer", "name", "veth1"}));
        QVERIFY(netns::ip({"link", "add", "veth2", "type", "veth", "peer", "name", "veth3"}));
        QVERIFY(netns::ip({"addr", "add", "10.1.0.1/24", "dev", "veth0"}));
        QVERIFY(netns::ip({"addr", "add", "10.2.0.1/16", "dev", "veth0"}));
        QVERIFY(netns::ip({"addr", "add", "10.3.0.1/24", "dev", "veth1"}));
        QVERIFY(netns::ip(
            {"link", "set", "veth0", "mtu", "1400", "address", "02:00:00:00:01:01", "up"}));
        QVERIFY(netns::ip({"link", "set", "veth2", "up"}));
    }

    void listsAdaptersThatAreUpWithIPv4()
    {
        const TArray<SNetworkAdapter> up = CNetworkAdapters::Up();
        QCOMPARE(names(up), (QByteArrayList{"lo", "veth0"}));
        const SNetworkAdapter& lo = up[0];
        QVERIFY(lo.loopback);
        QVERIFY(lo.mac.empty());
        QCOMPARE(lo.addresses.count(), 1);
        QCOMPARE(lo.addresses[0].address, 0x7F000001u);
        QCOMPARE(lo.addresses[0].netmask, 0xFF000000u);
        QCOMPARE(lo.addresses[0].broadcast, 0u);
        const SNetworkAdapter& veth = up[1];
        QVERIFY(!veth.loopback);
        QCOMPARE(veth.mtu, 1400);
        QCOMPARE(str(veth.mac), QByteArray("02:00:00:00:01:01"));
        QVERIFY(veth.index > 0);
        QCOMPARE(veth.addresses.count(), 2);
        QCOMPARE(veth.addresses[0].address, 0x0A010001u);
        QCOMPARE(veth.addresses[0].netmask, 0xFFFFFF00u);
        QCOMPARE(veth.addresses[0].broadcast, 0x0A0100FFu);
        QCOMPARE(veth.addresses[1].netmask, 0xFFFF0000u);
        QVERIFY(veth.Reaches(0x0A010063));
        QVERIFY(veth.Reaches(0x0A02FF01));
        QVERIFY(!veth.Reaches(0x0A030001));
    }

    void findsOneByName()
    {
        SNetworkAdapter found;
        QVERIFY(CNetworkAdapters::Find("veth0", found));
        QCOMPARE(str(found.name), QByteArray("veth0"));
        QVERIFY(!CNetworkAdapters::Find("veth1", found)); // down
        QVERIFY(!CNetworkAdapters::Find("veth2", found)); // no IPv4 address
        QVERIFY(!CNetworkAdapters::Find("nosuch0", found));
        QVERIFY(!CNetworkAdapters::Find("", found));
    }

    void addressesAsText()
    {
        QCOMPARE(str(CNetworkAdapters::AddressText(0xC0A80114)), QByteArray("192.168.1.20"));
        QCOMPARE(str(CNetworkAdapters::AddressText(0)), QByteArray("0.0.0.0"));
        std::uint32_t address = 0;
        QVERIFY(CNetworkAdapters::ParseAddress("192.168.1.20", address));
        QCOMPARE(address, 0xC0A80114u);
        QVERIFY(CNetworkAdapters::ParseAddress("255.255.255.255", address));
        QCOMPARE(address, 0xFFFFFFFFu);
        address = 7;
        for (const char* bad :
            {"", "10.1", "256.0.0.1", " 1.2.3.4", "1.2.3.4 ", "1.2.3.4.5", "a.b.c.d"})
            QVERIFY2(!CNetworkAdapters::ParseAddress(bad, address), bad);
        QCOMPARE(address, 7u);
    }
};

KIVCAM_NETWORK_TEST_MAIN(tst_CNetworkAdapters)
#include "tst_cnetworkadapters.moc"
