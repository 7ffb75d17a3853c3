// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/IInterface.h>
#include <kivcam/kivcam_export.h>
#include <kivcam/network/SNetworkAdapter.h>

namespace kiv::cam {

// The machine's network adapters that are up and have an IPv4 address: the devices through
// which network cameras are reached. Listing them sends nothing.
class KIVCAM_EXPORT CNetworkInterface : public IInterface {
public:
    // Names of the device parameters.
    static constexpr const char* AdapterParameter = "Adapter";
    static constexpr const char* AddressParameter = "Address";
    static constexpr const char* NetmaskParameter = "Netmask";
    static constexpr const char* MtuParameter = "MTU";
    static constexpr const char* MacParameter = "MAC";

    CNetworkInterface();

    TSharedPtr<IDevice> createDevice() override;
    bool findDevices(TArray<SDeviceInfo>& out, std::stop_token stop) override;
    // Adapters have no cameras of their own; GigE Vision finds the cameras behind them.
    bool findCameras(TArray<SCameraInfo>& out, std::stop_token stop) override;

    // The record of one adapter.
    SDeviceInfo DeviceRecord(const SNetworkAdapter& adapter) const;
};

} // namespace kiv::cam
