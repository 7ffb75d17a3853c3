// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "ICamera.h"

namespace kiv::cam {

ICamera::~ICamera() = default;

bool ICamera::IsSupportedBaseDeviceType(const CString& baseType) const
{
    return baseTypes.contains(baseType);
}

} // namespace kiv::cam
