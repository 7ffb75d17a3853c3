// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGigEDevice.h"

#include "CGigEConfig.h"
#include "CGigEDiscovery.h"
#include "CGigEInterface.h"
#include "CGvcpChannel.h"
#include "Gvcp.h"

#include <kiv/strprintf.h>
#include <kivcam/network/CNetworkAdapters.h>

#include <algorithm>
#include <arv.h>
#include <mutex>
#include <set>
#include <vector>

namespace kiv::cam {

namespace {

// The cameras that devices of this program control, by address.
std::mutex controlledMutex;
std::set<std::uint32_t>& controlled()
{
    static std::set<std::uint32_t> addresses;
    return addresses;
}

// Aravis shows the camera a sign of life every second, and gives up after several seconds of
// silence; a camera set to time out sooner gets the usual timeout.
constexpr std::uint32_t MinHeartbeatTimeout = 3000;

GInetAddress* inetAddress(std::uint32_t address)
{
    const guint8 bytes[4] = {static_cast<guint8>(address >> 24), static_cast<guint8>(address >> 16),
        static_cast<guint8>(address >> 8), static_cast<guint8>(address)};
    return g_inet_address_new_from_bytes(bytes, G_SOCKET_FAMILY_IPV4);
}

// Why a read of our control channel failed, for what the camera was asked.
CString channelProblem(CGvcpChannel::EResult result, std::uint16_t status,
    const SNetworkAdapter& adapter, std::uint32_t address, const char* asked)
{
    const CString camera = CNetworkAdapters::AddressText(address);
    switch (result) {
    case CGvcpChannel::REFUSED:
        return strprintf("The camera at %s refused to tell %s (%s). Restart the camera, then "
                         "search again.",
            camera.data(), asked, gvcp::StatusText(status).data());
    case CGvcpChannel::GARBLED:
        return strprintf("The camera at %s was asked for %s and answered only with packets that "
                         "are no valid answer (cut short, or for another command); it may be "
                         "faulty, or another device answers for it. Restart the camera, then "
                         "search again.",
            camera.data(), asked);
    case CGvcpChannel::STALLED:
        return strprintf("The camera at %s was asked for %s and kept asking for more time, for "
                         "%lld ms in all, without answering; it may be busy or faulty. Restart "
                         "the camera, then search again.",
            camera.data(), asked, static_cast<long long>(CGvcpChannel::LongestWait.count()));
    default:
        return strprintf("The camera at %s does not answer on the adapter \"%s\".", camera.data(),
            adapter.name.data());
    }
}

} // namespace

CGigEDevice::~CGigEDevice()
{
    close();
}

bool CGigEDevice::Open(SDeviceInfo info, bool exclusive, CString& error)
{
    std::uint32_t address = 0;
    const CString addressParameter = info.parameters.TextOf(CGigEInterface::AddressParameter);
    if (!CNetworkAdapters::ParseAddress(addressParameter, address)) {
        error = strprintf("\"%s\" is not the IPv4 address of a camera.", addressParameter.data());
        return false;
    }
    if (!CGigEConfig::Enabled()) {
        error = "GigE Vision is off. Set the environment variable KIVCAM_GIGE_INTERFACES to "
                "the network adapters it may use (for example \"eth1\", or \"*\" for all).";
        return false;
    }
    CString adapterName = info.parameters.TextOf(CGigEInterface::AdapterParameter);
    if (adapterName.empty()) {
        // A camera entered by hand is reached through the allowed adapter of its subnet.
        for (const SNetworkAdapter& adapter : CGigEConfig::Adapters()) {
            if (adapter.Reaches(address)) {
                adapterName = adapter.name;
                break;
            }
        }
        if (adapterName.empty()) {
            error = strprintf("None of the adapters GigE Vision may use (%s) is in the subnet "
                              "of the camera's address %s.",
                CGigEConfig::AllowedText().data(), CNetworkAdapters::AddressText(address).data());
            return false;
        }
    }
    if (!CGigEConfig::Allows(adapterName)) {
        error = strprintf("The adapter \"%s\" is not among those GigE Vision may use (%s); "
                          "add it to KIVCAM_GIGE_INTERFACES.",
            adapterName.data(), CGigEConfig::AllowedText().data());
        return false;
    }
    SNetworkAdapter adapter;
    if (!CNetworkAdapters::Find(adapterName, adapter)) {
        error = strprintf(
            "The adapter \"%s\" is not there, not up, or has no IPv4 address.", adapterName.data());
        return false;
    }
    if (!adapter.Reaches(address)) {
        std::uint32_t netmask = adapter.addresses[0].netmask;
        CNetworkAdapters::ParseAddress(
            info.parameters.TextOf(CGigEInterface::SubnetMaskParameter), netmask);
        std::uint64_t mac = 0;
        gvcp::ParseMac(info.parameters.TextOf(CGigEInterface::MacParameter), mac);
        error = CGigEDiscovery::WrongSubnetMessage(adapter, address, netmask, mac);
        return false;
    }
    if (ControlledHere(address)) {
        error = strprintf("This program controls the camera at %s already; close that "
                          "connection first.",
            CNetworkAdapters::AddressText(address).data());
        return false;
    }
    // Our own look at the camera, sharing nothing with what Aravis opens next.
    CGvcpChannel channel;
    if (!channel.Open(adapter, address, error))
        return false;
    std::uint32_t privilege = 0;
    std::uint16_t status = 0;
    const CGvcpChannel::EResult read
        = channel.ReadRegister(gvcp::REG_CONTROL_CHANNEL_PRIVILEGE, privilege, status);
    if ((read == CGvcpChannel::REFUSED && status == gvcp::STATUS_ACCESS_DENIED)
        || (read == CGvcpChannel::OK
            && privilege & (gvcp::PRIVILEGE_CONTROL | gvcp::PRIVILEGE_EXCLUSIVE))) {
        error = strprintf("The camera at %s is controlled by another host or program. Close "
                          "the program that uses it, or wait until it lets the camera go.",
            CNetworkAdapters::AddressText(address).data());
        return false;
    }
    if (read != CGvcpChannel::OK) {
        error = channelProblem(read, status, adapter, address, "its control register");
        return false;
    }
    // Aravis reads the camera's memory first, and waits without end for a camera that keeps
    // asking for more time; our channel gives up, so such a camera is refused here.
    std::vector<std::uint8_t> url;
    const CGvcpChannel::EResult urlRead
        = channel.ReadMemory(gvcp::REG_FIRST_URL, gvcp::FirstUrlSize, url, status);
    channel.Close();
    if (urlRead != CGvcpChannel::OK) {
        error = channelProblem(urlRead, status, adapter, address, "where its GenICam file is");
        return false;
    }
    GInetAddress* adapterAddress = inetAddress(adapter.addresses[0].address);
    GInetAddress* cameraAddress = inetAddress(address);
    GError* failure = nullptr;
    ArvDevice* device = arv_gv_device_new(adapterAddress, cameraAddress, &failure);
    g_object_unref(adapterAddress);
    g_object_unref(cameraAddress);
    if (!device) {
        error = strprintf("The camera at %s cannot be opened: %s",
            CNetworkAdapters::AddressText(address).data(),
            failure ? failure->message : "no reason given");
        g_clear_error(&failure);
        return false;
    }
    if (!arv_gv_device_is_controller(ARV_GV_DEVICE(device))
        || (exclusive
            && !arv_device_write_register(
                device, gvcp::REG_CONTROL_CHANNEL_PRIVILEGE, gvcp::PRIVILEGE_EXCLUSIVE, nullptr))) {
        g_object_unref(device);
        error = strprintf("The camera at %s refused control; another host or program may have "
                          "taken it a moment ago.",
            CNetworkAdapters::AddressText(address).data());
        return false;
    }
    guint32 timeout = 0;
    if (arv_device_read_register(device, gvcp::REG_HEARTBEAT_TIMEOUT, &timeout, nullptr)
        && timeout < MinHeartbeatTimeout)
        arv_device_write_register(
            device, gvcp::REG_HEARTBEAT_TIMEOUT, MinHeartbeatTimeout, nullptr);
    {
        std::lock_guard lock(controlledMutex);
        controlled().insert(address);
    }
    m_address = address;
    Adopt(device, std::move(info),
        strprintf("Lost control of the camera at %s: it stopped answering, restarted, or another "
                  "host took it.",
            CNetworkAdapters::AddressText(address).data()));
    return true;
}

void CGigEDevice::close()
{
    if (!isOpen())
        return;
    CAravisDevice::close();
    std::lock_guard lock(controlledMutex);
    controlled().erase(m_address);
}

bool CGigEDevice::ControlledHere(std::uint32_t address)
{
    std::lock_guard lock(controlledMutex);
    return controlled().count(address) != 0;
}

} // namespace kiv::cam
