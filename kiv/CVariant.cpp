// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CVariant.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

namespace kiv {

// An integer of any of the variant's integer types: sign and magnitude.
struct CVariant::SInteger {
    bool negative = false;
    unsigned long long magnitude = 0;
};

namespace {

struct SRange {
    long long min;
    unsigned long long max;
};

bool isSigned(CVariant::EType type)
{
    switch (type) {
    case CVariant::TYPE_INT8:
    case CVariant::TYPE_INT16:
    case CVariant::TYPE_INT32:
    case CVariant::TYPE_INT64:
    case CVariant::TYPE_ENUM:
        return true;
    default:
        return false;
    }
}

bool isUnsigned(CVariant::EType type)
{
    switch (type) {
    case CVariant::TYPE_UINT8:
    case CVariant::TYPE_UINT16:
    case CVariant::TYPE_UINT32:
    case CVariant::TYPE_UINT64:
        return true;
    default:
        return false;
    }
}

SRange rangeOf(CVariant::EType type)
{
    switch (type) {
    case CVariant::TYPE_INT8:
        return {std::numeric_limits<std::int8_t>::min(), std::numeric_limits<std::int8_t>::max()};
    case CVariant::TYPE_UINT8:
        return {0, std::numeric_limits<std::uint8_t>::max()};
    case CVariant::TYPE_INT16:
        return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()};
    case CVariant::TYPE_UINT16:
        return {0, std::numeric_limits<std::uint16_t>::max()};
    case CVariant::TYPE_INT32:
        return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
    case CVariant::TYPE_UINT32:
        return {0, std::numeric_limits<std::uint32_t>::max()};
    case CVariant::TYPE_UINT64:
        return {0, std::numeric_limits<std::uint64_t>::max()};
    default:
        return {std::numeric_limits<long long>::min(),
            static_cast<unsigned long long>(std::numeric_limits<long long>::max())};
    }
}

unsigned long long magnitudeOf(long long value)
{
    // Negating in unsigned arithmetic keeps the smallest long long defined.
    return value < 0 ? 0ULL - static_cast<unsigned long long>(value)
                     : static_cast<unsigned long long>(value);
}

template <typename Number> CString numberText(Number value)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return CString(buffer, static_cast<int>(result.ptr - buffer));
}

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

bool equalsNoCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i]))
            return false;
    }
    return true;
}

// The number a variant of this type holds: a float keeps single precision, and a finite
// number that would round to infinity as a float does not fit.
std::optional<double> realOf(CVariant::EType type, double real)
{
    if (type != CVariant::TYPE_FLOAT)
        return real;
    // Half a unit in the last place above the largest float; from there on a float overflows.
    if (std::isfinite(real) && std::fabs(real) >= 0x1.ffffffp127)
        return std::nullopt;
    return static_cast<double>(static_cast<float>(real));
}

} // namespace

CVariant::CVariant(EType type) : m_type(type)
{
    if (type == TYPE_BOOL)
        m_value = false;
    else if (isSigned(type))
        m_value = 0LL;
    else if (isUnsigned(type))
        m_value = 0ULL;
    else if (type == TYPE_FLOAT || type == TYPE_DOUBLE)
        m_value = 0.0;
    else if (type == TYPE_STRING)
        m_value = CString();
    else if (type == TYPE_GUID)
        m_value = SGuid();
    if (type == TYPE_ENUM)
        m_enumItems = TSharedPtr<const TArray<SEnumItem>>(new TArray<SEnumItem>());
}

CVariant::CVariant(bool value) : m_type(TYPE_BOOL), m_value(value)
{
}
CVariant::CVariant(int value) : m_type(TYPE_INT32), m_value(static_cast<long long>(value))
{
}
CVariant::CVariant(unsigned value)
    : m_type(TYPE_UINT32), m_value(static_cast<unsigned long long>(value))
{
}
CVariant::CVariant(long value) : m_type(TYPE_INT64), m_value(static_cast<long long>(value))
{
}
CVariant::CVariant(unsigned long value)
    : m_type(TYPE_UINT64), m_value(static_cast<unsigned long long>(value))
{
}
CVariant::CVariant(long long value) : m_type(TYPE_INT64), m_value(value)
{
}
CVariant::CVariant(unsigned long long value) : m_type(TYPE_UINT64), m_value(value)
{
}
CVariant::CVariant(double value) : m_type(TYPE_DOUBLE), m_value(value)
{
}
CVariant::CVariant(const CString& value) : m_type(TYPE_STRING), m_value(value)
{
}
CVariant::CVariant(const char* value) : m_type(TYPE_STRING), m_value(CString(value))
{
}
CVariant::CVariant(const SGuid& value) : m_type(TYPE_GUID), m_value(value)
{
}

