// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/IInterface.h>

#include <future>
#include <stop_token>
#include <utility>
#include <vector>

namespace kiv::cam {

// Runs one scan per chosen transport of the catalogue, each on a thread of its own, so that a
// search takes as long as its slowest transport; appends the results in catalogue order. Emulator
// transports take part only when emulators is true, and alone when emulatorsOnly is true. Every
// scan is handed stop, and none starts once it is requested. False when any transport's scan
// failed or stop was requested.
template <typename Record>
bool ScanInterfaces(CInterfaces& catalogue, bool emulators, bool emulatorsOnly,
    bool (IInterface::*scan)(TArray<Record>&, std::stop_token), TArray<Record>& out,
    const std::stop_token& stop)
{
    using SResult = std::pair<bool, TArray<Record>>;
    std::vector<std::future<SResult>> scans;
    for (int i = 0; i < catalogue.interfaceCount() && !stop.stop_requested(); ++i) {
        TSharedPtr<IInterface> transport = catalogue.interfaceAt(i);
        if ((transport->isEmulator && !emulators) || (emulatorsOnly && !transport->isEmulator))
            continue;
        scans.push_back(std::async(std::launch::async, [transport, scan, stop] {
            SResult result;
            result.first = ((*transport).*scan)(result.second, stop);
            return result;
        }));
    }
    bool ok = true;
    for (std::future<SResult>& pending : scans) {
        SResult result = pending.get();
        ok = ok && result.first;
        for (Record& record : result.second)
            out.add(std::move(record));
    }
    return ok && !stop.stop_requested();
}

} // namespace kiv::cam
