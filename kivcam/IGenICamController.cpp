// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IGenICamController.h"

namespace kiv::cam {

IGenICamController::~IGenICamController() = default;

} // namespace kiv::cam