CVariant CVariant::Enum(const TArray<SEnumItem>& items, long long value)
{
    CVariant variant;
    variant.m_type = TYPE_ENUM;
    variant.m_value = value;
    variant.m_enumItems = TSharedPtr<const TArray<SEnumItem>>(new TArray<SEnumItem>(items));
    return variant;
}

CString CVariant::ToString() const
{
    switch (m_type) {
    case TYPE_EMPTY:
        return {};
    case TYPE_BOOL:
        return std::get<bool>(m_value) ? "true" : "false";
    case TYPE_FLOAT:
        return numberText(static_cast<float>(std::get<double>(m_value)));
    case TYPE_DOUBLE:
        return numberText(std::get<double>(m_value));
    case TYPE_STRING:
        return std::get<CString>(m_value);
    case TYPE_GUID:
        return std::get<SGuid>(m_value).ToString();
    case TYPE_ENUM:
        if (const SEnumItem* item = FindEnumItem(std::get<long long>(m_value)))
            return item->name;
        return numberText(std::get<long long>(m_value));
    default:
        if (isUnsigned(m_type))
            return numberText(std::get<unsigned long long>(m_value));
        return numberText(std::get<long long>(m_value));
    }
}

long long CVariant::ToInt64() const
{
    CVariant converted(TYPE_INT64);
    return converted.Assign(*this) ? std::get<long long>(converted.m_value) : 0;
}

unsigned long long CVariant::ToUInt64() const
{
    CVariant converted(TYPE_UINT64);
    return converted.Assign(*this) ? std::get<unsigned long long>(converted.m_value) : 0;
}

double CVariant::ToDouble() const
{
    CVariant converted(TYPE_DOUBLE);
    return converted.Assign(*this) ? std::get<double>(converted.m_value) : 0.0;
}

bool CVariant::ToBool() const
{
    CVariant converted(TYPE_BOOL);
    return converted.Assign(*this) && std::get<bool>(converted.m_value);
}

SGuid CVariant::ToGuid() const
{
    CVariant converted(TYPE_GUID);
    return converted.Assign(*this) ? std::get<SGuid>(converted.m_value) : SGuid();
}

int CVariant::GetEnumCount() const
{
    return m_enumItems ? m_enumItems->count() : 0;
}

CString CVariant::GetEnumName(int index) const
{
    return index >= 0 && index < GetEnumCount() ? (*m_enumItems)[index].name : CString();
}

long long CVariant::GetEnumValue(int index) const
{
    return index >= 0 && index < GetEnumCount() ? (*m_enumItems)[index].value : 0;
}

bool CVariant::IsEnumValueValid(long long value) const
{
    return FindEnumItem(value) != nullptr;
}

const CVariant::SEnumItem* CVariant::FindEnumItem(long long value) const
{
    if (!m_enumItems)
        return nullptr;
    for (const SEnumItem& item : *m_enumItems) {
        if (item.value == value)
            return &item;
    }
    return nullptr;
}

