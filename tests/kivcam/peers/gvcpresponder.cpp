// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// A test peer: a minimal GigE Vision camera of the test's own, for the far side of a veth pair
// in a network namespace of its own. It takes the adapter the test moves into its namespace,
// gives it an address, and answers discovery, register reads and writes, and FORCEIP, which
// gives the adapter the new address. A sender outside its subnet gets broadcast answers, as a
// camera on the wrong subnet would send them.
//
//   gvcp-responder ADAPTER ADDRESS/PREFIX MAC SERIAL
//
// Prints "ready" once it listens; ends when standard input closes. Run it only in a network
// namespace the test made.

#include <kivcam/gige/Gvcp.h>

#include <algorithm>
#include <arpa/inet.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ;

using namespace kiv::cam;

namespace {

struct SState {
    std::string adapter;
    std::uint32_t address = 0;
    std::uint32_t netmask = 0;
    std::uint64_t mac = 0;
    std::string serial;
};

bool run(std::vector<std::string> arguments)
{
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_t child = 0;
    int status = 0;
    return ::posix_spawnp(&child, argv[0], nullptr, nullptr, argv.data(), environ) == 0
        && ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string text(std::uint32_t address)
{
    in_addr network{htonl(address)};
    return inet_ntoa(network);
}

int prefixOf(std::uint32_t netmask)
{
    return __builtin_popcount(netmask);
}

bool setAddress(const SState& state)
{
    return run({"ip", "addr", "flush", "dev", state.adapter})
        && run({"ip", "addr", "add",
            text(state.address) + "/" + std::to_string(prefixOf(state.netmask)), "dev",
            state.adapter});
}

void put32(std::vector<std::uint8_t>& out, std::size_t at, std::uint32_t value)
{
    out[at] = static_cast<std::uint8_t>(value >> 24);
    out[at + 1] = static_cast<std::uint8_t>(value >> 16);
    out[at + 2] = static_cast<std::uint8_t>(value >> 8);
    out[at + 3] = static_cast<std::uint8_t>(value);
}

std::vector<std::uint8_t> ack(
    std::uint16_t command, std::uint16_t id, std::vector<std::uint8_t> payload)
{
    std::vector<std::uint8_t> out(gvcp::HeaderSize);
    out[2] = static_cast<std::uint8_t>(command >> 8);
    out[3] = static_cast<std::uint8_t>(command);
    out[4] = static_cast<std::uint8_t>(payload.size() >> 8);
    out[5] = static_cast<std::uint8_t>(payload.size());
    out[6] = static_cast<std::uint8_t>(id >> 8);
    out[7] = static_cast<std::uint8_t>(id);
    out.insert(out.end(), payload.begin(), payload.end());
    return out;
}

std::vector<std::uint8_t> discoveryAck(const SState& state, std::uint16_t id)
{
    std::vector<std::uint8_t> payload(gvcp::DiscoveryAckSize);
    payload[1] = 2; // version 2.0
    payload[0x0A] = static_cast<std::uint8_t>(state.mac >> 40);
    payload[0x0B] = static_cast<std::uint8_t>(state.mac >> 32);
    put32(payload, 0x0C, static_cast<std::uint32_t>(state.mac));
    put32(payload, 0x24, state.address);
    put32(payload, 0x34, state.netmask);
    std::memcpy(&payload[0x48], "Test Peers", 10);
    std::memcpy(&payload[0x68], "Responder", 9);
    std::memcpy(
        &payload[0xD8], state.serial.data(), std::min<std::size_t>(state.serial.size(), 15));
    return ack(gvcp::DISCOVERY_ACK, id, payload);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fprintf(stderr, "usage: gvcp-responder ADAPTER ADDRESS/PREFIX MAC SERIAL\n");
        return 2;
    }
    SState state;
    state.adapter = argv[1];
    const std::string cidr = argv[2];
    const std::string::size_type slash = cidr.find('/');
    in_addr parsed{};
    if (slash == std::string::npos
        || inet_pton(AF_INET, cidr.substr(0, slash).c_str(), &parsed) != 1)
        return 2;
    state.address = ntohl(parsed.s_addr);
    const int prefix = std::atoi(cidr.c_str() + slash + 1);
    state.netmask = prefix ? ~std::uint32_t{0} << (32 - prefix) : 0;
    state.mac = std::strtoull(argv[3], nullptr, 16);
    state.serial = argv[4];

    // The test moves the adapter in after starting this program.
    for (int wait = 0; !if_nametoindex(state.adapter.c_str()); ++wait) {
        if (wait == 1000)
            return 1;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    if (!run({"ip", "link", "set", "lo", "up"}) || !setAddress(state)
        || !run({"ip", "link", "set", state.adapter, "up"}))
        return 1;

    const int socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    // A link just set up drops what is sent until the system has attached it.
    for (int wait = 0;; ++wait) {
        ifreq request{};
        std::strncpy(request.ifr_name, state.adapter.c_str(), IFNAMSIZ - 1);
        if (::ioctl(socket, SIOCGIFFLAGS, &request) == 0 && (request.ifr_flags & IFF_RUNNING))
            break;
        if (wait == 1000)
            return 1;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
    ::setsockopt(socket, SOL_SOCKET, SO_BINDTODEVICE, state.adapter.data(),
        static_cast<socklen_t>(state.adapter.size()));
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_port = htons(gvcp::Port);
    if (::bind(socket, reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0)
        return 1;
    std::printf("ready\n");
    std::fflush(stdout);

    std::vector<std::uint8_t> datagram(2048);
    for (;;) {
        pollfd waits[2] = {{socket, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        if (::poll(waits, 2, -1) < 0)
            return 1;
        if (waits[1].revents) {
            char byte = 0;
            if (::read(STDIN_FILENO, &byte, 1) <= 0)
                return 0;
        }
        if (!(waits[0].revents & POLLIN))
            continue;
        sockaddr_in from{};
        socklen_t size = sizeof from;
        const ssize_t received = ::recvfrom(
            socket, datagram.data(), datagram.size(), 0, reinterpret_cast<sockaddr*>(&from), &size);
        if (received < static_cast<ssize_t>(gvcp::HeaderSize) || datagram[0] != 0x42)
            continue;
        const std::uint16_t command = static_cast<std::uint16_t>((datagram[2] << 8) | datagram[3]);
        const std::uint16_t id = static_cast<std::uint16_t>((datagram[6] << 8) | datagram[7]);
        std::vector<std::uint8_t> answer;
        if (command == gvcp::DISCOVERY_CMD) {
            answer = discoveryAck(state, id);
        } else if (command == gvcp::READREG_CMD) {
            answer = ack(gvcp::READREG_ACK, id, std::vector<std::uint8_t>(4));
        } else if (command == gvcp::WRITEREG_CMD) {
            answer = ack(gvcp::WRITEREG_ACK, id, {0, 0, 0, 1});
        } else if (command == gvcp::FORCEIP_CMD
            && received >= static_cast<ssize_t>(gvcp::HeaderSize + 0x38)) {
            const std::uint8_t* p = datagram.data() + gvcp::HeaderSize;
            const std::uint64_t mac
                = (std::uint64_t{gvcp::ReadUInt32(p) & 0xFFFF} << 32) | gvcp::ReadUInt32(p + 4);
            if (mac != state.mac)
                continue;
            state.address = gvcp::ReadUInt32(p + 0x14);
            state.netmask = gvcp::ReadUInt32(p + 0x24);
            if (!setAddress(state))
                return 1;
            answer = ack(gvcp::FORCEIP_ACK, id, {});
        } else {
            continue;
        }
        // A sender this camera cannot reach gets its answer broadcast.
        sockaddr_in to = from;
        const std::uint32_t sender = ntohl(from.sin_addr.s_addr);
        if ((sender & state.netmask) != (state.address & state.netmask))
            to.sin_addr.s_addr = htonl(INADDR_BROADCAST);
        ::sendto(socket, answer.data(), answer.size(), 0, reinterpret_cast<const sockaddr*>(&to),
            sizeof to);
    }
}
