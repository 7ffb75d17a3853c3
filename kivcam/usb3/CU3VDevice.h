// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/genicam/CAravisDevice.h>
#include <kivcam/kivcam_export.h>
#include <kivcam/usb3/SU3VCamera.h>

namespace kiv::cam {

// An open USB3 Vision camera, held by this program.
//
// Opening finds the camera of the record by its GUID, or by its vendor, model and serial number,
// through Aravis's USB3 Vision device alone, on the listing thread of CU3VInterface so that it
// never races a listing that opens the camera for a moment. A USB3 Vision camera is always held
// alone: the interfaces Aravis claims cannot be claimed by another program until it is closed.
class KIVCAM_EXPORT CU3VDevice : public CAravisDevice {
public:
    CU3VDevice() = default;
    ~CU3VDevice() override;

    void close() override;

    // Opens the camera through Aravis, by its GUID when it has one. Null when it cannot, with the
    // camera's state and reason saying why (missing, in use, no answer). Runs on the listing
    // thread.
    static ArvDevice* OpenCamera(SU3VCamera& camera);
    // Whether a device of this program holds the camera.
    static bool OpenHere(const SU3VCamera& camera);

private:
    bool Open(SDeviceInfo info, bool exclusive, CString& error) override;

    SU3VCamera m_camera; // the camera held, among those of this program
};

} // namespace kiv::cam
