// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CU3VBackend.h"

#include <kivcam/CameraTypes.h>
#include <kivcam/genicam/CGenICamController.h>

namespace kiv::cam {

CU3VBackend::CU3VBackend()
    : m_interface(new CU3VInterface),
      m_genericType(GenericCameraType(CU3VInterface::GenericCameraType, "USB",
          "A camera that speaks USB3 Vision, of a model no other camera type lists.",
          CGenICamController::Name, CU3VInterface::BaseType))
{
}

void CU3VBackend::interfaces(TArray<TSharedPtr<IInterface>>& out)
{
    out.add(m_interface);
}

void CU3VBackend::cameraTypes(TArray<TSharedPtr<ICamera>>& out)
{
    out.add(m_genericType);
}

KIVCAM_REGISTER_REAL_BACKEND(CU3VBackend);

} // namespace kiv::cam
