// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/kiv_export.h>

#include <exception>
#include <string>

namespace kiv {

// Base of the exceptions the core library throws; what() gives the formatted message.
class KIV_EXPORT CException : public std::exception {
public:
    explicit CException(std::string message);
    const char* what() const noexcept override;

private:
    std::string m_message;
};

class KIV_EXPORT CBadAllocException : public CException {
public:
    CBadAllocException();
};

class KIV_EXPORT COutOfRangeException : public CException {
public:
    explicit COutOfRangeException(std::string message);
};

[[noreturn]] KIV_EXPORT void ThrowBadAllocException();
[[noreturn]] KIV_EXPORT void ThrowOutOfRangeException(const char* format, ...)
    __attribute__((format(printf, 1, 2)));

} // namespace kiv
