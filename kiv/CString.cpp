// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CString.h"

#include <cstring>

namespace kiv {

CString::CString(const char* text, int length)
{
    if (text)
        m_text.assign(text, length < 0 ? std::strlen(text) : static_cast<std::size_t>(length));
}

CString::CString(std::string_view text) : m_text(text)
{
}

CString& CString::operator=(const char* text)
{
    *this = CString(text);
    return *this;
}

const char* CString::c_str() const
{
    return m_text.empty() ? nullptr : m_text.c_str();
}

int CString::compare(const CString& other) const
{
    return m_text.compare(other.m_text);
}

CString& CString::operator+=(const CString& other)
{
    m_text += other.m_text;
    return *this;
}

} // namespace kiv
