// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IController.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// The catalogue of controllers, collected from the backends.
class KIVCAM_EXPORT CControllerFactory {
public:
    CControllerFactory() = default;
    virtual ~CControllerFactory();
    CControllerFactory(const CControllerFactory&) = delete;
    CControllerFactory& operator=(const CControllerFactory&) = delete;

    // A new controller of that name; empty for a name no backend knows.
    virtual TSharedPtr<IController> createController(const CString& name);
    // Appends the names of all controllers, in catalogue order.
    virtual void getControllerNames(TArray<CString>& out);
};

KIVCAM_EXPORT CControllerFactory* controllerFactory();

} // namespace kiv::cam
