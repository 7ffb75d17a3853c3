// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "GigETest.h"

#include <kiv/Platform.h>
#include <kivcam/gige/CGigEDiscovery.h>
#include <kivcam/gige/Gvcp.h>
#include <kivcam/network/CNetworkAdapters.h>

#include <QElapsedTimer>
#include <QtTest>

#include <set>
#include <thread>

using namespace gigetest;

namespace {

SNetworkAdapter adapter(const char* name)
{
    SNetworkAdapter found;
    CNetworkAdapters::Find(name, found);
    return found;
}

std::uint32_t address(const char* text)
{
    std::uint32_t value = 0;
    CNetworkAdapters::ParseAddress(text, value);
    return value;
}

// How far beyond its wait a discovery may end, whatever answers it gets: the last control
// register reads get CGvcpChannel::AnswerWait, the rest is slack for a loaded machine.
constexpr qint64 DiscoveryMarginMs = 1000;
constexpr auto HostileWait = std::chrono::milliseconds(500);

QByteArray debugOutput;
void captureDebugOutput(const char* text)
{
    debugOutput += text;
}

// A discovery on the loopback, with its time and the growth of the process's peak memory, which
// it also prints for the record.
struct SMeasured {
    bool ok = false;
    TArray<SGigECamera> found;
    qint64 ms = 0;
    long peakGrowthKiB = 0;
};
SMeasured measuredDiscovery(const char* what)
{
    SMeasured result;
    const bool reset = resetPeakMemory();
    const long before = peakMemoryKiB();
    QElapsedTimer timer;
    timer.start();
    result.ok = CGigEDiscovery::Discover(adapter("lo"), HostileWait, result.found, {});
    result.ms = timer.elapsed();
    result.peakGrowthKiB = peakMemoryKiB() - before;
    qInfo("%s: %d cameras, %lld ms for a wait of %lld ms, peak memory %+ld KiB%s", what,
        result.found.count(), result.ms, static_cast<long long>(HostileWait.count()),
        result.peakGrowthKiB, reset ? "" : " (peak not reset: an upper bound)");
    return result;
}

const SGigECamera* bySerial(const TArray<SGigECamera>& cameras, const char* serial)
{
    for (const SGigECamera& camera : cameras) {
        if (camera.device.serial == CString(serial))
            return &camera;
    }
    return nullptr;
}

} // namespace

