// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IController.h"

namespace kiv::cam {

IController::~IController() = default;

IFrameSource* IController::frameSource()
{
    return nullptr;
}

CString IController::errorMessage() const
{
    return {};
}

} // namespace kiv::cam
