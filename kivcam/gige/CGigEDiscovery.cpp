// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGigEDiscovery.h"

#include "CGvcpChannel.h"
#include "Gvcp.h"

#include <kiv/Platform.h>
#include <kiv/strprintf.h>
#include <kivcam/network/CNetworkAdapters.h>
#include <kivcam/network/CUdpSocket.h>

#include <map>
#include <vector>

namespace kiv::cam {

namespace {

constexpr std::uint32_t Broadcast = 0xFFFFFFFF;
constexpr std::uint16_t DiscoveryId = 1;

// How a camera tells cameras apart: by MAC address, or by address for one that gives none.
std::uint64_t cameraKey(const gvcp::SDiscoveryAck& device)
{
    return device.mac ? device.mac : (std::uint64_t{1} << 48) | device.address;
}

void readPrivilege(SGigECamera& camera, const gvcp::SAck& ack)
{
    if (gvcp::ReadRegisterAck(ack, camera.privilege)) {
        camera.control = camera.privilege & (gvcp::PRIVILEGE_EXCLUSIVE | gvcp::PRIVILEGE_CONTROL)
            ? SGigECamera::CONTROL_HELD
            : SGigECamera::CONTROL_FREE;
    } else if (ack.status == gvcp::STATUS_ACCESS_DENIED) {
        camera.control = SGigECamera::CONTROL_EXCLUSIVE;
    }
}

void reportFull(const SNetworkAdapter& adapter)
{
    const CString text = strprintf("kivcam: More than %d GigE Vision cameras answered on the "
                                   "adapter \"%s\"; the first %d are shown and the other "
                                   "answers dropped. Limit the adapters GigE Vision may use "
                                   "(KIVCAM_GIGE_INTERFACES) to those of your cameras.\n",
        CGigEDiscovery::MaxCamerasPerAdapter, adapter.name.data(),
        CGigEDiscovery::MaxCamerasPerAdapter);
    platform::DebugOutput(text.data());
}

} // namespace

bool CGigEDiscovery::Discover(const SNetworkAdapter& adapter, std::chrono::milliseconds wait,
    TArray<SGigECamera>& out, const std::stop_token& stop)
{
    CUdpSocket socket;
    CString error;
    if (!socket.Open(adapter, error)
        || !socket.SendTo(Broadcast, gvcp::Port,
            gvcp::Command(gvcp::DISCOVERY_CMD, DiscoveryId,
                gvcp::FLAG_ACK_REQUIRED | gvcp::FLAG_ALLOW_BROADCAST_ACK)))
        return false;

    TArray<SGigECamera> found;
    std::map<std::uint64_t, int> byKey; // position in found
    std::map<std::uint16_t, int> reads; // control register reads not answered yet, by id
    std::uint16_t nextId = DiscoveryId + 1;
    auto deadline = std::chrono::steady_clock::now() + wait;
    bool answering = true; // whether new cameras are still taken
    bool full = false; // whether MaxCamerasPerAdapter answered
    std::vector<std::uint8_t> datagram;
    for (;;) {
        std::uint32_t from = 0;
        std::uint16_t fromPort = 0;
        const CUdpSocket::EReceive received
            = socket.Receive(datagram, from, fromPort, deadline, stop);
        if (received == CUdpSocket::STOPPED || received == CUdpSocket::FAILED)
            return false;
        if (received == CUdpSocket::TIMED_OUT) {
            // The discovery wait is over; the reads sent last get a little longer.
            if (!answering || reads.empty())
                break;
            answering = false;
            deadline = std::chrono::steady_clock::now() + CGvcpChannel::AnswerWait;
            continue;
        }
        gvcp::SAck ack;
        if (!gvcp::ParseAck(datagram, ack))
            continue;
        if (ack.command == gvcp::READREG_ACK) {
            const auto read = reads.find(ack.id);
            if (read != reads.end()) {
                readPrivilege(found[read->second], ack);
                reads.erase(read);
                if (!answering && reads.empty())
                    break;
            }
            continue;
        }
        SGigECamera camera;
        if (!answering || ack.id != DiscoveryId || ack.status != gvcp::STATUS_SUCCESS
            || !gvcp::ParseDiscoveryAck(ack, camera.device)
            || byKey.count(cameraKey(camera.device)))
            continue;
        if (found.count() == MaxCamerasPerAdapter) {
            if (!full)
                reportFull(adapter);
            full = true;
            continue;
        }
        byKey.emplace(cameraKey(camera.device), found.count());
        camera.adapter = adapter;
        if (SameSubnet(adapter, camera.device.address, camera.device.netmask)) {
            const std::uint16_t id = nextId++;
            if (socket.SendTo(camera.device.address, gvcp::Port,
                    gvcp::ReadRegisterCommand(id, gvcp::REG_CONTROL_CHANNEL_PRIVILEGE)))
                reads.emplace(id, found.count());
        } else {
            camera.control = SGigECamera::CONTROL_UNREACHABLE;
        }
        found.add(std::move(camera));
    }
    for (SGigECamera& camera : found)
        out.add(std::move(camera));
    return true;
}

bool CGigEDiscovery::ForceIp(const SNetworkAdapter& adapter, std::uint64_t mac,
    std::uint32_t address, std::uint32_t netmask, std::uint32_t gateway, CString& error,
    const std::stop_token& stop)
{
    // A mask must be a run of ones followed by zeros; the address must name one host in it.
    const bool contiguous = (~netmask & (~netmask + 1)) == 0;
    if (!mac || mac >> 48) {
        error = "The MAC address is not valid.";
        return false;
    }
    if (!netmask || !contiguous || !(address & netmask) || !(address & ~netmask)
        || (address & ~netmask) == ~netmask) {
        error = strprintf("%s with the netmask %s is not an address a camera can take.",
            CNetworkAdapters::AddressText(address).data(),
            CNetworkAdapters::AddressText(netmask).data());
        return false;
    }
    CUdpSocket socket;
    if (!socket.Open(adapter, error))
        return false;
    const std::uint16_t id = 1;
    const std::vector<std::uint8_t> command
        = gvcp::ForceIpCommand(id, mac, address, netmask, gateway);
    std::vector<std::uint8_t> datagram;
    for (int attempt = 0; attempt < CGvcpChannel::Attempts; ++attempt) {
        if (!socket.SendTo(Broadcast, gvcp::Port, command)) {
            error = strprintf("Cannot broadcast on the adapter \"%s\".", adapter.name.data());
            return false;
        }
        // A camera confirms once it has taken the address, which may take a while.
        const auto deadline = std::chrono::steady_clock::now() + 2 * CGvcpChannel::AnswerWait;
        for (;;) {
            std::uint32_t from = 0;
            std::uint16_t fromPort = 0;
            const CUdpSocket::EReceive received
                = socket.Receive(datagram, from, fromPort, deadline, stop);
            if (received == CUdpSocket::STOPPED || received == CUdpSocket::FAILED) {
                error = "The address assignment was stopped.";
                return false;
            }
            if (received == CUdpSocket::TIMED_OUT)
                break;
            gvcp::SAck ack;
            if (!gvcp::ParseAck(datagram, ack) || ack.id != id || ack.command != gvcp::FORCEIP_ACK)
                continue;
            if (ack.status != gvcp::STATUS_SUCCESS) {
                error = strprintf("The camera %s refused the address %s: %s.",
                    gvcp::MacText(mac).data(), CNetworkAdapters::AddressText(address).data(),
                    gvcp::StatusText(ack.status).data());
                return false;
            }
            return true;
        }
    }
    error = strprintf("No camera with the MAC address %s confirmed the address %s on the "
                      "adapter \"%s\".",
        gvcp::MacText(mac).data(), CNetworkAdapters::AddressText(address).data(),
        adapter.name.data());
    return false;
}

bool CGigEDiscovery::SameSubnet(
    const SNetworkAdapter& adapter, std::uint32_t address, std::uint32_t netmask)
{
    for (const SNetworkAdapter::SAddress& own : adapter.addresses) {
        if ((address & own.netmask) == (own.address & own.netmask)
            && (address & netmask) == (own.address & netmask))
            return true;
    }
    return false;
}

CString CGigEDiscovery::WrongSubnetMessage(
    const SNetworkAdapter& adapter, std::uint32_t address, std::uint32_t netmask, std::uint64_t mac)
{
    const SNetworkAdapter::SAddress own
        = adapter.addresses.empty() ? SNetworkAdapter::SAddress() : adapter.addresses[0];
    return strprintf("The camera's address %s (netmask %s) is not in the subnet of the adapter "
                     "\"%s\" it answered on, %s (netmask %s), so the two cannot reach each "
                     "other. Give the camera an address in the adapter's subnet (a temporary "
                     "one can be assigned by its MAC address %s) or give the adapter an address "
                     "in the camera's subnet.",
        CNetworkAdapters::AddressText(address).data(),
        CNetworkAdapters::AddressText(netmask).data(), adapter.name.data(),
        CNetworkAdapters::AddressText(own.address).data(),
        CNetworkAdapters::AddressText(own.netmask).data(), gvcp::MacText(mac).data());
}

} // namespace kiv::cam
