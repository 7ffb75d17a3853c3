// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "NetworkNamespace.h"

#include <kivcam/network/CNetworkAdapters.h>
#include <kivcam/network/CUdpSocket.h>

#include <QElapsedTimer>
#include <QtTest>

#include <thread>

using namespace kiv;
using namespace kiv::cam;

namespace {

SNetworkAdapter loopback()
{
    SNetworkAdapter lo;
    CNetworkAdapters::Find("lo", lo);
    return lo;
}

std::chrono::steady_clock::time_point in(int milliseconds)
{
    return std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
}

} // namespace

class tst_CUdpSocket : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        NETNS_REQUIRE();
        QVERIFY(netns::ip({"link", "set", "lo", "up"}));
    }

    void sendsAndReceivesWithTheSender()
    {
        CUdpSocket a;
        CUdpSocket b;
        CString error;
        QVERIFY2(a.Open(loopback(), error), error.c_str());
        QVERIFY(b.Open(loopback(), error));
        QVERIFY(a.isOpen());
        QVERIFY(a.port() != 0);
        QVERIFY(a.port() != b.port());
        QVERIFY(a.SendTo(0x7F000001, b.port(), {1, 2, 3}));
        std::vector<std::uint8_t> datagram;
        std::uint32_t from = 0;
        std::uint16_t fromPort = 0;
        QCOMPARE(b.Receive(datagram, from, fromPort, in(2000), {}), CUdpSocket::RECEIVED);
        QCOMPARE(datagram, (std::vector<std::uint8_t>{1, 2, 3}));
        QCOMPARE(from, 0x7F000001u);
        QCOMPARE(fromPort, a.port());
    }

    void waitsUntilTheDeadline()
    {
        CUdpSocket socket;
        CString error;
        QVERIFY(socket.Open(loopback(), error));
        std::vector<std::uint8_t> datagram;
        std::uint32_t from = 0;
        std::uint16_t fromPort = 0;
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(socket.Receive(datagram, from, fromPort, in(150), {}), CUdpSocket::TIMED_OUT);
        QVERIFY(timer.elapsed() >= 150);
        QCOMPARE(socket.Receive(datagram, from, fromPort, in(-5), {}), CUdpSocket::TIMED_OUT);
    }

    void aStopWakesTheWait()
    {
        CUdpSocket socket;
        CString error;
        QVERIFY(socket.Open(loopback(), error));
        std::stop_source stop;
        std::thread stopper([&stop] {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            stop.request_stop();
        });
        std::vector<std::uint8_t> datagram;
        std::uint32_t from = 0;
        std::uint16_t fromPort = 0;
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(socket.Receive(datagram, from, fromPort, in(60000), stop.get_token()),
            CUdpSocket::STOPPED);
        stopper.join();
        QVERIFY(timer.elapsed() < 5000);
        // A stop already requested ends a wait at once; a later wait with another token is
        // not ended by the old stop.
        QCOMPARE(socket.Receive(datagram, from, fromPort, in(60000), stop.get_token()),
            CUdpSocket::STOPPED);
        QCOMPARE(socket.Receive(datagram, from, fromPort, in(50), {}), CUdpSocket::TIMED_OUT);
    }

    void aMissingAdapterCannotBeUsed()
    {
        SNetworkAdapter missing = loopback();
        missing.name = "nosuch0";
        CUdpSocket socket;
        CString error;
        QVERIFY(!socket.Open(missing, error));
        QVERIFY2(QByteArray(error.c_str()).contains("\"nosuch0\""), error.c_str());
        QVERIFY(!socket.isOpen());
        QCOMPARE(socket.port(), std::uint16_t{0});
        QVERIFY(!socket.SendTo(0x7F000001, 9, {1}));
        std::vector<std::uint8_t> datagram;
        std::uint32_t from = 0;
        std::uint16_t fromPort = 0;
        QCOMPARE(socket.Receive(datagram, from, fromPort, in(10), {}), CUdpSocket::FAILED);
    }
};

KIVCAM_NETWORK_TEST_MAIN(tst_CUdpSocket)
#include "tst_cudpsocket.moc"
