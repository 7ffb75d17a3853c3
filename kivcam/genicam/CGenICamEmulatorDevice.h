// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/genicam/CAravisDevice.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// An open emulated GenICam camera: Aravis's fake camera, in this process, described by the
// camera library's own GenICam file (EmulatedCamera.xml). It sends nothing on any network.
//
// open() makes a new fake camera with the serial number of the record's "Serial" parameter:
// every open starts from the camera's defaults, and two devices of one serial are two cameras.
// Exclusive use makes no difference.
class KIVCAM_EXPORT CGenICamEmulatorDevice : public CAravisDevice {
public:
private:
    bool Open(SDeviceInfo info, bool exclusive, CString& error) override;
};

} // namespace kiv::cam
