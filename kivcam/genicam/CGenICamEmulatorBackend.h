// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TSharedPtr.h>
#include <kivcam/CBackend.h>
#include <kivcam/ICamera.h>
#include <kivcam/genicam/CGenICamEmulatorInterface.h>

namespace kiv::cam {

// The emulated GenICam cameras of the process's emulated world (CEmulatorWorld::Current): their
// transport and their camera type, both only when the world has such cameras. The controller is
// the GenICam controller, which another backend gives.
class CGenICamEmulatorBackend : public CBackend {
public:
    CGenICamEmulatorBackend();

    void interfaces(TArray<TSharedPtr<IInterface>>& out) override;
    void cameraTypes(TArray<TSharedPtr<ICamera>>& out) override;

private:
    const TSharedPtr<ICamera> m_type;
    const TSharedPtr<CGenICamEmulatorInterface> m_interface; // null without cameras
};

} // namespace kiv::cam
