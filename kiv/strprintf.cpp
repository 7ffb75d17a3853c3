// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "strprintf.h"

#include <clocale>
#include <cstdio>
#include <locale.h>
#include <string>

namespace kiv {

namespace {

// Wide strings are converted by the C library through the thread's LC_CTYPE, so formatting runs
// under a UTF-8 character locale of its own. The locale is made once and never freed.
class CUtf8Scope {
public:
    CUtf8Scope()
    {
        static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        m_previous = utf8 ? uselocale(utf8) : nullptr;
    }
    ~CUtf8Scope()
    {
        if (m_previous)
            uselocale(m_previous);
    }
    CUtf8Scope(const CUtf8Scope&) = delete;
    CUtf8Scope& operator=(const CUtf8Scope&) = delete;

private:
    locale_t m_previous = nullptr;
};

} // namespace

CString strprintf(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    CString text = vstrprintf(format, args);
    va_end(args);
    return text;
}

CString vstrprintf(const char* format, va_list args)
{
    if (!format)
        return {};
    const CUtf8Scope scope;
    va_list measure;
    va_copy(measure, args);
    const int length = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (length <= 0)
        return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, args);
    return CString(text);
}

} // namespace kiv
