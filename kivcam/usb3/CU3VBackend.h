// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TSharedPtr.h>
#include <kivcam/CBackend.h>
#include <kivcam/ICamera.h>
#include <kivcam/usb3/CU3VInterface.h>

namespace kiv::cam {

// USB3 Vision: the transport of the cameras, and the generic camera type for models the
// catalogue does not know, operated by the GenICam controller.
class CU3VBackend : public CBackend {
public:
    CU3VBackend();

    void interfaces(TArray<TSharedPtr<IInterface>>& out) override;
    void cameraTypes(TArray<TSharedPtr<ICamera>>& out) override;

private:
    const TSharedPtr<CU3VInterface> m_interface;
    const TSharedPtr<ICamera> m_genericType;
};

} // namespace kiv::cam
