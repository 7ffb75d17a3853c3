// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CMemFile.h"

#include "CException.h"
#include "Memory.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace kiv {

TSharedPtr<CMemFile> CMemFile::Create()
{
    return TSharedPtr<CMemFile>(new CMemFile);
}

CMemFile::~CMemFile()
{
    ReleaseData();
}

void CMemFile::ReleaseData()
{
    if (m_owned)
        Free(m_data);
    m_data = nullptr;
    m_size = m_capacity = m_position = 0;
    m_owned = false;
}

void CMemFile::Attach(unsigned char* data, std::uint64_t size, bool takeOwnership)
{
    ReleaseData();
    m_data = data;
    m_size = m_capacity = data ? size : 0;
    m_owned = takeOwnership;
}

std::uint64_t CMemFile::Read(void* buffer, std::uint64_t size)
{
    const std::uint64_t count = m_position < m_size ? std::min(size, m_size - m_position) : 0;
    if (count > 0)
        std::memcpy(buffer, m_data + m_position, count);
    m_position += count;
    return count;
}

std::uint64_t CMemFile::Write(const void* data, std::uint64_t size)
{
    if (size == 0)
        return 0;
    if (size > std::numeric_limits<std::uint64_t>::max() - m_position)
        ThrowBadAllocException();
    const std::uint64_t end = m_position + size;
    // data may lie in the file's own bytes: the old storage goes only after they are copied.
    unsigned char* replaced = nullptr;
    if (end > m_capacity) {
        const std::uint64_t capacity = std::max(end, m_capacity * 2);
        auto* grown = static_cast<unsigned char*>(Alloc(capacity));
        if (!grown)
            ThrowBadAllocException();
        if (m_size > 0)
            std::memcpy(grown, m_data, m_size);
        if (m_owned)
            replaced = m_data;
        m_data = grown;
        m_capacity = capacity;
        m_owned = true;
    }
    // A position beyond the end leaves a gap, which reads as zeros.
    if (m_position > m_size)
        std::memset(m_data + m_size, 0, m_position - m_size);
    std::memmove(m_data + m_position, data, size);
    Free(replaced);
    m_position = end;
    m_size = std::max(m_size, end);
    return size;
}

bool CMemFile::Seek(std::int64_t offset, ESeekOrigin origin)
{
    const std::int64_t base = origin == SEEK_FROM_BEGIN ? 0
        : origin == SEEK_FROM_CURRENT                   ? static_cast<std::int64_t>(m_position)
                                                        : static_cast<std::int64_t>(m_size);
    if (offset < -base || offset > std::numeric_limits<std::int64_t>::max() - base)
        return false;
    m_position = static_cast<std::uint64_t>(base + offset);
    return true;
}

} // namespace kiv