class tst_CGigEDiscovery : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        NETNS_REQUIRE();
        QVERIFY(BringUpLoopback());
    }

    void findsEveryCameraOnceWithItsFields()
    {
        const auto cameras = startCameras(
            {"127.0.0.1,GV-A,020000000001,Model A,left", "127.0.0.2,GV-B,020000000002,Model B"});
        QVERIFY(cameras);
        TArray<SGigECamera> found;
        QVERIFY(CGigEDiscovery::Discover(adapter("lo"), std::chrono::milliseconds(300), found, {}));
        QCOMPARE(found.count(), 2);
        const SGigECamera* a = bySerial(found, "GV-A");
        const SGigECamera* b = bySerial(found, "GV-B");
        QVERIFY(a && b);
        QCOMPARE(a->device.mac, std::uint64_t{0x020000000001});
        QCOMPARE(a->device.address, address("127.0.0.1"));
        QCOMPARE(b->device.address, address("127.0.0.2"));
        QCOMPARE(str(a->device.model), QByteArray("Model A"));
        QCOMPARE(str(a->device.userName), QByteArray("left"));
        QCOMPARE(str(a->device.manufacturer), QByteArray("Aravis"));
        QCOMPARE(str(a->adapter.name), QByteArray("lo"));
        QCOMPARE(a->control, SGigECamera::CONTROL_FREE);
        QCOMPARE(b->control, SGigECamera::CONTROL_FREE);
    }

    void answersOfOneCameraMergeByMac()
    {
        // Two listeners with one MAC address are one camera, seen twice.
        const auto cameras
            = startCameras({"127.0.0.1,GV-SAME,020000000009", "127.0.0.2,GV-SAME,020000000009"});
        QVERIFY(cameras);
        TArray<SGigECamera> found;
        QVERIFY(CGigEDiscovery::Discover(adapter("lo"), std::chrono::milliseconds(300), found, {}));
        QCOMPARE(found.count(), 1);
        QCOMPARE(found[0].device.mac, std::uint64_t{0x020000000009});
    }

    void waitsTheWaitAndNoLonger()
    {
        const auto cameras = startCameras({"127.0.0.1,GV-A,020000000001"});
        QVERIFY(cameras);
        TArray<SGigECamera> found;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(CGigEDiscovery::Discover(adapter("lo"), std::chrono::milliseconds(400), found, {}));
        QVERIFY2(timer.elapsed() >= 400, qPrintable(QString::number(timer.elapsed())));
        QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(found.count(), 1);
    }

    void stopEndsTheWaitAtOnce()
    {
        std::stop_source stop;
        std::thread stopper([&stop] {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            stop.request_stop();
        });
        TArray<SGigECamera> found;
        QElapsedTimer timer;
        timer.start();
        const bool ok = CGigEDiscovery::Discover(
            adapter("lo"), std::chrono::milliseconds(30000), found, stop.get_token());
        stopper.join();
        QVERIFY(!ok);
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }

    // A broken or hostile camera neither prolongs discovery nor slips a malformed answer in.
    void hostileAnswersEndInTime_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("number");
        QTest::addColumn<int>("cameras");
        QTest::newRow("truncated") << "truncated" << QString() << 0;
        // The 64 KiB datagram holds a good answer, with a true length, and counts.
        QTest::newRow("oversized") << "oversized" << QString() << 1;
        QTest::newRow("wrong key") << "wrong-key" << QString() << 0;
        QTest::newRow("wrong id") << "wrong-id" << QString() << 0;
        QTest::newRow("late") << "late" << QString::number(HostileWait.count() + 300) << 0;
        QTest::newRow("duplicates") << "duplicates" << QString() << 1;
        QTest::newRow("pending control register") << "pending" << QString() << 1;
    }
    void hostileAnswersEndInTime()
    {
        QFETCH(QString, mode);
        QFETCH(QString, number);
        QFETCH(int, cameras);
        const auto hostile = startHostile(mode, number);
        QVERIFY(hostile);
        const SMeasured discovery = measuredDiscovery(QTest::currentDataTag());
        QVERIFY(discovery.ok);
        QCOMPARE(discovery.found.count(), cameras);
        QVERIFY2(discovery.ms >= HostileWait.count(), QByteArray::number(discovery.ms));
        QVERIFY2(discovery.ms < HostileWait.count() + DiscoveryMarginMs,
            QByteArray::number(discovery.ms));
        if (cameras) {
            QCOMPARE(str(discovery.found[0].device.serial), QByteArray("HOSTILE-1"));
            QCOMPARE(discovery.found[0].device.mac, std::uint64_t{0x020000000BAD});
        }
    }

    // 100,000 cameras answer: the first MaxCamerasPerAdapter are kept, the cap is said once, and
    // memory stays bounded.
    void aFloodOfCamerasStopsAtTheCap()
    {
        const auto hostile = startHostile(QStringLiteral("flood"), QStringLiteral("100000"));
        QVERIFY(hostile);
        debugOutput.clear();
        platform::SetDebugOutputHandler(captureDebugOutput);
        const SMeasured discovery = measuredDiscovery("flood");
        platform::SetDebugOutputHandler(nullptr);
        QVERIFY(discovery.ok);
        QCOMPARE(discovery.found.count(), CGigEDiscovery::MaxCamerasPerAdapter);
        QVERIFY2(discovery.ms < HostileWait.count() + DiscoveryMarginMs,
            QByteArray::number(discovery.ms));
        // Each camera kept takes about a kilobyte; 100,000 of them would take a hundred megabytes.
        QVERIFY2(discovery.peakGrowthKiB < 16 * 1024, QByteArray::number(discovery.peakGrowthKiB));
        QCOMPARE(debugOutput.count("More than 256 GigE Vision cameras answered on the adapter "
                                   "\"lo\""),
            1);
        // Each camera once (the system drops some of the flood before it is read).
        std::set<std::uint64_t> macs;
        for (const SGigECamera& camera : discovery.found) {
            QVERIFY(camera.device.mac > 0x020000000BAD);
            QVERIFY(camera.device.mac <= 0x020000000BAD + 100000);
            macs.insert(camera.device.mac);
        }
        QCOMPARE(macs.size(), std::size_t{256});
    }

    void aMissingAdapterFails()
    {
        SNetworkAdapter missing;
        missing.name = "nosuch0";
        missing.addresses.add({address("10.9.9.9"), address("255.255.255.0"), 0});
        TArray<SGigECamera> found;
        QVERIFY(!CGigEDiscovery::Discover(missing, std::chrono::milliseconds(50), found, {}));
        QVERIFY(found.empty());
    }

    void sameSubnetNeedsBothWays()
    {
        SNetworkAdapter near;
        near.name = "eth9";
        near.addresses.add({address("10.0.0.1"), address("255.255.255.0"), 0});
        QVERIFY(CGigEDiscovery::SameSubnet(near, address("10.0.0.20"), address("255.255.255.0")));
        QVERIFY(CGigEDiscovery::SameSubnet(near, address("10.0.0.20"), address("255.255.0.0")));
        QVERIFY(!CGigEDiscovery::SameSubnet(near, address("10.0.1.20"), address("255.255.0.0")));
        // The camera's narrow mask leaves the adapter outside its subnet.
        QVERIFY(
            !CGigEDiscovery::SameSubnet(near, address("10.0.0.200"), address("255.255.255.128")));
        // A second address of the adapter counts as well.
        near.addresses.add({address("192.168.5.1"), address("255.255.255.0"), 0});
        QVERIFY(
            CGigEDiscovery::SameSubnet(near, address("192.168.5.20"), address("255.255.255.0")));
    }

    void wrongSubnetMessageSaysBothAddressesAndWhatToDo()
    {
        SNetworkAdapter near;
        near.name = "eth9";
        near.addresses.add({address("10.0.0.1"), address("255.255.255.0"), 0});
        const QByteArray message = str(CGigEDiscovery::WrongSubnetMessage(
            near, address("192.168.5.20"), address("255.255.255.0"), 0x0200000000AA));
        for (const char* part : {"192.168.5.20", "netmask 255.255.255.0", "10.0.0.1", "\"eth9\"",
                 "02:00:00:00:00:aa", "Give the camera an address in the adapter's subnet"})
            QVERIFY2(message.contains(part), message.constData());
    }

    void forceIpRefusesUnusableValues_data()
    {
        QTest::addColumn<QByteArray>("mac");
        QTest::addColumn<QByteArray>("address");
        QTest::addColumn<QByteArray>("netmask");
        QTest::newRow("no MAC") << QByteArray("0") << QByteArray("10.0.0.20")
                                << QByteArray("255.255.255.0");
        QTest::newRow("MAC beyond 48 bits")
            << QByteArray("1000000000000") << QByteArray("10.0.0.20")
            << QByteArray("255.255.255.0");
        QTest::newRow("holes in the mask")
            << QByteArray("20000000001") << QByteArray("10.0.0.20") << QByteArray("255.0.255.0");
        QTest::newRow("network address")
            << QByteArray("20000000001") << QByteArray("10.0.0.0") << QByteArray("255.255.255.0");
        QTest::newRow("broadcast address")
            << QByteArray("20000000001") << QByteArray("10.0.0.255") << QByteArray("255.255.255.0");
        QTest::newRow("no mask") << QByteArray("20000000001") << QByteArray("10.0.0.20")
                                 << QByteArray("0.0.0.0");
    }
    void forceIpRefusesUnusableValues()
    {
        QFETCH(QByteArray, mac);
        QFETCH(QByteArray, address);
        QFETCH(QByteArray, netmask);
        CString error;
        QVERIFY(!CGigEDiscovery::ForceIp(adapter("lo"), mac.toULongLong(nullptr, 16),
            ::address(address.constData()), ::address(netmask.constData()), 0, error));
        QVERIFY(!error.empty());
    }

    void forceIpMovesACameraOfAnotherSubnetIntoOurs()
    {
        const auto far
            = startFarCamera(QStringLiteral("10.0.0.1/24"), QStringLiteral("192.168.5.20/24"),
                QStringLiteral("0200000000aa"), QStringLiteral("FAR-1"));
        QVERIFY(far);
        const SNetworkAdapter veth = adapter("veth0");
        TArray<SGigECamera> found;
        QVERIFY(CGigEDiscovery::Discover(veth, std::chrono::milliseconds(300), found, {}));
        QCOMPARE(found.count(), 1);
        QCOMPARE(found[0].device.address, address("192.168.5.20"));
        QCOMPARE(found[0].control, SGigECamera::CONTROL_UNREACHABLE);
        QVERIFY(
            !CGigEDiscovery::SameSubnet(veth, found[0].device.address, found[0].device.netmask));

        CString error;
        QVERIFY2(CGigEDiscovery::ForceIp(veth, 0x0200000000AA, address("10.0.0.20"),
                     address("255.255.255.0"), 0, error),
            error.c_str());

        found = {};
        QVERIFY(CGigEDiscovery::Discover(veth, std::chrono::milliseconds(300), found, {}));
        QCOMPARE(found.count(), 1);
        QCOMPARE(found[0].device.address, address("10.0.0.20"));
        QCOMPARE(found[0].control, SGigECamera::CONTROL_FREE);
    }

    void forceIpOfAnUnknownMacSaysNobodyConfirmed()
    {
        const auto far
            = startFarCamera(QStringLiteral("10.0.0.1/24"), QStringLiteral("192.168.5.20/24"),
                QStringLiteral("0200000000aa"), QStringLiteral("FAR-1"));
        QVERIFY(far);
        CString error;
        QVERIFY(!CGigEDiscovery::ForceIp(adapter("veth0"), 0x0200000000BB, address("10.0.0.21"),
            address("255.255.255.0"), 0, error));
        QVERIFY2(str(error).contains("02:00:00:00:00:bb"), error.c_str());
    }
};

KIVCAM_NETWORK_TEST_MAIN(tst_CGigEDiscovery)
#include "tst_cgigediscovery.moc"
