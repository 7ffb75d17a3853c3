// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGvcpChannel.h"

#include <algorithm>

namespace kiv::cam {

bool CGvcpChannel::Open(const SNetworkAdapter& adapter, std::uint32_t address, CString& error)
{
    std::lock_guard lock(m_mutex);
    m_address = address;
    return m_socket.Open(adapter, error);
}

void CGvcpChannel::Close()
{
    std::lock_guard lock(m_mutex);
    m_socket.Close();
}

CGvcpChannel::EResult CGvcpChannel::ReadRegister(
    std::uint32_t address, std::uint32_t& value, std::uint16_t& status, const std::stop_token& stop)
{
    std::vector<std::uint8_t> datagram;
    gvcp::SAck ack;
    const EResult result = Transact(
        gvcp::ReadRegisterCommand(0, address), gvcp::READREG_ACK, datagram, ack, status, stop);
    if (result != OK)
        return result;
    return gvcp::ReadRegisterAck(ack, value) ? OK : GARBLED;
}

CGvcpChannel::EResult CGvcpChannel::WriteRegister(
    std::uint32_t address, std::uint32_t value, std::uint16_t& status, const std::stop_token& stop)
{
    std::vector<std::uint8_t> datagram;
    gvcp::SAck ack;
    return Transact(gvcp::WriteRegisterCommand(0, address, value), gvcp::WRITEREG_ACK, datagram,
        ack, status, stop);
}

CGvcpChannel::EResult CGvcpChannel::ReadMemory(std::uint32_t address, std::uint16_t size,
    std::vector<std::uint8_t>& data, std::uint16_t& status, const std::stop_token& stop)
{
    if (size % 4 || size > gvcp::MaxReadMemory)
        return FAILED;
    std::vector<std::uint8_t> datagram;
    gvcp::SAck ack;
    const EResult result = Transact(
        gvcp::ReadMemoryCommand(0, address, size), gvcp::READMEM_ACK, datagram, ack, status, stop);
    if (result != OK)
        return result;
    return gvcp::ReadMemoryAck(ack, address, size, data) ? OK : GARBLED;
}

CGvcpChannel::EResult CGvcpChannel::Transact(std::vector<std::uint8_t> command,
    std::uint16_t ackCommand, std::vector<std::uint8_t>& datagram, gvcp::SAck& ack,
    std::uint16_t& status, const std::stop_token& stop)
{
    using std::chrono::steady_clock;
    std::lock_guard lock(m_mutex);
    status = 0;
    if (!m_socket.isOpen())
        return FAILED;
    // Identifiers run from 1 and skip 0; a repeated attempt keeps its command's identifier.
    const std::uint16_t id = m_nextId;
    m_nextId = static_cast<std::uint16_t>(m_nextId == 0xFFFF ? 1 : m_nextId + 1);
    command[6] = static_cast<std::uint8_t>(id >> 8);
    command[7] = static_cast<std::uint8_t>(id);
    const steady_clock::time_point end = steady_clock::now() + LongestWait;
    bool pending = false; // the camera asked for more time
    bool garbled = false; // the camera sent something that was no answer to this command
    for (int attempt = 0; attempt < Attempts && steady_clock::now() < end; ++attempt) {
        if (!m_socket.SendTo(m_address, gvcp::Port, command))
            return FAILED;
        steady_clock::time_point deadline = std::min(steady_clock::now() + AnswerWait, end);
        for (;;) {
            std::uint32_t from = 0;
            std::uint16_t fromPort = 0;
            const CUdpSocket::EReceive received
                = m_socket.Receive(datagram, from, fromPort, deadline, stop);
            if (received == CUdpSocket::STOPPED)
                return STOPPED;
            if (received == CUdpSocket::FAILED)
                return FAILED;
            if (received == CUdpSocket::TIMED_OUT)
                break;
            if (from != m_address)
                continue; // a stranger
            std::uint32_t more = 0;
            const gvcp::EAnswer answer = gvcp::ReadAnswer(datagram, id, ackCommand, ack, more);
            if (answer == gvcp::ANSWER_FINAL) {
                status = ack.status;
                return ack.status == gvcp::STATUS_SUCCESS ? OK : REFUSED;
            }
            if (answer == gvcp::ANSWER_PENDING) {
                // The camera needs longer and says how much, within LongestWait in all.
                pending = true;
                deadline = std::min(
                    steady_clock::now() + std::chrono::milliseconds(more) + AnswerWait, end);
            } else {
                garbled = true;
            }
        }
    }
    return pending ? STALLED : garbled ? GARBLED : NO_ANSWER;
}

} // namespace kiv::cam
