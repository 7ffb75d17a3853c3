// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TSharedPtr.h>
#include <kivcam/CBackend.h>
#include <kivcam/ICamera.h>
#include <kivcam/gige/CGigEInterface.h>

namespace kiv::cam {

// GigE Vision: the transport of the cameras, and the generic camera type for models the
// catalogue does not know, operated by the GenICam controller.
class CGigEBackend : public CBackend {
public:
    CGigEBackend();

    void interfaces(TArray<TSharedPtr<IInterface>>& out) override;
    void cameraTypes(TArray<TSharedPtr<ICamera>>& out) override;

private:
    const TSharedPtr<CGigEInterface> m_interface;
    const TSharedPtr<ICamera> m_genericType;
};

} // namespace kiv::cam
