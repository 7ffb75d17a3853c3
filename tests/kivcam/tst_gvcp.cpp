// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcam/gige/Gvcp.h>

#include <QtTest>

#include <vector>

using namespace kiv;
using namespace kiv::cam;

namespace {

QByteArray bytes(const std::vector<std::uint8_t>& data)
{
    return QByteArray(reinterpret_cast<const char*>(data.data()), static_cast<int>(data.size()));
}

std::vector<std::uint8_t> datagram(const QByteArray& hex)
{
    const QByteArray raw = QByteArray::fromHex(hex);
    return std::vector<std::uint8_t>(raw.begin(), raw.end());
}

QByteArray str(const CString& text)
{
    return QByteArray(text.c_str());
}

// A discovery answer as a camera sends it.
std::vector<std::uint8_t> discoveryAck()
{
    std::vector<std::uint8_t> out = datagram("0000000300f80007");
    std::vector<std::uint8_t> payload(gvcp::DiscoveryAckSize);
    const auto put = [&payload](std::size_t at, const QByteArray& hex) {
        const QByteArray raw = QByteArray::fromHex(hex);
        std::copy(raw.begin(), raw.end(), payload.begin() + static_cast<std::ptrdiff_t>(at));
    };
    put(0x00, "00020001"); // version 2.1
    put(0x04, "80000001");
    put(0x0A, "0011223344aa");
    put(0x10, "80000007");
    put(0x14, "00000005");
    put(0x24, "c0a80514"); // 192.168.5.20
    put(0x34, "ffffff00");
    put(0x44, "c0a80501");
    put(0x48, QByteArray("Maker").toHex());
    put(0x68, QByteArray("Model X").toHex());
    put(0x88, QByteArray("1.2.3").toHex());
    put(0xA8, QByteArray("info").toHex());
    put(0xD8, QByteArray("0123456789abcdef").toHex()); // fills the field, no terminating zero
    put(0xE8, QByteArray("bad\x01\xff").toHex());
    out.insert(out.end(), payload.begin(), payload.end());
    return out;
}

} // namespace

class tst_Gvcp : public QObject {
    Q_OBJECT

private slots:
    void commandsAreLaidOutBigEndian()
    {
        QCOMPARE(bytes(gvcp::Command(gvcp::DISCOVERY_CMD, 1, 0x11)).toHex(),
            QByteArray("4211000200000001"));
        QCOMPARE(bytes(gvcp::ReadRegisterCommand(0x1234, 0x0A00)).toHex(),
            QByteArray("42010080000412340000"
                       "0a00"));
        QCOMPARE(bytes(gvcp::WriteRegisterCommand(2, 0x0A00, 2)).toHex(),
            QByteArray("4201008200080002"
                       "00000a00"
                       "00000002"));
        QCOMPARE(bytes(gvcp::ReadMemoryCommand(3, 0x68, 32)).toHex(),
            QByteArray("4201008400080003"
                       "00000068"
                       "0000"
                       "0020"));
    }

    void forceIpCarriesMacAndAddresses()
    {
        const std::vector<std::uint8_t> command
            = gvcp::ForceIpCommand(9, 0x0011223344AA, 0x0A000014, 0xFFFFFF00, 0x0A000001);
        QCOMPARE(command.size(), gvcp::HeaderSize + 0x38);
        QCOMPARE(bytes(command).left(8).toHex(), QByteArray("4211000400380009"));
        const QByteArray payload = bytes(command).mid(8);
        QCOMPARE(payload.mid(0x00, 8).toHex(), QByteArray("00000011223344aa"));
        QCOMPARE(payload.mid(0x14, 4).toHex(), QByteArray("0a000014"));
        QCOMPARE(payload.mid(0x24, 4).toHex(), QByteArray("ffffff00"));
        QCOMPARE(payload.mid(0x34, 4).toHex(), QByteArray("0a000001"));
    }

