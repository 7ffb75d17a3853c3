// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "Gvcp.h"

#include <kiv/strprintf.h>

#include <cctype>

namespace kiv::cam::gvcp {

namespace {

// The key byte that starts every command.
constexpr std::uint8_t CommandKey = 0x42;

void put16(std::vector<std::uint8_t>& out, std::size_t at, std::uint16_t value)
{
    out[at] = static_cast<std::uint8_t>(value >> 8);
    out[at + 1] = static_cast<std::uint8_t>(value);
}

void put32(std::vector<std::uint8_t>& out, std::size_t at, std::uint32_t value)
{
    put16(out, at, static_cast<std::uint16_t>(value >> 16));
    put16(out, at + 2, static_cast<std::uint16_t>(value));
}

std::uint16_t read16(const std::uint8_t* data)
{
    return static_cast<std::uint16_t>((data[0] << 8) | data[1]);
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

} // namespace

std::vector<std::uint8_t> Command(std::uint16_t command, std::uint16_t id, std::uint8_t flags,
    const std::vector<std::uint8_t>& payload)
{
    std::vector<std::uint8_t> out(HeaderSize);
    out[0] = CommandKey;
    out[1] = flags;
    put16(out, 2, command);
    put16(out, 4, static_cast<std::uint16_t>(payload.size()));
    put16(out, 6, id);
    out.insert(out.end(), payload.begin(), payload.end());
    return out;
}

std::vector<std::uint8_t> ReadRegisterCommand(std::uint16_t id, std::uint32_t address)
{
    std::vector<std::uint8_t> payload(4);
    put32(payload, 0, address);
    return Command(READREG_CMD, id, FLAG_ACK_REQUIRED, payload);
}

std::vector<std::uint8_t> WriteRegisterCommand(
    std::uint16_t id, std::uint32_t address, std::uint32_t value)
{
    std::vector<std::uint8_t> payload(8);
    put32(payload, 0, address);
    put32(payload, 4, value);
    return Command(WRITEREG_CMD, id, FLAG_ACK_REQUIRED, payload);
}

std::vector<std::uint8_t> ReadMemoryCommand(
    std::uint16_t id, std::uint32_t address, std::uint16_t size)
{
    std::vector<std::uint8_t> payload(8);
    put32(payload, 0, address);
    put16(payload, 6, size);
    return Command(READMEM_CMD, id, FLAG_ACK_REQUIRED, payload);
}

std::vector<std::uint8_t> ForceIpCommand(std::uint16_t id, std::uint64_t mac, std::uint32_t address,
    std::uint32_t netmask, std::uint32_t gateway)
{
    std::vector<std::uint8_t> payload(0x38);
    put16(payload, 0x02, static_cast<std::uint16_t>(mac >> 32));
    put32(payload, 0x04, static_cast<std::uint32_t>(mac));
    put32(payload, 0x14, address);
    put32(payload, 0x24, netmask);
    put32(payload, 0x34, gateway);
    return Command(FORCEIP_CMD, id, FLAG_ACK_REQUIRED | FLAG_ALLOW_BROADCAST_ACK, payload);
}

bool ParseAck(const std::vector<std::uint8_t>& datagram, SAck& ack)
{
    if (datagram.size() < HeaderSize)
        return false;
    const std::size_t length = read16(&datagram[4]);
    if (HeaderSize + length > datagram.size())
        return false;
    ack.status = read16(&datagram[0]);
    ack.command = read16(&datagram[2]);
    ack.id = read16(&datagram[6]);
    ack.payload = datagram.data() + HeaderSize;
    ack.payloadSize = length;
    return true;
}

bool ParseDiscoveryAck(const SAck& ack, SDiscoveryAck& device)
{
    if (ack.command != DISCOVERY_ACK || ack.payloadSize < DiscoveryAckSize)
        return false;
    const std::uint8_t* p = ack.payload;
    device.versionMajor = read16(p);
    device.versionMinor = read16(p + 0x02);
    device.deviceMode = ReadUInt32(p + 0x04);
    device.mac = (std::uint64_t{read16(p + 0x0A)} << 32) | ReadUInt32(p + 0x0C);
    device.ipConfigOptions = ReadUInt32(p + 0x10);
    device.ipConfigCurrent = ReadUInt32(p + 0x14);
    device.address = ReadUInt32(p + 0x24);
    device.netmask = ReadUInt32(p + 0x34);
    device.gateway = ReadUInt32(p + 0x44);
    device.manufacturer = ReadText(p + 0x48, 32);
    device.model = ReadText(p + 0x68, 32);
    device.deviceVersion = ReadText(p + 0x88, 32);
    device.manufacturerInfo = ReadText(p + 0xA8, 48);
    device.serial = ReadText(p + 0xD8, 16);
    device.userName = ReadText(p + 0xE8, 16);
    return true;
}

EAnswer ReadAnswer(const std::vector<std::uint8_t>& datagram, std::uint16_t id,
    std::uint16_t ackCommand, SAck& ack, std::uint32_t& pendingMs)
{
    if (!ParseAck(datagram, ack))
        return ANSWER_NONE;
    if (ack.id != id)
        return ANSWER_OTHER; // a late answer to an earlier command, or a stranger
    // PENDING_ACK: two reserved bytes, then the milliseconds the camera asks for.
    if (ack.command == PENDING_ACK && ack.payloadSize >= 4) {
        pendingMs = read16(ack.payload + 2);
        return ANSWER_PENDING;
    }
    return ack.command == ackCommand ? ANSWER_FINAL : ANSWER_OTHER;
}

bool ReadRegisterAck(const SAck& ack, std::uint32_t& value)
{
    if (ack.command != READREG_ACK || ack.status != STATUS_SUCCESS || ack.payloadSize < 4)
        return false;
    value = ReadUInt32(ack.payload);
    return true;
}

bool ReadMemoryAck(
    const SAck& ack, std::uint32_t address, std::uint16_t size, std::vector<std::uint8_t>& data)
{
    // The answer repeats the address before the data.
    if (ack.command != READMEM_ACK || ack.status != STATUS_SUCCESS
        || ack.payloadSize < std::size_t{4} + size || ReadUInt32(ack.payload) != address)
        return false;
    data.assign(ack.payload + 4, ack.payload + 4 + size);
    return true;
}

std::uint32_t ReadUInt32(const std::uint8_t* data)
{
    return (std::uint32_t{read16(data)} << 16) | read16(data + 2);
}

CString ReadText(const std::uint8_t* data, std::size_t size)
{
    std::string text;
    for (std::size_t i = 0; i < size && data[i]; ++i)
        text += data[i] >= 0x20 && data[i] < 0x7F ? static_cast<char>(data[i]) : '?';
    return CString(text);
}

CString MacText(std::uint64_t mac)
{
    return strprintf("%02x:%02x:%02x:%02x:%02x:%02x", static_cast<unsigned>((mac >> 40) & 0xFF),
        static_cast<unsigned>((mac >> 32) & 0xFF), static_cast<unsigned>((mac >> 24) & 0xFF),
        static_cast<unsigned>((mac >> 16) & 0xFF), static_cast<unsigned>((mac >> 8) & 0xFF),
        static_cast<unsigned>(mac & 0xFF));
}

bool ParseMac(const CString& text, std::uint64_t& mac)
{
    const std::string_view digits = text.view();
    if (digits.size() != 17)
        return false;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < digits.size(); i += 3) {
        const int high = hexDigit(digits[i]);
        const int low = hexDigit(digits[i + 1]);
        if (high < 0 || low < 0
            || (i + 2 < digits.size() && digits[i + 2] != ':' && digits[i + 2] != '-'))
            return false;
        value = (value << 8) | static_cast<std::uint64_t>(high * 16 + low);
    }
    mac = value;
    return true;
}

CString StatusText(std::uint16_t status)
{
    switch (status) {
    case STATUS_SUCCESS:
        return "success";
    case STATUS_NOT_IMPLEMENTED:
        return "not implemented";
    case STATUS_INVALID_PARAMETER:
        return "invalid parameter";
    case STATUS_INVALID_ADDRESS:
        return "invalid address";
    case STATUS_WRITE_PROTECT:
        return "write protected";
    case STATUS_BAD_ALIGNMENT:
        return "bad alignment";
    case STATUS_ACCESS_DENIED:
        return "access denied";
    case STATUS_BUSY:
        return "busy";
    default:
        return strprintf("status 0x%04X", static_cast<unsigned>(status));
    }
}

} // namespace kiv::cam::gvcp
