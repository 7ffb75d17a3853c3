#include "CGvcpChannel.h"

#include "Gvcp.h"

#include <algorithm>

namespace kiv::cam {

namespace {

constexpr int MaxPending = 4;

} // namespace

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
    std::vector<std::uint8_t> payload;
    const EResult result
        = Transact(gvcp::ReadRegisterCommand(0, address), gvcp::READREG_ACK, payload, status, stop);
    if (result != OK)
        return result;
    if (payload.size() < 4)
        return FAILED;
    value = gvcp::ReadUInt32(payload.data());
    return OK;
}

CGvcpChannel::EResult CGvcpChannel::WriteRegister(
    std::uint32_t address, std::uint32_t value, std::uint16_t& status, const std::stop_token& stop)
{
    std::vector<std::uint8_t> payload;
    return Transact(
        gvcp::WriteRegisterCommand(0, address, value), gvcp::WRITEREG_ACK, payload, status, stop);
}

CGvcpChannel::EResult CGvcpChannel::ReadMemory(std::uint32_t address, std::uint16_t size,
    std::vector<std::uint8_t>& data, std::uint16_t& status, const std::stop_token& stop)
{
    if (size % 4 || size > gvcp::MaxReadMemory)
        return FAILED;
    std::vector<std::uint8_t> payload;
    const EResult result = Transact(
        gvcp::ReadMemoryCommand(0, address, size), gvcp::READMEM_ACK, payload, status, stop);
    if (result != OK)
        return result;
    // The answer repeats the address before the data.
    if (payload.size() < 4u + size)
        return FAILED;
    data.assign(payload.begin() + 4, payload.begin() + 4 + size);
    return OK;
}

CGvcpChannel::EResult CGvcpChannel::Transact(std::vector<std::uint8_t> command,
    std::uint16_t ackCommand, std::vector<std::uint8_t>& payload, std::uint16_t& status,
    const std::stop_token& stop)
{
    std::lock_guard lock(m_mutex);
    status = 0;
    if (!m_socket.isOpen())
        return FAILED;
    // Identifiers run from 1 and skip 0; a repeated attempt keeps its command's identifier.
    const std::uint16_t id = m_nextId;
    m_nextId = static_cast<std::uint16_t>(m_nextId == 0xFFFF ? 1 : m_nextId + 1);
    command[6] = static_cast<std::uint8_t>(id >> 8);
    command[7] = static_cast<std::uint8_t>(id);
    std::vector<std::uint8_t> datagram;
    for (int attempt = 0; attempt < Attempts; ++attempt) {
        if (!m_socket.SendTo(m_address, gvcp::Port, command))
            return FAILED;
        auto deadline = std::chrono::steady_clock::now() + AnswerWait;
        int pending = 0;
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
            gvcp::SAck ack;
            if (from != m_address || !gvcp::ParseAck(datagram, ack) || ack.id != id)
                continue; // a late answer to an earlier command, or a stranger
            if (ack.command == gvcp::PENDING_ACK && ack.payloadSize >= 4) {
                // The camera needs longer and says how much; a camera that keeps asking for
                // more is given up on after a few times.
                if (++pending > MaxPending)
                    break;
                const int more = std::min((ack.payload[2] << 8) | ack.payload[3], 5000);
                deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(more)
                    + AnswerWait;
                continue;
            }
            if (ack.command != ackCommand)
                continue;
            status = ack.status;
            payload.assign(ack.payload, ack.payload + ack.payloadSize);
            return ack.status == gvcp::STATUS_SUCCESS ? OK : REFUSED;
        }
    }
    return NO_ANSWER;
}

} // namespace kiv::cam
