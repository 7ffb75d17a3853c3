// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>

#include <cstdint>

namespace kiv::cam {

// A network adapter that is up, with its IPv4 addresses. Addresses and masks are in host byte
// order.
struct SNetworkAdapter {
    struct SAddress {
        std::uint32_t address = 0;
        std::uint32_t netmask = 0;
        std::uint32_t broadcast = 0; // 0 when the adapter cannot broadcast
    };

    CString name; // the system's name of the adapter ("eth0", "lo")
    int index = 0; // the system's index of the adapter
    int mtu = 0;
    CString mac; // "00:11:22:33:44:55"; empty when the adapter has none
    bool loopback = false;
    TArray<SAddress> addresses; // never empty for a listed adapter; the first is its primary

    // Whether an address lies in the subnet of one of this adapter's addresses.
    bool Reaches(std::uint32_t other) const
    {
        for (const SAddress& own : addresses) {
            if ((other & own.netmask) == (own.address & own.netmask))
                return true;
        }
        return false;
    }
};

} // namespace kiv::cam
