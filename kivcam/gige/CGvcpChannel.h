// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/gige/Gvcp.h>
#include <kivcam/kivcam_export.h>
#include <kivcam/network/CUdpSocket.h>
#include <kivcam/network/SNetworkAdapter.h>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <stop_token>
#include <vector>

namespace kiv::cam {

// The control channel to one GigE Vision camera: register and memory reads and writes, each a
// command that waits for the camera's answer. Safe to use from several threads; their commands
// take turns.
class KIVCAM_EXPORT CGvcpChannel {
public:
    enum EResult {
        OK, // answered with success
        REFUSED, // answered with an error status
        NO_ANSWER, // no answer after every attempt
        GARBLED, // answers, but none a valid one to the command: cut short, of another command
        STALLED, // the camera kept asking for more time (PENDING_ACK) until LongestWait
        STOPPED,
        FAILED, // the channel is closed or the system refused to send
    };

    // How long one attempt waits for its answer, and how many attempts a command makes.
    static constexpr std::chrono::milliseconds AnswerWait{200};
    static constexpr int Attempts = 3;
    // The longest one command waits in all, however often the camera asks for more time: a
    // camera that keeps sending PENDING_ACK, busy, broken or hostile, must not hold its caller
    // for ever. Far above what the commands of this channel take on a working camera.
    static constexpr std::chrono::milliseconds LongestWait{3000};

    // Opens the channel to the camera at address through the adapter.
    bool Open(const SNetworkAdapter& adapter, std::uint32_t address, CString& error);
    void Close();
    std::uint32_t address() const { return m_address; }

    // Each gives OK and its result, or what went wrong; status is the camera's answer status
    // (0 without an answer).
    EResult ReadRegister(std::uint32_t address, std::uint32_t& value, std::uint16_t& status,
        const std::stop_token& stop = {});
    EResult WriteRegister(std::uint32_t address, std::uint32_t value, std::uint16_t& status,
        const std::stop_token& stop = {});
    // Reads size bytes (a multiple of 4, at most gvcp::MaxReadMemory).
    EResult ReadMemory(std::uint32_t address, std::uint16_t size, std::vector<std::uint8_t>& data,
        std::uint16_t& status, const std::stop_token& stop = {});

private:
    // Sends the command and waits for its answer, which ack describes (within datagram).
    EResult Transact(std::vector<std::uint8_t> command, std::uint16_t ackCommand,
        std::vector<std::uint8_t>& datagram, gvcp::SAck& ack, std::uint16_t& status,
        const std::stop_token& stop);

    std::mutex m_mutex;
    CUdpSocket m_socket;
    std::uint32_t m_address = 0;
    std::uint16_t m_nextId = 1;
};

} // namespace kiv::cam
