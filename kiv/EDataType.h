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

} // namespace kiv
