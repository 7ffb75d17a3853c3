// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/kiv_export.h>

#include <string>

namespace kiv {

// A wide text, used for file paths: UTF-16 where wchar_t has 16 bits, UTF-32 on Linux.
// Unlike CString, c_str() is never null.
class KIV_EXPORT CStringW {
public:
    CStringW() = default;
    // Converts from UTF-8; length -1 takes the text up to its terminating zero.
    CStringW(const char* text, int length = -1);
    CStringW(const wchar_t* text, int length = -1);
    explicit CStringW(const CString& text);

    CStringW& operator=(const char* text);

    const wchar_t* c_str() const { return m_text.c_str(); }
    bool empty() const { return m_text.empty(); }
    int length() const { return static_cast<int>(m_text.size()); }
    CString ToUtf8() const;

    // A writable buffer of at least minLength characters (and never shorter than the text).
    // After writing into it directly, ReleaseBuffer() measures the text up to the first zero.
    wchar_t* GetBuffer(int minLength);
    void ReleaseBuffer();

    // Case-insensitive equality, with Unicode case folding.
    bool EqualsNoCase(const wchar_t* other) const;

    friend bool operator==(const CStringW& a, const CStringW& b) { return a.m_text == b.m_text; }

private:
    std::wstring m_text;
};

} // namespace kiv
