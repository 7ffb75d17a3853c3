// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/kivcam_export.h>
#include <kivcam/usb3/SU3VCamera.h>

#include <utility>

namespace kiv::cam {

// The USB3 Vision cameras as the kernel shows them in sysfs: every camera that is plugged in,
// whether or not this process may open it, with the strings the kernel read when it was plugged
// in, its bus path, its device node and whether a program has claimed it. Reading sysfs opens no
// camera. Where there is no sysfs (another system), it shows nothing.
class KIVCAM_EXPORT CU3VSysfs {
public:
    // The udev rule that lets the user logged in at the machine open every USB3 Vision camera
    // (a device whose interfaces include class 0xEF, subclass 0x05, protocol 0, the control
    // interface), and the file it goes into: before 73-seat-late.rules, which applies the tag.
    static constexpr const char* UdevRuleFile = "/etc/udev/rules.d/70-usb3-vision.rules";
    static constexpr const char* UdevRule
        = "SUBSYSTEM==\"usb\", ENV{DEVTYPE}==\"usb_device\", "
          "ENV{ID_USB_INTERFACES}==\"*:ef0500:*\", TAG+=\"uaccess\"";

    // The cameras plugged in now, with vendor, model, serial, busPath, node and claimed filled in.
    static TArray<SU3VCamera> Cameras();

    // Why this process may not open the device node at path for reading and writing: the
    // errorSummary "No permission" and an errorMessage naming the node, the group that owns it
    // and what to do. Both empty when it may, and when the node is missing.
    static std::pair<CString, CString> AccessProblem(const CString& path);

    // The camera's vendor, model and serial number as one text, each character beyond ASCII as
    // '?' as Aravis reads them (the kernel writes UTF-8): the same for one camera whether Aravis
    // or sysfs listed it.
    static CString Key(const SU3VCamera& camera);
};

} // namespace kiv::cam
