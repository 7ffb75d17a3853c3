// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CUdpSocket.h"

#include <kiv/strprintf.h>

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kiv::cam {

namespace {

CString systemError(const CString& what, int error)
{
    return what + ": " + std::strerror(error);
}

} // namespace

CUdpSocket::~CUdpSocket()
{
    Close();
}

bool CUdpSocket::Open(const SNetworkAdapter& adapter, CString& error)
{
    Close();
    m_socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    m_wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_socket < 0 || m_wake < 0) {
        error = systemError("Cannot make a UDP socket", errno);
        Close();
        return false;
    }
    const int on = 1;
    ::setsockopt(m_socket, SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
    // Bound to the device, the socket takes every datagram for its port that arrives on the
    // adapter, answers broadcast from another subnet included. Systems that keep this to
    // privileged users get a socket bound to the adapter's address instead.
    sockaddr_in local{};
    local.sin_family = AF_INET;
    if (::setsockopt(m_socket, SOL_SOCKET, SO_BINDTODEVICE, adapter.name.data(),
            static_cast<socklen_t>(adapter.name.length()))
        != 0) {
        const int failure = errno;
        if ((failure != EPERM && failure != EACCES) || adapter.addresses.empty()) {
            error = systemError(
                strprintf("Cannot use the adapter \"%s\"", adapter.name.data()), failure);
            Close();
            return false;
        }
        local.sin_addr.s_addr = htonl(adapter.addresses[0].address);
    }
    if (::bind(m_socket, reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0) {
        error = systemError("Cannot bind a UDP socket to the adapter", errno);
        Close();
        return false;
    }
    return true;
}

void CUdpSocket::Close()
{
    if (m_socket >= 0)
        ::close(m_socket);
    if (m_wake >= 0)
        ::close(m_wake);
    m_socket = -1;
    m_wake = -1;
}

std::uint16_t CUdpSocket::port() const
{
    sockaddr_in local{};
    socklen_t size = sizeof local;
    if (m_socket < 0 || ::getsockname(m_socket, reinterpret_cast<sockaddr*>(&local), &size) != 0)
        return 0;
    return ntohs(local.sin_port);
}

bool CUdpSocket::SendTo(
    std::uint32_t address, std::uint16_t port, const std::vector<std::uint8_t>& data)
{
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(address);
    to.sin_port = htons(port);
    return m_socket >= 0
        && ::sendto(m_socket, data.data(), data.size(), 0, reinterpret_cast<const sockaddr*>(&to),
               sizeof to)
        == static_cast<ssize_t>(data.size());
}

CUdpSocket::EReceive CUdpSocket::Receive(std::vector<std::uint8_t>& datagram,
    std::uint32_t& fromAddress, std::uint16_t& fromPort,
    std::chrono::steady_clock::time_point deadline, const std::stop_token& stop)
{
    if (m_socket < 0)
        return FAILED;
    // A wake left over from another wait's stop must not end this one.
    std::uint64_t count = 0;
    if (!stop.stop_requested())
        while (::read(m_wake, &count, sizeof count) > 0) { }
    const int wake = m_wake;
    const std::stop_callback wakeOnStop(stop, [wake] {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = ::write(wake, &one, sizeof one);
    });
    for (;;) {
        if (stop.stop_requested())
            return STOPPED;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return TIMED_OUT;
        pollfd waits[2] = {{m_socket, POLLIN, 0}, {m_wake, POLLIN, 0}};
        const int ready
            = ::poll(waits, 2, static_cast<int>(std::min<long long>(left.count(), 60000)));
        if (ready < 0 && errno != EINTR)
            return FAILED;
        if (ready <= 0 || !(waits[0].revents & POLLIN))
            continue;
        // The largest UDP payload; GVCP datagrams are far smaller, and anything cut off is
        // refused by whoever reads it.
        datagram.resize(65536);
        sockaddr_in from{};
        socklen_t size = sizeof from;
        const ssize_t received = ::recvfrom(m_socket, datagram.data(), datagram.size(),
            MSG_DONTWAIT, reinterpret_cast<sockaddr*>(&from), &size);
        if (received < 0) {
            if (errno == EAGAIN || errno == EINTR || errno == ECONNREFUSED)
                continue;
            return FAILED;
        }
        datagram.resize(static_cast<std::size_t>(received));
        fromAddress = ntohl(from.sin_addr.s_addr);
        fromPort = ntohs(from.sin_port);
        return RECEIVED;
    }
}

} // namespace kiv::cam
