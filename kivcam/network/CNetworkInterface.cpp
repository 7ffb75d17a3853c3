// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CNetworkInterface.h"

#include "CNetworkAdapters.h"
#include "CNetworkDevice.h"

#include <kiv/strprintf.h>

namespace kiv::cam {

CNetworkInterface::CNetworkInterface()
{
    icon = "Ethernet";
    name = "Network";
    displayName = "Network adapters";
    description = "The machine's network adapters that are up and have an IPv4 address.";
    baseType = "Ethernet";
    comm = true;
    video = true;
    defaultDevice.interfaceName = name;
    defaultDevice.baseType = baseType;
    defaultDevice.iconName = icon;
    defaultDevice.description = "A network adapter entered by its name.";
    defaultDevice.parameters.Add(CParameters::CEntry(AdapterParameter, "Adapter",
        "The system's name of the adapter", CParameters::EDIT_ALWAYS, CVariant("eth0")));
}

TSharedPtr<IDevice> CNetworkInterface::createDevice()
{
    return TSharedPtr<IDevice>(new CNetworkDevice);
}

bool CNetworkInterface::findDevices(TArray<SDeviceInfo>& out, std::stop_token stop)
{
    for (const SNetworkAdapter& adapter : CNetworkAdapters::Up())
        out.add(DeviceRecord(adapter));
    return !stop.stop_requested();
}

bool CNetworkInterface::findCameras(TArray<SCameraInfo>&, std::stop_token stop)
{
    return !stop.stop_requested();
}

SDeviceInfo CNetworkInterface::DeviceRecord(const SNetworkAdapter& adapter) const
{
    SDeviceInfo device;
    device.interfaceName = name;
    device.deviceName = adapter.name;
    device.baseType = baseType;
    device.iconName = icon;
    CString addresses;
    for (const SNetworkAdapter::SAddress& address : adapter.addresses) {
        addresses += (addresses.empty() ? CString() : CString(", "))
            + CNetworkAdapters::AddressText(address.address) + "/"
            + CNetworkAdapters::AddressText(address.netmask);
    }
    device.description = strprintf("%s%s", adapter.loopback ? "Loopback " : "", addresses.data());
    const SNetworkAdapter::SAddress& primary = adapter.addresses[0];
    const auto add = [&device](const char* name, const char* displayName, const char* description,
                         CVariant value) {
        device.parameters.Add(CParameters::CEntry(
            name, displayName, description, CParameters::EDIT_NEVER, std::move(value)));
    };
    add(AdapterParameter, "Adapter", "The system's name of the adapter", adapter.name);
    add(AddressParameter, "IPv4 address", "The adapter's (first) IPv4 address",
        CNetworkAdapters::AddressText(primary.address));
    add(NetmaskParameter, "Netmask", "The netmask of that address",
        CNetworkAdapters::AddressText(primary.netmask));
    add(MtuParameter, "MTU", "The largest packet the adapter sends, in bytes", adapter.mtu);
    add(MacParameter, "MAC address", "The adapter's hardware address; empty when it has none",
        adapter.mac);
    return device;
}

} // namespace kiv::cam
