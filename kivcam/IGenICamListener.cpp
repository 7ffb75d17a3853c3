// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IGenICamListener.h"

namespace kiv::cam {

IGenICamListener::~IGenICamListener() = default;

} // namespace kiv::cam
