// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGigEBackend.h"

#include <kivcam/CameraTypes.h>
#include <kivcam/genicam/CGenICamController.h>

namespace kiv::cam {

CGigEBackend::CGigEBackend()
    : m_interface(new CGigEInterface),
      m_genericType(GenericCameraType(CGigEInterface::GenericCameraType, "Ethernet",
          "A camera that speaks GigE Vision, of a model no other camera type lists.",
          CGenICamController::Name, CGigEInterface::BaseType))
{
}

void CGigEBackend::interfaces(TArray<TSharedPtr<IInterface>>& out)
{
    out.add(m_interface);
}

void CGigEBackend::cameraTypes(TArray<TSharedPtr<ICamera>>& out)
{
    out.add(m_genericType);
}

KIVCAM_REGISTER_REAL_BACKEND(CGigEBackend);

} // namespace kiv::cam
