// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IDevice.h"

namespace kiv::cam {

IDevice::~IDevice() = default;

CString IDevice::errorMessage() const
{
    return {};
}

} // namespace kiv::cam
