// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/CBackend.h>

namespace kiv::cam {

// The GenICam controller, which the GigE Vision, USB3 Vision and emulated GenICam camera types
// name. It reaches no hardware of its own: the devices it connects through do. Its name is
// listed only while a camera type names it.
class CGenICamBackend : public CBackend {
public:
    void controllerNames(TArray<CString>& out) override;
    TSharedPtr<IController> createController(const CString& name) override;
};

} // namespace kiv::cam
