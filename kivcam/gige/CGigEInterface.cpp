// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGigEInterface.h"

#include "CGigEConfig.h"
#include "CGigEDevice.h"
#include "CGigEDiscovery.h"
#include "Gvcp.h"

#include <kiv/strprintf.h>
#include <kivcam/CameraTypes.h>
#include <kivcam/network/CNetworkAdapters.h>

#include <future>
#include <map>
#include <utility>
#include <vector>

namespace kiv::cam {

namespace {

void addText(SDeviceInfo& device, const char* name, const char* displayName,
    const char* description, CParameters::EEditLevel level, const CString& value)
{
    device.parameters.Add(
        CParameters::CEntry(name, displayName, description, level, CVariant(value)));
}

// Why a found camera cannot be connected; empty summary when it can.
std::pair<CString, CString> diagnose(const SGigECamera& camera)
{
    const gvcp::SDiscoveryAck& device = camera.device;
    switch (camera.control) {
    case SGigECamera::CONTROL_FREE:
        return {};
    case SGigECamera::CONTROL_UNREACHABLE:
        return {"Wrong subnet",
            CGigEDiscovery::WrongSubnetMessage(
                camera.adapter, device.address, device.netmask, device.mac)};
    case SGigECamera::CONTROL_HELD:
        if (CGigEDevice::ControlledHere(device.address))
            return {"In use by this program",
                "This program controls the camera already; close that connection first."};
        return {"In use by another host",
            strprintf("The camera is controlled by another host or program (its control "
                      "channel privilege register reads 0x%X). Close the program that uses it, "
                      "or wait until it lets the camera go, then search again.",
                static_cast<unsigned>(camera.privilege))};
    case SGigECamera::CONTROL_EXCLUSIVE:
        return {"In use by another host",
            "The camera is controlled exclusively by another host or program and refuses even "
            "to be read. Close the program that uses it, or wait until it lets the camera go, "
            "then search again."};
    case SGigECamera::CONTROL_NO_ANSWER:
        break;
    }
    return {"No answer",
        strprintf("The camera answered the discovery broadcast on the adapter \"%s\" but not a "
                  "read of its control register at %s. A firewall may hold back its answers "
                  "(UDP port %u), or the camera is restarting.",
            camera.adapter.name.data(), CNetworkAdapters::AddressText(device.address).data(),
            unsigned{gvcp::Port})};
}

} // namespace

CGigEInterface::CGigEInterface()
{
    icon = "Ethernet";
    name = "GigE";
    displayName = "GigE Vision cameras";
    description = "Cameras on Gigabit Ethernet that speak GigE Vision, found by a discovery "
                  "broadcast on the network adapters named in KIVCAM_GIGE_INTERFACES.";
    baseType = BaseType;
    comm = true;
    video = true;
    defaultDevice.interfaceName = name;
    defaultDevice.baseType = baseType;
    defaultDevice.iconName = icon;
    defaultDevice.description = "A GigE Vision camera entered by its address.";
    addText(defaultDevice, AddressParameter, "IP address", "The camera's IPv4 address",
        CParameters::EDIT_ALWAYS, "192.168.1.20");
    addText(defaultDevice, AdapterParameter, "Adapter",
        "The network adapter the camera is reached through; empty: the allowed adapter of its "
        "subnet",
        CParameters::EDIT_ALWAYS, CString());
}

TSharedPtr<IDevice> CGigEInterface::createDevice()
{
    return TSharedPtr<IDevice>(new CGigEDevice);
}

bool CGigEInterface::findDevices(TArray<SDeviceInfo>& out, std::stop_token stop)
{
    TArray<SGigECamera> found;
    const bool ok = Discover(found, stop);
    for (const SGigECamera& camera : found)
        out.add(DeviceRecord(camera));
    return ok;
}

bool CGigEInterface::findCameras(TArray<SCameraInfo>& out, std::stop_token stop)
{
    TArray<SGigECamera> found;
    const bool ok = Discover(found, stop);
    for (const SGigECamera& camera : found)
        out.add(CameraRecord(camera));
    return ok;
}

bool CGigEInterface::Discover(TArray<SGigECamera>& out, const std::stop_token& stop)
{
    const std::chrono::milliseconds wait = CGigEConfig::DiscoveryWait();
    std::vector<std::future<std::pair<bool, TArray<SGigECamera>>>> scans;
    for (const SNetworkAdapter& adapter : CGigEConfig::Adapters()) {
        scans.push_back(std::async(std::launch::async, [adapter, wait, stop] {
            std::pair<bool, TArray<SGigECamera>> result;
            result.first = CGigEDiscovery::Discover(adapter, wait, result.second, stop);
            return result;
        }));
    }
    // One record per camera, by MAC address; an answer through an adapter that reaches the
    // camera wins over one through an adapter that does not.
    bool ok = true;
    std::map<std::uint64_t, int> byMac;
    for (auto& scan : scans) {
        auto [scanned, cameras] = scan.get();
        ok = ok && scanned;
        for (SGigECamera& camera : cameras) {
            const auto [known, added] = byMac.emplace(camera.device.mac, out.count());
            if (added || !camera.device.mac)
                out.add(std::move(camera));
            else if (out[known->second].control == SGigECamera::CONTROL_UNREACHABLE
                && camera.control != SGigECamera::CONTROL_UNREACHABLE)
                out[known->second] = std::move(camera);
        }
    }
    return ok && !stop.stop_requested();
}

SDeviceInfo CGigEInterface::DeviceRecord(const SGigECamera& camera) const
{
    const gvcp::SDiscoveryAck& found = camera.device;
    SDeviceInfo device;
    device.interfaceName = name;
    device.deviceName
        = found.mac ? gvcp::MacText(found.mac) : CNetworkAdapters::AddressText(found.address);
    device.baseType = baseType;
    device.iconName = icon;
    device.description = strprintf("%s %s (%s) at %s on %s", found.manufacturer.data(),
        found.model.data(), found.serial.data(),
        CNetworkAdapters::AddressText(found.address).data(), camera.adapter.name.data());
    constexpr auto never = CParameters::EDIT_NEVER;
    addText(device, AddressParameter, "IP address", "The camera's IPv4 address", never,
        CNetworkAdapters::AddressText(found.address));
    addText(device, SubnetMaskParameter, "Subnet mask", "The camera's subnet mask", never,
        CNetworkAdapters::AddressText(found.netmask));
    addText(device, GatewayParameter, "Gateway", "The camera's default gateway", never,
        CNetworkAdapters::AddressText(found.gateway));
    addText(device, MacParameter, "MAC address", "The camera's hardware address", never,
        gvcp::MacText(found.mac));
    addText(device, AdapterParameter, "Adapter", "The network adapter the camera answered on",
        never, camera.adapter.name);
    addText(device, AdapterAddressParameter, "Adapter address",
        "The address and netmask of that adapter", never,
        CNetworkAdapters::AddressText(camera.adapter.addresses[0].address) + "/"
            + CNetworkAdapters::AddressText(camera.adapter.addresses[0].netmask));
    addText(device, DeviceVersionParameter, "Device version", "The camera's version text", never,
        found.deviceVersion);
    auto [summary, message] = diagnose(camera);
    device.canConnect = summary.empty();
    device.errorSummary = std::move(summary);
    device.errorMessage = std::move(message);
    return device;
}

SCameraInfo CGigEInterface::CameraRecord(const SGigECamera& camera) const
{
    const gvcp::SDiscoveryAck& found = camera.device;
    SCameraInfo info = FoundCameraInfo(found.manufacturer, found.model, found.serial,
        found.userName, GenericCameraType, DeviceRecord(camera));
    info.firmwareVersion = found.deviceVersion;
    return info;
}

bool CGigEInterface::ForceIp(const SDeviceInfo& device, const CString& address,
    const CString& netmask, const CString& gateway, CString& error)
{
    std::uint64_t mac = 0;
    if (!gvcp::ParseMac(device.parameters.TextOf(MacParameter), mac)) {
        error = "The record names no camera by its MAC address.";
        return false;
    }
    const CString adapterName = device.parameters.TextOf(AdapterParameter);
    if (!CGigEConfig::Allows(adapterName)) {
        error = strprintf("The adapter \"%s\" is not among those GigE Vision may use (%s).",
            adapterName.data(), CGigEConfig::AllowedText().data());
        return false;
    }
    SNetworkAdapter adapter;
    if (!CNetworkAdapters::Find(adapterName, adapter)) {
        error = strprintf(
            "The adapter \"%s\" is not there, not up, or has no IPv4 address.", adapterName.data());
        return false;
    }
    std::uint32_t newAddress = 0;
    std::uint32_t newNetmask = 0;
    std::uint32_t newGateway = 0;
    if (!CNetworkAdapters::ParseAddress(address, newAddress)
        || !CNetworkAdapters::ParseAddress(netmask, newNetmask)
        || (!gateway.empty() && !CNetworkAdapters::ParseAddress(gateway, newGateway))) {
        error = strprintf("\"%s\", \"%s\" and \"%s\" are not an address, a netmask and a "
                          "gateway.",
            address.data(), netmask.data(), gateway.data());
        return false;
    }
    return CGigEDiscovery::ForceIp(adapter, mac, newAddress, newNetmask, newGateway, error);
}

} // namespace kiv::cam
