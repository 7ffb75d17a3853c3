// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IFileSystem.h"

namespace kiv {

IFileSystem::~IFileSystem() = default;

} // namespace kiv
