// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>

namespace kiv::cam {

// What a listing learns of one USB3 Vision camera: from Aravis, which can read the camera's
// strings only where this process may open it, and from the kernel (sysfs), which shows every
// camera that is plugged in.
struct SU3VCamera {
    enum EState {
        STATE_FREE, // this program may open it, and nobody holds it
        STATE_NO_PERMISSION, // this process may not open its device node
        STATE_IN_USE, // another program holds it
        STATE_IN_USE_HERE, // a device of this program holds it
        STATE_NO_ANSWER, // it may be opened but gives nothing Aravis can use
        STATE_MISSING, // opening found no such camera
    };

    CString vendor;
    CString model;
    CString serial;
    CString guid; // empty where it could not be read
    CString userName; // the user-defined name; empty when the camera has none or was not read
    CString deviceVersion;
    CString busPath; // bus and port numbers as the kernel names the device: "2-1.4"
    CString node; // the device node: "/dev/bus/usb/002/007"
    bool claimed = false; // a program has claimed its control interface
    EState state = STATE_FREE;
    CString reason; // what Aravis said when it could not open the camera
};

} // namespace kiv::cam
