// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CCameras.h"

#include "CBackend.h"

namespace kiv::cam {

CCameras::CCameras()
{
    for (const TSharedPtr<CBackend>& backend : CBackend::all())
        backend->cameraTypes(m_cameras);
}

CCameras::~CCameras() = default;

TSharedPtr<ICamera> CCameras::cameraAt(int index)
{
    return index >= 0 && index < m_cameras.count() ? m_cameras[index] : TSharedPtr<ICamera>();
}

TSharedPtr<ICamera> CCameras::cameraByName(const CString& name)
{
    for (const TSharedPtr<ICamera>& camera : m_cameras) {
        if (camera->name == name)
            return camera;
    }
    return {};
}

int CCameras::cameraCount()
{
    return m_cameras.count();
}

void CCameras::cameraTypeNames(TArray<CString>& out)
{
    for (const TSharedPtr<ICamera>& camera : m_cameras)
        out.add(camera->name);
}

CCameras* cameras()
{
    static CCameras instance;
    return &instance;
}

} // namespace kiv::cam
