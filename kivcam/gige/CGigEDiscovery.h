// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/gige/SGigECamera.h>
#include <kivcam/kivcam_export.h>
#include <kivcam/network/SNetworkAdapter.h>

#include <chrono>
#include <cstdint>
#include <stop_token>

namespace kiv::cam {

// GigE Vision discovery and address assignment on one network adapter. Both broadcast on the
// adapter they are given; callers hand them only adapters the user allowed (CGigEConfig).
class KIVCAM_EXPORT CGigEDiscovery {
public:
    // The most cameras one discovery takes from one adapter. Anything on the network may answer,
    // and a broken or hostile host may answer with endless different MAC addresses; beyond this
    // many, answers are dropped (and the debug output says so once), which keeps memory and the
    // reads of control registers bounded. Far more than cameras share one adapter in practice.
    static constexpr int MaxCamerasPerAdapter = 256;

    // Broadcasts a discovery command through the adapter and collects answers for wait, one per
    // camera, up to MaxCamerasPerAdapter; then reads the control register of each camera in the
    // adapter's subnet, waiting a little longer only for reads still unanswered. Appends the
    // cameras in the order they answered. False when the adapter's socket cannot be used or stop is
    // requested.
    static bool Discover(const SNetworkAdapter& adapter, std::chrono::milliseconds wait,
        TArray<SGigECamera>& out, const std::stop_token& stop);

    // Gives the camera of that MAC address a temporary address (FORCEIP), broadcast through the
    // adapter, and waits for its confirmation. False, with the reason in error, when the values
    // are unusable, no camera confirms or the camera refuses.
    static bool ForceIp(const SNetworkAdapter& adapter, std::uint64_t mac, std::uint32_t address,
        std::uint32_t netmask, std::uint32_t gateway, CString& error,
        const std::stop_token& stop = {});

    // Whether a camera of that address and mask and the adapter can reach each other: the
    // camera's address lies in the subnet of one of the adapter's addresses and that address in
    // the camera's subnet.
    static bool SameSubnet(
        const SNetworkAdapter& adapter, std::uint32_t address, std::uint32_t netmask);
    // The explanation for a camera in another subnet than the adapter it answered on.
    static CString WrongSubnetMessage(const SNetworkAdapter& adapter, std::uint32_t address,
        std::uint32_t netmask, std::uint64_t mac);
};

} // namespace kiv::cam
