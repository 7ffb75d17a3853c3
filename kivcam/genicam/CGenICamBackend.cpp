// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGenICamBackend.h"

#include "CGenICamController.h"

#include <kivcam/CCameras.h>

namespace kiv::cam {

void CGenICamBackend::controllerNames(TArray<CString>& out)
{
    // Listed where a camera type needs it, so that a world without GenICam cameras shows none.
    CCameras* catalogue = cameras();
    for (int i = 0; i < catalogue->cameraCount(); ++i) {
        if (catalogue->cameraAt(i)->controller == CString(CGenICamController::Name)) {
            out.add(CGenICamController::Name);
            return;
        }
    }
}

TSharedPtr<IController> CGenICamBackend::createController(const CString& name)
{
    return name == CString(CGenICamController::Name)
        ? TSharedPtr<IController>(new CGenICamController)
        : TSharedPtr<IController>();
}

KIVCAM_REGISTER_BACKEND(CGenICamBackend);

} // namespace kiv::cam
