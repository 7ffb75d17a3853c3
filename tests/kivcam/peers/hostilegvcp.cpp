// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// A test peer: a hostile or broken GigE Vision camera on the loopback of the test's network
// namespace. It answers discovery, register reads and memory reads in one of these ways:
//
//   truncated      discovery answers cut short: the header alone, half a payload
//   oversized      a payload length beyond the datagram's end, and a 64 KiB datagram around a
//                  good answer (which counts: a longer answer may be a later version's)
//   wrong-key      a command instead of an answer, answers of other command codes, an error status
//   wrong-id       good discovery answers with identifiers other than the command's
//   late MS        a good discovery answer, MS milliseconds after the command
//   duplicates     the same good discovery answer 1,000 times
//   flood COUNT    COUNT good discovery answers, each of another MAC address and address
//   pending        a good discovery answer; register and memory reads get PENDING_ACK, again and
//                  again, and never their answer
//   pending-memory a good discovery answer and register reads (nobody in control); memory reads get
//                  PENDING_ACK without end
//   garbled        a good discovery answer; reads get answers cut short, of another identifier and
//                  of another command code, never a good one
//
//   hostile-gvcp MODE [NUMBER]
//
// The good answers describe the camera "HOSTILE-1" at 127.0.0.1/8, MAC 02:00:00:00:0b:ad. Prints
// "ready" once it listens; ends when standard input closes. It refuses to run outside a network
// namespace that a test of ours made (NetworkNamespace.h), and it sends only on the loopback.

#include <kivcam/gige/Gvcp.h>

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace kiv::cam;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::uint32_t CameraAddress = 0x7F000001; // 127.0.0.1
constexpr std::uint32_t CameraNetmask = 0xFF000000;
constexpr std::uint64_t CameraMac = 0x020000000BAD;
// The time each PENDING_ACK asks for, and how often the next one follows.
constexpr std::uint16_t PendingMs = 400;
constexpr std::chrono::milliseconds PendingEvery{150};

// Whether this process runs in a network namespace of a test's own: the test sets the marker
// to the namespace it left.
bool inTestNamespace()
{
    const char* marker = std::getenv("KIVCAM_TEST_NETWORK_NAMESPACE");
    char link[128] = {};
    const ssize_t size = ::readlink("/proc/self/ns/net", link, sizeof link - 1);
    return marker && *marker && std::strncmp(marker, "skip:", 5) != 0 && size > 0
        && std::string(link, static_cast<std::size_t>(size)) != marker;
}

