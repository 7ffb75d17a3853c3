// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/genicam/CAravisDevice.h>
#include <kivcam/kivcam_export.h>

#include <cstdint>

namespace kiv::cam {

// An open GigE Vision camera, held by this program.
//
// Opening checks the camera first with our own control channel: the adapter must be one the user
// allows (CGigEConfig) and reach the camera, and the camera's control channel privilege register
// must show nobody else in control (Aravis would open a camera that another host holds silently,
// as a mere monitor). Then Aravis opens the camera by its address on that adapter, takes control
// (alone, when asked for exclusive use) and keeps it with its heartbeat; closing gives control
// back. Aravis reports lost control through hasControl() and errorMessage().
class KIVCAM_EXPORT CGigEDevice : public CAravisDevice {
public:
    CGigEDevice() = default;
    ~CGigEDevice() override;

    void close() override;

    // Whether a device of this program holds the camera at that address.
    static bool ControlledHere(std::uint32_t address);

private:
    bool Open(SDeviceInfo info, bool exclusive, CString& error) override;

    std::uint32_t m_address = 0;
};

} // namespace kiv::cam
