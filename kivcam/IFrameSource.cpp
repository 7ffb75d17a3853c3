// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IFrameSource.h"

namespace kiv::cam {

IFrameSource::~IFrameSource() = default;

SFrameStatistics IFrameSource::statistics() const
{
    return {};
}

} // namespace kiv::cam