    void acksAreReadOnlyWhenWhole()
    {
        gvcp::SAck ack;
        QVERIFY(!gvcp::ParseAck(datagram(""), ack));
        QVERIFY(!gvcp::ParseAck(datagram("00000081000400"), ack));
        // A length that runs past the datagram.
        QVERIFY(!gvcp::ParseAck(datagram("000000810008000500000002"), ack));
        const std::vector<std::uint8_t> denied = datagram("800600810004000500000002ffff");
        QVERIFY(gvcp::ParseAck(denied, ack));
        QCOMPARE(ack.status, std::uint16_t{gvcp::STATUS_ACCESS_DENIED});
        QCOMPARE(ack.command, std::uint16_t{gvcp::READREG_ACK});
        QCOMPARE(ack.id, std::uint16_t{5});
        QCOMPARE(ack.payloadSize, std::size_t{4});
        QCOMPARE(gvcp::ReadUInt32(ack.payload), 2u);
    }

    void answersAreSortedForTheCommandThatWaits()
    {
        gvcp::SAck ack;
        std::uint32_t pending = 0;
        // Not an answer at all: too short, or a length past the datagram.
        QCOMPARE(gvcp::ReadAnswer(datagram("000000810004"), 5, gvcp::READREG_ACK, ack, pending),
            gvcp::ANSWER_NONE);
        QCOMPARE(gvcp::ReadAnswer(
                     datagram("000000810008000500000002"), 5, gvcp::READREG_ACK, ack, pending),
            gvcp::ANSWER_NONE);
        // Another command's identifier, or another command's answer.
        QCOMPARE(gvcp::ReadAnswer(
                     datagram("00000081000400040000002a"), 5, gvcp::READREG_ACK, ack, pending),
            gvcp::ANSWER_OTHER);
        QCOMPARE(gvcp::ReadAnswer(
                     datagram("00000083000400050000002a"), 5, gvcp::READREG_ACK, ack, pending),
            gvcp::ANSWER_OTHER);
        // More time, as much as the camera asks for.
        QCOMPARE(gvcp::ReadAnswer(
                     datagram("000000890004000500000bb8"), 5, gvcp::READREG_ACK, ack, pending),
            gvcp::ANSWER_PENDING);
        QCOMPARE(pending, 3000u);
        // A PENDING_ACK too short to say how long is no answer to wait on.
        QCOMPARE(
            gvcp::ReadAnswer(datagram("0000008900020005000b"), 5, gvcp::READREG_ACK, ack, pending),
            gvcp::ANSWER_OTHER);
        // The answer, whatever its status.
        QCOMPARE(gvcp::ReadAnswer(
                     datagram("80060081000400050000002a"), 5, gvcp::READREG_ACK, ack, pending),
            gvcp::ANSWER_FINAL);
        QCOMPARE(ack.status, std::uint16_t{gvcp::STATUS_ACCESS_DENIED});
    }

    void registerAndMemoryReadsGiveTheirValues()
    {
        // The answers' payloads point into their datagrams, which live as long as the test.
        const std::vector<std::uint8_t> read = datagram("00000081000400050000002a");
        const std::vector<std::uint8_t> refused = datagram("80060081000400050000002a");
        const std::vector<std::uint8_t> shortRead = datagram("000000810002000500000000");
        const std::vector<std::uint8_t> memory = datagram("000000850008000600000200616263ff");
        gvcp::SAck ack;
        std::uint32_t value = 0;
        QVERIFY(gvcp::ParseAck(read, ack));
        QVERIFY(gvcp::ReadRegisterAck(ack, value));
        QCOMPARE(value, 42u);
        // Refused, too short, or a memory answer: no value.
        value = 7;
        QVERIFY(gvcp::ParseAck(refused, ack));
        QVERIFY(!gvcp::ReadRegisterAck(ack, value));
        QVERIFY(gvcp::ParseAck(shortRead, ack));
        QVERIFY(!gvcp::ReadRegisterAck(ack, value));
        QVERIFY(gvcp::ParseAck(memory, ack));
        QVERIFY(!gvcp::ReadRegisterAck(ack, value));
        QCOMPARE(value, 7u);

        std::vector<std::uint8_t> data;
        QVERIFY(gvcp::ReadMemoryAck(ack, 0x200, 4, data));
        QCOMPARE(bytes(data), QByteArray("abc\xff"));
        QVERIFY(gvcp::ReadMemoryAck(ack, 0x200, 2, data));
        QCOMPARE(bytes(data), QByteArray("ab"));
        // Another address, more bytes than came, or a register answer.
        QVERIFY(!gvcp::ReadMemoryAck(ack, 0x204, 4, data));
        QVERIFY(!gvcp::ReadMemoryAck(ack, 0x200, 5, data));
        QVERIFY(gvcp::ParseAck(read, ack));
        QVERIFY(!gvcp::ReadMemoryAck(ack, 0x2a, 0, data));
    }

