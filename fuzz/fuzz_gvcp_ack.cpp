// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// libFuzzer target: any datagram that reaches a GigE Vision socket of the camera library, read
// as discovery and the control channel read it: gvcp::ParseAck, then by command the discovery
// answer, a register read's value, a memory read's data and a PENDING_ACK's time, with
// gvcp::ReadAnswer as CGvcpChannel takes each datagram. Nothing may read past the datagram, and
// every text taken from it must be printable ASCII.

#include <kivcam/gige/Gvcp.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

using namespace kiv::cam;

namespace {

void checkText(const kiv::CString& text)
{
    for (const char c : text.view()) {
        if (c < 0x20 || c > 0x7E)
            std::abort();
    }
}

void readDiscovery(const gvcp::SAck& ack)
{
    gvcp::SDiscoveryAck device;
    if (!gvcp::ParseDiscoveryAck(ack, device))
        return;
    for (const kiv::CString* text : {&device.manufacturer, &device.model, &device.deviceVersion,
             &device.manufacturerInfo, &device.serial, &device.userName})
        checkText(*text);
    std::uint64_t mac = 0;
    if (device.mac >> 48 || !gvcp::ParseMac(gvcp::MacText(device.mac), mac) || mac != device.mac)
        std::abort();
}

void readMemory(const gvcp::SAck& ack)
{
    if (ack.payloadSize < 4)
        return;
    // The address the answer names, and every size a read of it may have asked for.
    const std::uint32_t address = gvcp::ReadUInt32(ack.payload);
    std::vector<std::uint8_t> data;
    for (const std::uint16_t size :
        {std::uint16_t{4}, std::uint16_t{32}, gvcp::FirstUrlSize, gvcp::MaxReadMemory}) {
        if (!gvcp::ReadMemoryAck(ack, address, size, data))
            continue;
        if (data.size() != size)
            std::abort();
        checkText(gvcp::ReadText(data.data(), data.size()));
    }
    if (gvcp::ReadMemoryAck(ack, address + 4, 4, data))
        std::abort(); // an answer naming another address is not the answer
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // A copy of exactly the datagram's size, so that a read past its end is caught.
    const std::vector<std::uint8_t> datagram(data, data + size);
    gvcp::SAck ack;
    if (!gvcp::ParseAck(datagram, ack)) {
        std::uint32_t more = 0;
        if (gvcp::ReadAnswer(datagram, 1, gvcp::READREG_ACK, ack, more) != gvcp::ANSWER_NONE)
            std::abort();
        return 0;
    }
    if (ack.payload != datagram.data() + gvcp::HeaderSize
        || ack.payloadSize > datagram.size() - gvcp::HeaderSize)
        std::abort();
    checkText(gvcp::StatusText(ack.status));
    // The whole payload as text, as far as a text field may reach.
    checkText(gvcp::ReadText(ack.payload, std::min<std::size_t>(ack.payloadSize, 512)));

    // CGvcpChannel's reading, for the identifier the datagram has and one it has not.
    for (const std::uint16_t ackCommand :
        {gvcp::READREG_ACK, gvcp::WRITEREG_ACK, gvcp::READMEM_ACK}) {
        for (const std::uint16_t id : {ack.id, static_cast<std::uint16_t>(ack.id + 1)}) {
            gvcp::SAck answer;
            std::uint32_t more = 0;
            const gvcp::EAnswer kind = gvcp::ReadAnswer(datagram, id, ackCommand, answer, more);
            if ((kind == gvcp::ANSWER_FINAL && (answer.command != ackCommand || answer.id != id))
                || (kind == gvcp::ANSWER_PENDING && (more > 0xFFFF || answer.id != id))
                || kind == gvcp::ANSWER_NONE)
                std::abort();
            if (kind != gvcp::ANSWER_FINAL)
                continue;
            std::uint32_t value = 0;
            if (ackCommand == gvcp::READREG_ACK && gvcp::ReadRegisterAck(answer, value)
                && value != gvcp::ReadUInt32(answer.payload))
                std::abort();
            if (ackCommand == gvcp::READMEM_ACK)
                readMemory(answer);
        }
    }
    // Discovery's reading.
    if (ack.command == gvcp::DISCOVERY_ACK)
        readDiscovery(ack);
    return 0;
}
