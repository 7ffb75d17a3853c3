// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/kiv_export.h>

#include <string>
#include <string_view>

namespace kiv {

// A narrow UTF-8 text with value semantics. c_str() gives null for the empty text, so every
// reader must treat a null text as empty.
class KIV_EXPORT CString {
public:
    CString() = default;
    // length -1 takes the text up to its terminating zero; a null text gives the empty string.
    CString(const char* text, int length = -1);
    explicit CString(std::string_view text);

    CString& operator=(const char* text);

    const char* c_str() const;
    // The text, never null: "" for the empty string. For code of the library's own that hands
    // texts on to C functions; readers of c_str() must still expect null.
    const char* data() const { return m_text.c_str(); }
    bool empty() const { return m_text.empty(); }
    int length() const { return static_cast<int>(m_text.size()); }
    // 0 for equal texts; otherwise the sign of the first differing byte, compared unsigned.
    int compare(const CString& other) const;
    std::string_view view() const { return m_text; }

    CString& operator+=(const CString& other);
    friend CString operator+(CString left, const CString& right) { return left += right; }
    friend bool operator==(const CString& a, const CString& b) { return a.m_text == b.m_text; }
    friend auto operator<=>(const CString& a, const CString& b) { return a.m_text <=> b.m_text; }

private:
    std::string m_text;
};

} // namespace kiv
