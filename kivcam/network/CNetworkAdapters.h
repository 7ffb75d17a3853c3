// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/kivcam_export.h>
#include <kivcam/network/SNetworkAdapter.h>

#include <cstdint>

namespace kiv::cam {

// The machine's network adapters, as the system lists them now. Listing sends nothing.
class KIVCAM_EXPORT CNetworkAdapters {
public:
    // Every adapter that is up and has an IPv4 address, loopback included, in the system's order.
    static TArray<SNetworkAdapter> Up();
    // The adapter of that name, if it is up and has an IPv4 address; false when not.
    static bool Find(const CString& name, SNetworkAdapter& adapter);

    // "192.168.1.20" from an address in host byte order, and back; Parse refuses anything but
    // four dotted decimal numbers.
    static CString AddressText(std::uint32_t address);
    static bool ParseAddress(const CString& text, std::uint32_t& address);
};

} // namespace kiv::cam
