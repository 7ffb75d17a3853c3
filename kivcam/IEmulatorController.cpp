// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IEmulatorController.h"

namespace kiv::cam {

IEmulatorController::~IEmulatorController() = default;

} // namespace kiv::cam
