// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/IDevice.h>
#include <kivcam/kivcam_export.h>

#include <chrono>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace kiv::cam {

// An open serial port: raw 8N1 at the record's baud rate. The port is the record's "Control"
// path, or "/dev/" and the device name when that is empty.
//
// Opened for exclusive use, the port is locked (flock) and set exclusive (TIOCEXCL), so that
// neither another program nor another device of this one opens it meanwhile. When it cannot be
// opened errorMessage() says why: missing, busy, or permission denied with the group to join.
// While it is open a thread of its own waits for the port to hang up (its adapter unplugged, the
// other end of a pseudo-terminal closed) and tells the lost handler.
class KIVCAM_EXPORT CSerialDevice : public IDevice {
public:
    CSerialDevice() = default;
    ~CSerialDevice() override;

    bool open(SDeviceInfo info, bool exclusive) override;
    void close() override;
    bool isOpen() const override;
    const SDeviceInfo& info() const override;
    CString errorMessage() const override;

    // Writes all of bytes within wait; false when the port is not open or does not take them.
    bool Write(std::string_view bytes, std::chrono::milliseconds wait);
    // The bytes that arrive within wait, as soon as some have; empty when none do.
    std::string Read(std::chrono::milliseconds wait);

private:
    bool Open(const SDeviceInfo& info, bool exclusive);
    // Waits on the watch thread until the port hangs up or close() wakes it.
    void Watch(int port, int wake, const CString& path) const;

    mutable std::mutex m_mutex;
    SDeviceInfo m_info;
    CString m_error;
    int m_port = -1;
    int m_wake = -1; // an eventfd that ends the watch
    std::thread m_watch;
};

} // namespace kiv::cam
