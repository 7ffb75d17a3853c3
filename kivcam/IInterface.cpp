// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IInterface.h"

#include <condition_variable>
#include <mutex>

namespace kiv::cam {

IInterface::~IInterface() = default;

bool IInterface::Wait(std::chrono::milliseconds delay, const std::stop_token& stop)
{
    // Nothing but a stop request notifies this condition, which wakes on it by itself.
    std::mutex mutex;
    std::condition_variable_any woken;
    std::unique_lock lock(mutex);
    woken.wait_for(lock, stop, delay, [] { return false; });
    return !stop.stop_requested();
}

} // namespace kiv::cam
