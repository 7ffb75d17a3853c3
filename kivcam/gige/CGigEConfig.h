// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/kivcam_export.h>
#include <kivcam/network/SNetworkAdapter.h>

#include <chrono>

namespace kiv::cam {

// What the user allows GigE Vision to do, from the environment, read anew at every use.
//
// Discovery broadcasts, so it is off unless KIVCAM_GIGE_INTERFACES names the adapters it may
// use: adapter names separated by commas or spaces ("eth1,eth2"), or "*" for every adapter that
// is up. Opening a camera and assigning it an address go through those adapters only, too.
// KIVCAM_GIGE_DISCOVERY_MS sets how long discovery waits for answers, in milliseconds (default
// 1000, at least 10, at most 60000).
class KIVCAM_EXPORT CGigEConfig {
public:
    static constexpr std::chrono::milliseconds DefaultWait{1000};

    // Whether any adapter is allowed.
    static bool Enabled();
    // Whether the adapter of that name is allowed.
    static bool Allows(const CString& adapterName);
    // The allowed adapters that are up now.
    static TArray<SNetworkAdapter> Adapters();
    // How long discovery waits for answers.
    static std::chrono::milliseconds DiscoveryWait();
    // The allowed adapters as the user gave them, for messages.
    static CString AllowedText();
};

} // namespace kiv::cam
