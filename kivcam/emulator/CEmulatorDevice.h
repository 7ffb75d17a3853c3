// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IDevice.h>
#include <kivcam/emulator/CEmulatorInterface.h>

#include <mutex>

namespace kiv::cam {

// An open connection to a device of an emulated transport.
class CEmulatorDevice : public IDevice {
public:
    // displayName names the transport in messages for people.
    CEmulatorDevice(CString interfaceName, CString displayName,
        TSharedPtr<const TArray<SEmulatedDevice>> devices);

    // Succeeds for a record that names a device of this transport that can be used and has
    // no open fault, when this object is not open yet; errorMessage() says why it did not.
    // A record entered by hand (no device name) opens the found device that its identifying
    // parameter names (see Identify), or a free slot, with no camera on it, when it has no
    // such parameter; info() then gives the record with the found device's name, if any.
    // Exclusive use is not emulated.
    bool open(SDeviceInfo info, bool exclusive) override;
    void close() override;
    bool isOpen() const override;
    const SDeviceInfo& info() const override;
    CString errorMessage() const override;

private:
    // Why the record cannot be opened now; empty when it can. Fills in the device name of a
    // record entered by hand.
    CString Refusal(SDeviceInfo& info) const;
    // Fills in the name of the found device that a record entered by hand names by its
    // identifying parameter: the record's first parameter that anyone may edit (EDIT_ALWAYS)
    // and that a found device carries as fixed (a higher edit level), such as a port or an
    // address, the devices being matched on its exact text. Without such a parameter the name
    // stays empty: a free slot. Gives why no device answers; empty when one does.
    CString Identify(SDeviceInfo& info) const;

    const CString m_interfaceName;
    const CString m_displayName;
    const TSharedPtr<const TArray<SEmulatedDevice>> m_devices;
    mutable std::mutex m_mutex;
    SDeviceInfo m_info;
    CString m_error;
    bool m_open = false;
};

} // namespace kiv::cam
