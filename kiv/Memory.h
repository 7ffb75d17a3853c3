// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/kiv_export.h>

#include <cstdint>

namespace kiv {

// Raw storage for the core library's containers. Alloc gives null, never throws, when the
// request cannot be met; sizes beyond what the address space can hold are refused outright.
KIV_EXPORT void* Alloc(std::uint64_t size);
KIV_EXPORT void Free(void* pointer);

} // namespace kiv
