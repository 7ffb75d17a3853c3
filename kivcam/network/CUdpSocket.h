// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/kivcam_export.h>
#include <kivcam/network/SNetworkAdapter.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <stop_token>
#include <vector>

namespace kiv::cam {

// A UDP socket over IPv4 tied to one network adapter, whose waits end early when a stop is
// requested. The network transports' only direct use of the system's sockets.
//
// The socket is bound to the adapter itself where the system allows it (SO_BINDTODEVICE), so
// that what it sends leaves through that adapter only and it also receives answers broadcast on
// it; elsewhere it is bound to the adapter's address. It may send broadcasts.
class KIVCAM_EXPORT CUdpSocket {
public:
    enum EReceive {
        RECEIVED,
        TIMED_OUT,
        STOPPED,
        FAILED,
    };

    CUdpSocket() = default;
    ~CUdpSocket();
    CUdpSocket(const CUdpSocket&) = delete;
    CUdpSocket& operator=(const CUdpSocket&) = delete;

    // Opens the socket on an ephemeral port of the adapter; false, with the reason in error,
    // when the system refuses. An open socket is closed first.
    bool Open(const SNetworkAdapter& adapter, CString& error);
    void Close();
    bool isOpen() const { return m_socket >= 0; }
    // The local port, in host byte order; 0 when closed.
    std::uint16_t port() const;

    // Sends one datagram to address and port (host byte order); false when the system refuses.
    bool SendTo(std::uint32_t address, std::uint16_t port, const std::vector<std::uint8_t>& data);
    // Waits until deadline for one datagram and gives it with its sender. Gives STOPPED as soon
    // as stop is requested, before or during the wait.
    EReceive Receive(std::vector<std::uint8_t>& datagram, std::uint32_t& fromAddress,
        std::uint16_t& fromPort, std::chrono::steady_clock::time_point deadline,
        const std::stop_token& stop);

private:
    int m_socket = -1;
    int m_wake = -1; // an eventfd that a stop request makes readable
};

} // namespace kiv::cam
