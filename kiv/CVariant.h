// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/SGuid.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kiv/kiv_export.h>

#include <cstdint>
#include <variant>

namespace kiv {

// The tagged value of a parameter. Each type keeps its own range: a value handed to Assign is
// converted into the variant's type, and refused when it does not fit.
class KIV_EXPORT CVariant {
public:
    enum EType : std::int32_t {
        TYPE_EMPTY = 0,
        TYPE_BOOL = 1,
        TYPE_INT8 = 2,
        TYPE_UINT8 = 3,
        TYPE_INT16 = 4,
        TYPE_UINT16 = 5,
        TYPE_INT32 = 6,
        TYPE_UINT32 = 7,
        TYPE_INT64 = 8,
        TYPE_UINT64 = 9,
        TYPE_FLOAT = 10,
        TYPE_DOUBLE = 11,
        TYPE_STRING = 12,
        TYPE_GUID = 13,
        // A value from a fixed list of named values; its text form is the name.
        TYPE_ENUM = 14,
    };

    struct SEnumItem {
        CString name;
        long long value = 0;
    };

    CVariant() = default;
    // The zero value of a type: false, 0, the empty text or the null identifier. An enumeration
    // needs its items and is made with Enum().
    explicit CVariant(EType type);
    CVariant(bool value);
    CVariant(int value);
    CVariant(unsigned value);
    CVariant(long value);
    CVariant(unsigned long value);
    CVariant(long long value);
    CVariant(unsigned long long value);
    CVariant(double value);
    CVariant(const CString& value);
    CVariant(const char* value);
    CVariant(const SGuid& value);
    // An enumeration over items, holding value; value need not be one of them.
    static CVariant Enum(const TArray<SEnumItem>& items, long long value);

    EType getType() const { return m_type; }
    bool isEmpty() const { return m_type == TYPE_EMPTY; }

    // Text form: "true"/"false", decimal numbers, the shortest exact text of a floating-point
    // number, the text itself, the identifier's text, or the enumeration value's name.
    CString ToString() const;
    // The value converted as Assign would convert it; 0, false or null when it does not fit.
    long long ToInt64() const;
    unsigned long long ToUInt64() const;
    double ToDouble() const;
    bool ToBool() const;
    SGuid ToGuid() const;

    int GetEnumCount() const;
    // The name of the index-th value; empty for an index out of range or a non-enumeration.
    CString GetEnumName(int index) const;
    long long GetEnumValue(int index) const;
    bool IsEnumValueValid(long long value) const;

    // Stores value converted to this variant's type and gives true. Text is parsed (decimal or
    // 0x hexadecimal integers, "true"/"false"/"1"/"0", enumeration names or values); numbers
    // must fit the type's range. Gives false and keeps the old value when the value cannot be
    // represented. An empty variant takes the value with its type.
    bool Assign(const CVariant& value);

    friend bool operator==(const CVariant& a, const CVariant& b)
    {
        return a.m_type == b.m_type && a.m_value == b.m_value;
    }

private:
    struct SInteger;

    bool AssignText(const CString& text);
    bool AssignInteger(const SInteger& number);
    const SEnumItem* FindEnumItem(long long value) const;

    EType m_type = TYPE_EMPTY;
    // Signed integers and enumerations are held as long long, unsigned ones as unsigned long long,
    // both floating-point types as double.
    std::variant<std::monostate, bool, long long, unsigned long long, double, CString, SGuid>
        m_value;
    TSharedPtr<const TArray<SEnumItem>> m_enumItems;
};

} // namespace kiv
