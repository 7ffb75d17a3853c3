// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <cstdint>

namespace kiv {

// The type of one sample of an image, as it sits in memory after unpacking.
enum EDataType : std::int32_t {
    DATA_TYPE_UNKNOWN = 0,
    DATA_TYPE_UINT8 = 1,
    DATA_TYPE_INT8 = 2,
    DATA_TYPE_UINT16 = 3,
    DATA_TYPE_INT16 = 4,
    DATA_TYPE_UINT32 = 5,
    DATA_TYPE_INT32 = 6,
    DATA_TYPE_FLOAT32 = 7,
    DATA_TYPE_FLOAT64 = 8,
};

// The bytes of one sample of that type; 0 for DATA_TYPE_UNKNOWN and values outside the type.
constexpr int DataTypeSize(EDataType type)
{
    switch (type) {
    case DATA_TYPE_UINT8:
    case DATA_TYPE_INT8:
        return 1;
    case DATA_TYPE_UINT16:
    case DATA_TYPE_INT16:
        return 2;
    case DATA_TYPE_UINT32:
    case DATA_TYPE_INT32:
    case DATA_TYPE_FLOAT32:
        return 4;
    case DATA_TYPE_FLOAT64:
        return 8;
    default:
        return 0;
    }
}

} // namespace kiv
