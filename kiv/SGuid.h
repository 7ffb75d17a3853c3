// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/kiv_export.h>

#include <compare>
#include <cstdint>

namespace kiv {

// A 16-byte identifier, copied by value. Its text form is
// "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}" in lower-case hexadecimal.
struct KIV_EXPORT SGuid {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::uint8_t data4[8] = {};

    bool isNull() const { return *this == SGuid(); }
    CString ToString() const;
    // The identifier of a text in the form above, braces optional, any letter case;
    // the null identifier, with *ok false, for anything else.
    static SGuid Parse(const CString& text, bool* ok = nullptr);

    friend bool operator==(const SGuid&, const SGuid&) = default;
    friend auto operator<=>(const SGuid&, const SGuid&) = default;
};

static_assert(sizeof(SGuid) == 16);

} // namespace kiv