void put32(std::vector<std::uint8_t>& out, std::size_t at, std::uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        out[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

// An answer: a command's layout with the status where a command has its key and flags.
std::vector<std::uint8_t> answer(std::uint16_t command, std::uint16_t id,
    const std::vector<std::uint8_t>& payload, std::uint16_t status = gvcp::STATUS_SUCCESS)
{
    std::vector<std::uint8_t> out = gvcp::Command(command, id, 0, payload);
    out[0] = static_cast<std::uint8_t>(status >> 8);
    out[1] = static_cast<std::uint8_t>(status);
    return out;
}

std::vector<std::uint8_t> discoveryAnswer(
    std::uint16_t id, std::uint64_t mac, std::uint32_t address)
{
    std::vector<std::uint8_t> payload(gvcp::DiscoveryAckSize);
    payload[0x02] = 2; // version 0.2
    put32(payload, 0x08, static_cast<std::uint32_t>(mac >> 32));
    put32(payload, 0x0C, static_cast<std::uint32_t>(mac));
    put32(payload, 0x24, address);
    put32(payload, 0x34, CameraNetmask);
    for (const auto& [at, text] : {std::pair<std::size_t, const char*>{0x48, "Hostile Peers"},
             {0x68, "Hostile"}, {0xD8, "HOSTILE-1"}})
        std::memcpy(&payload[at], text, std::strlen(text));
    return answer(gvcp::DISCOVERY_ACK, id, payload);
}

std::vector<std::uint8_t> pendingAnswer(std::uint16_t id)
{
    return answer(gvcp::PENDING_ACK, id, {0, 0, PendingMs >> 8, PendingMs & 0xFF});
}

class CResponder {
public:
    CResponder(std::string mode, long number) : m_mode(std::move(mode)), m_number(number) { }

    bool Listen()
    {
        m_socket = ::socket(AF_INET, SOCK_DGRAM, 0);
        // Sent only through the loopback, whatever the address.
        if (m_socket < 0 || ::setsockopt(m_socket, SOL_SOCKET, SO_BINDTODEVICE, "lo", 2) != 0)
            return false;
        const int buffer = 4 << 20;
        ::setsockopt(m_socket, SOL_SOCKET, SO_SNDBUF, &buffer, sizeof buffer);
        sockaddr_in local{};
        local.sin_family = AF_INET;
        local.sin_port = htons(gvcp::Port);
        return ::bind(m_socket, reinterpret_cast<const sockaddr*>(&local), sizeof local) == 0;
    }

    // Answers until standard input closes.
    int Run()
    {
        std::vector<std::uint8_t> datagram(2048);
        for (;;) {
            pollfd waits[2] = {{m_socket, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
            if (::poll(waits, 2, 20) < 0)
                return 1;
            if (waits[1].revents) {
                char byte = 0;
                if (::read(STDIN_FILENO, &byte, 1) <= 0)
                    return 0;
            }
            SendDue();
            if (!(waits[0].revents & POLLIN))
                continue;
            sockaddr_in from{};
            socklen_t size = sizeof from;
            const ssize_t received = ::recvfrom(m_socket, datagram.data(), datagram.size(), 0,
                reinterpret_cast<sockaddr*>(&from), &size);
            if (received >= static_cast<ssize_t>(gvcp::HeaderSize) && datagram[0] == 0x42)
                Answer(datagram, from);
        }
    }

private:
    void Send(const std::vector<std::uint8_t>& data, const sockaddr_in& to)
    {
        // A full send buffer is waited out, so that a flood arrives whole.
        while (::sendto(m_socket, data.data(), data.size(), 0,
                   reinterpret_cast<const sockaddr*>(&to), sizeof to)
                < 0
            && (errno == ENOBUFS || errno == EAGAIN))
            std::this_thread::sleep_for(std::chrono::microseconds(100));
    }

    void Answer(const std::vector<std::uint8_t>& command, const sockaddr_in& from)
    {
        const std::uint16_t code = static_cast<std::uint16_t>((command[2] << 8) | command[3]);
        const std::uint16_t id = static_cast<std::uint16_t>((command[6] << 8) | command[7]);
        if (code == gvcp::DISCOVERY_CMD)
            AnswerDiscovery(id, from);
        else if (code == gvcp::READREG_CMD || code == gvcp::READMEM_CMD)
            AnswerRead(code, id, from);
    }

    void AnswerDiscovery(std::uint16_t id, const sockaddr_in& from)
    {
        const std::vector<std::uint8_t> good = discoveryAnswer(id, CameraMac, CameraAddress);
        if (m_mode == "truncated") {
            Send(std::vector<std::uint8_t>(good.begin(), good.begin() + 8), from);
            Send(std::vector<std::uint8_t>(good.begin(), good.begin() + 8 + 0x7C), from);
            Send(std::vector<std::uint8_t>(good.begin(), good.begin() + 4), from);
        } else if (m_mode == "oversized") {
            std::vector<std::uint8_t> past = good;
            past[4] = 0xFF; // a payload length of 0xFFF8 in 256 bytes
            Send(past, from);
            // The largest UDP datagram over IPv4, its length field true.
            std::vector<std::uint8_t> huge = good;
            huge.resize(65507, 0xEE);
            huge[4] = static_cast<std::uint8_t>((huge.size() - gvcp::HeaderSize) >> 8);
            huge[5] = static_cast<std::uint8_t>(huge.size() - gvcp::HeaderSize);
            Send(huge, from);
        } else if (m_mode == "wrong-key") {
            std::vector<std::uint8_t> echoed = good;
            echoed[0] = 0x42;
            echoed[1] = gvcp::FLAG_ACK_REQUIRED;
            Send(echoed, from);
            std::vector<std::uint8_t> other = good;
            other[3] = static_cast<std::uint8_t>(gvcp::DISCOVERY_CMD);
            Send(other, from);
            other[3] = static_cast<std::uint8_t>(gvcp::READREG_ACK);
            Send(other, from);
            Send(discoveryAnswerWithStatus(id), from);
        } else if (m_mode == "wrong-id") {
            for (const std::uint16_t other : {std::uint16_t(id + 1), std::uint16_t(id - 1),
                     std::uint16_t(0), std::uint16_t(0xFFFF)})
                Send(discoveryAnswer(other, CameraMac, CameraAddress), from);
        } else if (m_mode == "late") {
            m_late.push_back({Clock::now() + std::chrono::milliseconds(m_number), good, from});
        } else if (m_mode == "duplicates") {
            for (int i = 0; i < 1000; ++i)
                Send(good, from);
        } else if (m_mode == "flood") {
            for (long i = 0; i < m_number; ++i) {
                const auto n = static_cast<std::uint32_t>(i + 1);
                Send(discoveryAnswer(id, CameraMac + n, 0x7F010000 + n), from);
            }
        } else {
            Send(good, from);
        }
    }

    std::vector<std::uint8_t> discoveryAnswerWithStatus(std::uint16_t id)
    {
        std::vector<std::uint8_t> refused = discoveryAnswer(id, CameraMac, CameraAddress);
        refused[0] = static_cast<std::uint8_t>(gvcp::STATUS_BUSY >> 8);
        refused[1] = static_cast<std::uint8_t>(gvcp::STATUS_BUSY);
        return refused;
    }

    void AnswerRead(std::uint16_t code, std::uint16_t id, const sockaddr_in& from)
    {
        const std::uint16_t ackCode = static_cast<std::uint16_t>(code + 1);
        if (m_mode == "pending" || (m_mode == "pending-memory" && code == gvcp::READMEM_CMD)) {
            Send(pendingAnswer(id), from);
            m_pending.push_back({Clock::now() + PendingEvery, pendingAnswer(id), from});
        } else if (m_mode == "garbled") {
            const std::vector<std::uint8_t> good
                = answer(ackCode, id, std::vector<std::uint8_t>(8));
            Send(std::vector<std::uint8_t>(good.begin(), good.begin() + 6), from);
            Send(answer(ackCode, static_cast<std::uint16_t>(id + 7), {0, 0, 0, 0}), from);
            Send(answer(gvcp::WRITEREG_ACK, id, {0, 0, 0, 1}), from);
            std::vector<std::uint8_t> past = good;
            past[4] = 0x10; // a payload length past the datagram's end
            Send(past, from);
        } else if (code == gvcp::READREG_CMD) {
            Send(answer(gvcp::READREG_ACK, id, {0, 0, 0, 0}), from);
        }
    }

    // Late answers whose time has come, and the next PENDING_ACK of every read held.
    void SendDue()
    {
        const Clock::time_point now = Clock::now();
        for (auto late = m_late.begin(); late != m_late.end();) {
            if (late->due > now) {
                ++late;
                continue;
            }
            Send(late->data, late->to);
            late = m_late.erase(late);
        }
        for (SDue& pending : m_pending) {
            if (pending.due <= now) {
                Send(pending.data, pending.to);
                pending.due = now + PendingEvery;
            }
        }
    }

    struct SDue {
        Clock::time_point due;
        std::vector<std::uint8_t> data;
        sockaddr_in to;
    };

    std::string m_mode;
    long m_number = 0;
    int m_socket = -1;
    std::vector<SDue> m_late;
    std::vector<SDue> m_pending;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: hostile-gvcp MODE [NUMBER]\n");
        return 2;
    }
    if (!inTestNamespace()) {
        std::fprintf(stderr, "hostile-gvcp: runs only in a network namespace a test made\n");
        return 2;
    }
    CResponder responder(argv[1], argc == 3 ? std::atol(argv[2]) : 0);
    if (!responder.Listen()) {
        std::perror("hostile-gvcp");
        return 1;
    }
    std::printf("ready\n");
    std::fflush(stdout);
    return responder.Run();
}
