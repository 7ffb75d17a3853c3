// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/kiv_export.h>

#include <cstdint>

namespace kiv {

// A readable and writable stream of bytes with a position.
class KIV_EXPORT IFile {
public:
    enum ESeekOrigin { SEEK_FROM_BEGIN, SEEK_FROM_CURRENT, SEEK_FROM_END };

    virtual ~IFile();

    // Reads up to size bytes at the position and moves past them; gives the count read.
    virtual std::uint64_t Read(void* buffer, std::uint64_t size) = 0;
    // Writes size bytes at the position, growing the file as needed; gives the count written.
    virtual std::uint64_t Write(const void* data, std::uint64_t size) = 0;
    // Moves the position; false, with the position unchanged, for a place before the start.
    virtual bool Seek(std::int64_t offset, ESeekOrigin origin) = 0;
    virtual std::uint64_t Tell() const = 0;
    virtual std::uint64_t Size() const = 0;
};

} // namespace kiv
