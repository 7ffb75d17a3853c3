// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CControllerFactory.h"

#include "CBackend.h"

namespace kiv::cam {

CControllerFactory::~CControllerFactory() = default;

TSharedPtr<IController> CControllerFactory::createController(const CString& name)
{
    for (const TSharedPtr<CBackend>& backend : CBackend::all()) {
        if (TSharedPtr<IController> controller = backend->createController(name))
            return controller;
    }
    return {};
}

void CControllerFactory::getControllerNames(TArray<CString>& out)
{
    for (const TSharedPtr<CBackend>& backend : CBackend::all())
        backend->controllerNames(out);
}

CControllerFactory* controllerFactory()
{
    static CControllerFactory instance;
    return &instance;
}

} // namespace kiv::cam
