// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <exception>

namespace kiv::cam {

// Runs work and gives its result, or false when it throws. The camera library's file operations
// and searches report every failure as false, running out of memory included, so that no
// exception leaves them for a caller that cannot take one (a thread-pool task, QML).
template <typename Work> bool FalseOnThrow(Work&& work) noexcept
{
    try {
        return work();
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace kiv::cam
