// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CEmulatorBackend.h"

#include "CEmulatorController.h"

namespace kiv::cam {

CEmulatorBackend::CEmulatorBackend() : m_world(CEmulatorWorld::Current())
{
}

void CEmulatorBackend::interfaces(TArray<TSharedPtr<IInterface>>& out)
{
    for (const TSharedPtr<CEmulatorInterface>& transport : m_world->interfaces())
        out.add(transport);
}

void CEmulatorBackend::cameraTypes(TArray<TSharedPtr<ICamera>>& out)
{
    for (const TSharedPtr<ICamera>& type : m_world->cameraTypes())
        out.add(type);
}

void CEmulatorBackend::controllerNames(TArray<CString>& out)
{
    for (const CEmulatorWorld::SController& controller : m_world->controllers())
        out.add(controller.name);
}

TSharedPtr<IController> CEmulatorBackend::createController(const CString& name)
{
    const CEmulatorWorld::SController* controller = m_world->controller(name);
    return controller ? TSharedPtr<IController>(new CEmulatorController(*controller, m_world))
                      : TSharedPtr<IController>();
}

KIVCAM_REGISTER_BACKEND(CEmulatorBackend);

} // namespace kiv::cam
