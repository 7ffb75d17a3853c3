// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CException.h"

#include "strprintf.h"

#include <cstdarg>
#include <utility>

namespace kiv {

CException::CException(std::string message) : m_message(std::move(message))
{
}

const char* CException::what() const noexcept
{
    return m_message.c_str();
}

CBadAllocException::CBadAllocException() : CException("Out of memory.")
{
}

COutOfRangeException::COutOfRangeException(std::string message) : CException(std::move(message))
{
}

void ThrowBadAllocException()
{
    throw CBadAllocException();
}

void ThrowOutOfRangeException(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const CString message = vstrprintf(format, args);
    va_end(args);
    throw COutOfRangeException(std::string(message.view()));
}

} // namespace kiv
