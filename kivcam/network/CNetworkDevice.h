// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/IDevice.h>
#include <kivcam/kivcam_export.h>

#include <mutex>

namespace kiv::cam {

// A network adapter in use. Opening checks that the adapter of the record is up with an IPv4
// address, and sends nothing; cameras behind it are reached by their own transport.
class KIVCAM_EXPORT CNetworkDevice : public IDevice {
public:
    bool open(SDeviceInfo info, bool exclusive) override;
    void close() override;
    bool isOpen() const override;
    const SDeviceInfo& info() const override;
    CString errorMessage() const override;

private:
    mutable std::mutex m_mutex;
    SDeviceInfo m_info;
    CString m_error;
    bool m_open = false;
};

} // namespace kiv::cam