    void discoveryAnswersGiveTheCamera()
    {
        const std::vector<std::uint8_t> answer = discoveryAck();
        gvcp::SAck ack;
        QVERIFY(gvcp::ParseAck(answer, ack));
        gvcp::SDiscoveryAck camera;
        QVERIFY(gvcp::ParseDiscoveryAck(ack, camera));
        QCOMPARE(camera.versionMajor, std::uint16_t{2});
        QCOMPARE(camera.versionMinor, std::uint16_t{1});
        QCOMPARE(camera.deviceMode, 0x80000001u);
        QCOMPARE(camera.mac, std::uint64_t{0x0011223344AA});
        QCOMPARE(camera.ipConfigOptions, 0x80000007u);
        QCOMPARE(camera.ipConfigCurrent, 5u);
        QCOMPARE(camera.address, 0xC0A80514u);
        QCOMPARE(camera.netmask, 0xFFFFFF00u);
        QCOMPARE(camera.gateway, 0xC0A80501u);
        QCOMPARE(str(camera.manufacturer), QByteArray("Maker"));
        QCOMPARE(str(camera.model), QByteArray("Model X"));
        QCOMPARE(str(camera.deviceVersion), QByteArray("1.2.3"));
        QCOMPARE(str(camera.manufacturerInfo), QByteArray("info"));
        QCOMPARE(str(camera.serial), QByteArray("0123456789abcdef"));
        QCOMPARE(str(camera.userName), QByteArray("bad??"));

        // Cut short, or of another kind, it is no camera.
        std::vector<std::uint8_t> shortAnswer = answer;
        shortAnswer.resize(answer.size() - 1);
        shortAnswer[5] = static_cast<std::uint8_t>(gvcp::DiscoveryAckSize - 1);
        QVERIFY(gvcp::ParseAck(shortAnswer, ack));
        QVERIFY(!gvcp::ParseDiscoveryAck(ack, camera));
        const std::vector<std::uint8_t> read = datagram("0000008100040005000000ff");
        QVERIFY(gvcp::ParseAck(read, ack));
        QVERIFY(!gvcp::ParseDiscoveryAck(ack, camera));
    }

    void macAddressesAsText()
    {
        QCOMPARE(str(gvcp::MacText(0x0011223344AA)), QByteArray("00:11:22:33:44:aa"));
        std::uint64_t mac = 0;
        QVERIFY(gvcp::ParseMac("00:11:22:33:44:AA", mac));
        QCOMPARE(mac, std::uint64_t{0x0011223344AA});
        QVERIFY(gvcp::ParseMac("02-00-00-00-00-01", mac));
        QCOMPARE(mac, std::uint64_t{0x020000000001});
        for (const char* bad : {"", "00:11:22:33:44", "00:11:22:33:44:aa:bb", "00:11:22:33:44:ag",
                 "00112233:44:aa", "0:11:22:33:44:aab"})
            QVERIFY2(!gvcp::ParseMac(bad, mac), bad);
    }

    void statusTexts()
    {
        QCOMPARE(str(gvcp::StatusText(gvcp::STATUS_ACCESS_DENIED)), QByteArray("access denied"));
        QCOMPARE(str(gvcp::StatusText(gvcp::STATUS_BUSY)), QByteArray("busy"));
        QCOMPARE(str(gvcp::StatusText(0x8FFF)), QByteArray("status 0x8FFF"));
    }
};

QTEST_GUILESS_MAIN(tst_Gvcp)
#include "tst_gvcp.moc"
