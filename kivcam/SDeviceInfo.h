// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/CParameters.h>

namespace kiv::cam {

// One transport device through which a camera is reached: a port, an adapter, a frame
// grabber, an emulator.
struct SDeviceInfo {
    CString interfaceName; // the transport (IInterface::name) that serves the device
    CString deviceName; // unique within its transport
    CString baseType; // the kind of device a camera type may accept; see ICamera
    CString iconName; // icon base name, no folder, no extension
    CParameters parameters;
    bool canConnect = true;
    CString errorSummary; // why it cannot be used, in a few words; empty when it can
    CString errorMessage; // the same, in full
    CString description; // free text shown to people

    bool empty() const { return interfaceName.empty() && deviceName.empty(); }
};

} // namespace kiv::cam
