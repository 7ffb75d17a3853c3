// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TSharedPtr.h>
#include <kivcam/CBackend.h>
#include <kivcam/emulator/CEmulatorWorld.h>

namespace kiv::cam {

// The emulator: serves the world of the process (CEmulatorWorld::Current), named by the
// environment variable KIVCAM_EMULATOR_WORLD when it is set and not empty, and the built-in
// default world otherwise.
class CEmulatorBackend : public CBackend {
public:
    CEmulatorBackend();

    void interfaces(TArray<TSharedPtr<IInterface>>& out) override;
    void cameraTypes(TArray<TSharedPtr<ICamera>>& out) override;
    void controllerNames(TArray<CString>& out) override;
    TSharedPtr<IController> createController(const CString& name) override;

private:
    const TSharedPtr<const CEmulatorWorld> m_world;
};

} // namespace kiv::cam