bool CVariant::Assign(const CVariant& value)
{
    if (m_type == TYPE_EMPTY) {
        *this = value;
        return true;
    }
    if (value.m_type == TYPE_STRING)
        return AssignText(std::get<CString>(value.m_value));
    if (value.m_type == TYPE_EMPTY)
        return false;

    switch (m_type) {
    case TYPE_STRING:
        m_value = value.ToString();
        return true;
    case TYPE_GUID:
        if (value.m_type != TYPE_GUID)
            return false;
        m_value = value.m_value;
        return true;
    case TYPE_FLOAT:
    case TYPE_DOUBLE: {
        double real = 0;
        if (std::holds_alternative<double>(value.m_value))
            real = std::get<double>(value.m_value);
        else if (std::holds_alternative<long long>(value.m_value))
            real = static_cast<double>(std::get<long long>(value.m_value));
        else if (std::holds_alternative<unsigned long long>(value.m_value))
            real = static_cast<double>(std::get<unsigned long long>(value.m_value));
        else if (std::holds_alternative<bool>(value.m_value))
            real = std::get<bool>(value.m_value) ? 1.0 : 0.0;
        else
            return false;
        const std::optional<double> stored = realOf(m_type, real);
        if (!stored)
            return false;
        m_value = *stored;
        return true;
    }
    default:
        break;
    }

    SInteger number;
    if (std::holds_alternative<bool>(value.m_value)) {
        number.magnitude = std::get<bool>(value.m_value) ? 1 : 0;
    } else if (std::holds_alternative<long long>(value.m_value)) {
        const long long signedValue = std::get<long long>(value.m_value);
        number = {signedValue < 0, magnitudeOf(signedValue)};
    } else if (std::holds_alternative<unsigned long long>(value.m_value)) {
        number.magnitude = std::get<unsigned long long>(value.m_value);
    } else if (std::holds_alternative<double>(value.m_value)) {
        // Only whole numbers that an unsigned 64-bit magnitude can hold convert.
        const double real = std::get<double>(value.m_value);
        if (!std::isfinite(real) || std::trunc(real) != real || std::fabs(real) >= 0x1p64)
            return false;
        number = {real < 0, static_cast<unsigned long long>(std::fabs(real))};
    } else {
        return false;
    }
    return AssignInteger(number);
}

bool CVariant::AssignInteger(const SInteger& number)
{
    if (m_type == TYPE_BOOL) {
        if (number.negative || number.magnitude > 1)
            return false;
        m_value = number.magnitude == 1;
        return true;
    }
    const SRange range = rangeOf(m_type);
    if (number.negative ? number.magnitude > magnitudeOf(range.min) : number.magnitude > range.max)
        return false;
    if (isUnsigned(m_type)) {
        m_value = number.negative ? 0ULL : number.magnitude;
        return true;
    }
    const long long signedValue = number.negative ? static_cast<long long>(0ULL - number.magnitude)
                                                  : static_cast<long long>(number.magnitude);
    if (m_type == TYPE_ENUM && !IsEnumValueValid(signedValue))
        return false;
    m_value = signedValue;
    return true;
}

bool CVariant::AssignText(const CString& text)
{
    switch (m_type) {
    case TYPE_STRING:
        m_value = text;
        return true;
    case TYPE_GUID: {
        bool ok = false;
        const SGuid guid = SGuid::Parse(text, &ok);
        if (ok)
            m_value = guid;
        return ok;
    }
    case TYPE_ENUM:
        for (const SEnumItem& item : *m_enumItems) {
            if (item.name == text) {
                m_value = item.value;
                return true;
            }
        }
        break;
    case TYPE_BOOL:
        if (equalsNoCase(trimmed(text.view()), "true")
            || equalsNoCase(trimmed(text.view()), "false")) {
            m_value = equalsNoCase(trimmed(text.view()), "true");
            return true;
        }
        break;
    case TYPE_FLOAT:
    case TYPE_DOUBLE: {
        const std::string_view digits = trimmed(text.view());
        double real = 0;
        const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), real);
        if (digits.empty() || result.ec != std::errc()
            || result.ptr != digits.data() + digits.size())
            return false;
        const std::optional<double> stored = realOf(m_type, real);
        if (!stored)
            return false;
        m_value = *stored;
        return true;
    }
    default:
        break;
    }

    // Integers: an optional sign, then decimal digits or 0x and hexadecimal digits.
    std::string_view digits = trimmed(text.view());
    SInteger number;
    if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) {
        number.negative = digits.front() == '-';
        digits.remove_prefix(1);
    }
    int base = 10;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        base = 16;
        digits.remove_prefix(2);
    }
    const auto result
        = std::from_chars(digits.data(), digits.data() + digits.size(), number.magnitude, base);
    if (digits.empty() || result.ec != std::errc() || result.ptr != digits.data() + digits.size())
        return false;
    if (number.magnitude == 0)
        number.negative = false;
    return AssignInteger(number);
}

} // namespace kiv
