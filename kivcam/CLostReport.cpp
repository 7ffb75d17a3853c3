// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CLostReport.h"

#include <utility>

namespace kiv::cam {

void CLostReport::setLostHandler(Handler handler)
{
    std::lock_guard lock(m_mutex);
    m_handler = std::move(handler);
}

void CLostReport::reportLost(const CString& reason) const
{
    std::lock_guard lock(m_mutex);
    // A copy, which outlives a handler that replaces itself.
    const Handler handler = m_handler;
    if (handler)
        handler(reason);
}

} // namespace kiv::cam
