// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IFrameListener.h"

namespace kiv::cam {

IFrameListener::~IFrameListener() = default;

} // namespace kiv::cam
