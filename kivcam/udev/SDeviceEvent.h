// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>

namespace kiv::cam {

// A device plugged in or out, as the device watcher (CDeviceWatcher) reports it.
struct SDeviceEvent {
    enum EChange {
        DEVICE_ADDED,
        DEVICE_REMOVED,
    };
    enum EKind {
        KIND_USB3_VISION_CAMERA, // the control interface of a USB3 Vision camera
        KIND_SERIAL_PORT, // the port of a USB serial adapter
    };

    EChange change = DEVICE_ADDED;
    EKind kind = KIND_USB3_VISION_CAMERA;
    CString sysPath; // where the kernel shows it: "/sys/devices/.../2-1:1.0"
    CString node; // its device node ("/dev/ttyUSB0", "/dev/bus/usb/002/007"); empty if not known
};

} // namespace kiv::cam
