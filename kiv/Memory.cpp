// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "Memory.h"

#include <cstddef>
#include <cstdlib>
#include <limits>

namespace kiv {

void* Alloc(std::uint64_t size)
{
    if (size > static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()))
        return nullptr;
    return std::malloc(size == 0 ? 1 : static_cast<std::size_t>(size));
}

void Free(void* pointer)
{
    std::free(pointer);
}

} // namespace kiv
