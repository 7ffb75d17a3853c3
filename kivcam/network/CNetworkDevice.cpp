// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CNetworkDevice.h"

#include "CNetworkAdapters.h"
#include "CNetworkInterface.h"

#include <kiv/strprintf.h>

#include <utility>

namespace kiv::cam {

bool CNetworkDevice::open(SDeviceInfo info, bool)
{
    std::lock_guard lock(m_mutex);
    const CString name = info.parameters.TextOf(CNetworkInterface::AdapterParameter);
    SNetworkAdapter adapter;
    if (m_open)
        m_error = "The adapter is open already.";
    else if (!CNetworkAdapters::Find(name, adapter))
        m_error = strprintf("The network adapter \"%s\" is not there, not up, or has no IPv4 "
                            "address.",
            name.data());
    else
        m_error = CString();
    if (!m_error.empty())
        return false;
    m_info = std::move(info);
    m_open = true;
    return true;
}

void CNetworkDevice::close()
{
    std::lock_guard lock(m_mutex);
    m_open = false;
}

bool CNetworkDevice::isOpen() const
{
    std::lock_guard lock(m_mutex);
    return m_open;
}

const SDeviceInfo& CNetworkDevice::info() const
{
    return m_info;
}

CString CNetworkDevice::errorMessage() const
{
    std::lock_guard lock(m_mutex);
    return m_error;
}

} // namespace kiv::cam
