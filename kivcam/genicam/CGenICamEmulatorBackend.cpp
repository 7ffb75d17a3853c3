// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGenICamEmulatorBackend.h"

#include "CGenICamController.h"

namespace kiv::cam {

namespace {

TSharedPtr<CGenICamEmulatorInterface> worldInterface(const TSharedPtr<ICamera>& type)
{
    const TSharedPtr<const CEmulatorWorld> world = CEmulatorWorld::Current();
    if (world->genicamCameras().empty())
        return {};
    return TSharedPtr<CGenICamEmulatorInterface>(
        new CGenICamEmulatorInterface(world->genicamCameras(), type));
}

} // namespace

CGenICamEmulatorBackend::CGenICamEmulatorBackend()
    : m_type(CGenICamEmulatorInterface::CameraType(CGenICamController::Name)),
      m_interface(worldInterface(m_type))
{
}

void CGenICamEmulatorBackend::interfaces(TArray<TSharedPtr<IInterface>>& out)
{
    if (m_interface)
        out.add(m_interface);
}

void CGenICamEmulatorBackend::cameraTypes(TArray<TSharedPtr<ICamera>>& out)
{
    if (m_interface)
        out.add(m_type);
}

KIVCAM_REGISTER_BACKEND(CGenICamEmulatorBackend);

} // namespace kiv::cam
