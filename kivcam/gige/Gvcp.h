// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/kivcam_export.h>

#include <cstddef>
#include <cstdint>
#include <vector>

// The parts of the GigE Vision Control Protocol (GVCP) that discovery and control use: packet
// layouts, command codes, status codes and bootstrap registers. All numbers on the wire are big
// endian; everything here takes and gives host byte order.
namespace kiv::cam::gvcp {

constexpr std::uint16_t Port = 3956;

enum ECommand : std::uint16_t {
    DISCOVERY_CMD = 0x0002,
    DISCOVERY_ACK = 0x0003,
    FORCEIP_CMD = 0x0004,
    FORCEIP_ACK = 0x0005,
    READREG_CMD = 0x0080,
    READREG_ACK = 0x0081,
    WRITEREG_CMD = 0x0082,
    WRITEREG_ACK = 0x0083,
    READMEM_CMD = 0x0084,
    READMEM_ACK = 0x0085,
    PENDING_ACK = 0x0089,
};

// Flags of a command's header.
enum EFlags : std::uint8_t {
    FLAG_ACK_REQUIRED = 0x01,
    // Discovery: a device on another subnet may broadcast its answer.
    FLAG_ALLOW_BROADCAST_ACK = 0x10,
};

enum EStatus : std::uint16_t {
    STATUS_SUCCESS = 0x0000,
    STATUS_NOT_IMPLEMENTED = 0x8001,
    STATUS_INVALID_PARAMETER = 0x8002,
    STATUS_INVALID_ADDRESS = 0x8003,
    STATUS_WRITE_PROTECT = 0x8004,
    STATUS_BAD_ALIGNMENT = 0x8005,
    STATUS_ACCESS_DENIED = 0x8006,
    STATUS_BUSY = 0x8007,
};

// Bootstrap registers.
enum ERegister : std::uint32_t {
    REG_MAC_HIGH = 0x0008,
    REG_MAC_LOW = 0x000C,
    REG_CURRENT_IP = 0x0024,
    REG_MODEL_NAME = 0x0068, // 32 bytes of text
    REG_FIRST_URL = 0x0200, // 512 bytes of text: where the camera's GenICam file is
    REG_HEARTBEAT_TIMEOUT = 0x0938, // milliseconds
    REG_CONTROL_CHANNEL_PRIVILEGE = 0x0A00,
};

// Bits of the control channel privilege register.
enum EPrivilege : std::uint32_t {
    PRIVILEGE_EXCLUSIVE = 0x1, // one application controls, no other may even read
    PRIVILEGE_CONTROL = 0x2, // one application controls, others may read
};

constexpr std::size_t HeaderSize = 8;
constexpr std::size_t DiscoveryAckSize = 0xF8;
// The largest block READMEM may ask for.
constexpr std::uint16_t MaxReadMemory = 536;
constexpr std::uint16_t FirstUrlSize = 512;

// The header of an answer, and its payload within the datagram it was read from.
struct SAck {
    std::uint16_t status = 0;
    std::uint16_t command = 0;
    std::uint16_t id = 0;
    const std::uint8_t* payload = nullptr;
    std::size_t payloadSize = 0;
};

// What a device tells of itself in its discovery answer.
struct SDiscoveryAck {
    std::uint16_t versionMajor = 0;
    std::uint16_t versionMinor = 0;
    std::uint32_t deviceMode = 0;
    std::uint64_t mac = 0; // 48 bits
    std::uint32_t ipConfigOptions = 0;
    std::uint32_t ipConfigCurrent = 0;
    std::uint32_t address = 0;
    std::uint32_t netmask = 0;
    std::uint32_t gateway = 0;
    CString manufacturer;
    CString model;
    CString deviceVersion;
    CString manufacturerInfo;
    CString serial;
    CString userName;
};

// A command datagram.
KIVCAM_EXPORT std::vector<std::uint8_t> Command(std::uint16_t command, std::uint16_t id,
    std::uint8_t flags, const std::vector<std::uint8_t>& payload = {});
KIVCAM_EXPORT std::vector<std::uint8_t> ReadRegisterCommand(
    std::uint16_t id, std::uint32_t address);
KIVCAM_EXPORT std::vector<std::uint8_t> WriteRegisterCommand(
    std::uint16_t id, std::uint32_t address, std::uint32_t value);
KIVCAM_EXPORT std::vector<std::uint8_t> ReadMemoryCommand(
    std::uint16_t id, std::uint32_t address, std::uint16_t size);
KIVCAM_EXPORT std::vector<std::uint8_t> ForceIpCommand(std::uint16_t id, std::uint64_t mac,
    std::uint32_t address, std::uint32_t netmask, std::uint32_t gateway);

// Reads the header of an answer; false for anything shorter than a header or whose payload
// length runs past the datagram.
KIVCAM_EXPORT bool ParseAck(const std::vector<std::uint8_t>& datagram, SAck& ack);
// Reads a discovery answer's payload; false when it is too short.
KIVCAM_EXPORT bool ParseDiscoveryAck(const SAck& ack, SDiscoveryAck& device);

// What one datagram from the camera is to a command waiting for its answer.
enum EAnswer {
    ANSWER_NONE, // not an answer: shorter than a header, or its payload runs past the datagram
    ANSWER_OTHER, // an answer to another command: another identifier or command code
    ANSWER_PENDING, // the camera needs more time, as long as the PENDING_ACK asks for
    ANSWER_FINAL, // the answer to the command, whatever its status
};
// Takes one datagram for the command of that identifier, which waits for an answer of the
// command code ackCommand; ack is filled in for ANSWER_OTHER, ANSWER_PENDING and ANSWER_FINAL,
// and pendingMs (the time the camera asks for) for ANSWER_PENDING.
KIVCAM_EXPORT EAnswer ReadAnswer(const std::vector<std::uint8_t>& datagram, std::uint16_t id,
    std::uint16_t ackCommand, SAck& ack, std::uint32_t& pendingMs);
// The value of a register read's successful answer; false when the payload has none.
KIVCAM_EXPORT bool ReadRegisterAck(const SAck& ack, std::uint32_t& value);
// The size bytes at address of a memory read's successful answer; false when the answer names
// another address or holds fewer bytes.
KIVCAM_EXPORT bool ReadMemoryAck(
    const SAck& ack, std::uint32_t address, std::uint16_t size, std::vector<std::uint8_t>& data);

KIVCAM_EXPORT std::uint32_t ReadUInt32(const std::uint8_t* data);
// Text of a fixed-size field: up to its first zero byte; bytes outside printable ASCII become '?'.
KIVCAM_EXPORT CString ReadText(const std::uint8_t* data, std::size_t size);

// "00:11:22:33:44:55", and back (either case, ':' or '-' between the bytes).
KIVCAM_EXPORT CString MacText(std::uint64_t mac);
KIVCAM_EXPORT bool ParseMac(const CString& text, std::uint64_t& mac);
// The status's name, for messages ("access denied"); its number for one without a name.
KIVCAM_EXPORT CString StatusText(std::uint16_t status);

} // namespace kiv::cam::gvcp
