// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IFile.h"

namespace kiv {

IFile::~IFile() = default;

} // namespace kiv
