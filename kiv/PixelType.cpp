// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "PixelType.h"

#include <array>
#include <string_view>

namespace kiv {

namespace {

struct SPixelType {
    std::string_view name;
    EDataType dataType;
    int channels;
};

constexpr std::array<SPixelType, 21> pixelTypes{{
    {"Mono8", DATA_TYPE_UINT8, 1},
    {"Mono10", DATA_TYPE_UINT16, 1},
    {"Mono10Packed", DATA_TYPE_UINT16, 1},
    {"Mono10p", DATA_TYPE_UINT16, 1},
    {"Mono12", DATA_TYPE_UINT16, 1},
    {"Mono12Packed", DATA_TYPE_UINT16, 1},
    {"Mono12p", DATA_TYPE_UINT16, 1},
    {"Mono14", DATA_TYPE_UINT16, 1},
    {"Mono16", DATA_TYPE_UINT16, 1},
    {"Mono16s", DATA_TYPE_INT16, 1},
    {"Mono32f", DATA_TYPE_FLOAT32, 1},
    {"RGB8", DATA_TYPE_UINT8, 3},
    {"BGR8", DATA_TYPE_UINT8, 3},
    {"RGBA8", DATA_TYPE_UINT8, 4},
    {"BGRA8", DATA_TYPE_UINT8, 4},
    {"BayerRG8", DATA_TYPE_UINT8, 1},
    {"BayerGR8", DATA_TYPE_UINT8, 1},
    {"BayerGB8", DATA_TYPE_UINT8, 1},
    {"BayerBG8", DATA_TYPE_UINT8, 1},
    {"BayerRG16", DATA_TYPE_UINT16, 1},
    {"YUV422_8", DATA_TYPE_UINT8, 2},
}};

SGuid guidOf(std::size_t index)
{
    SGuid guid;
    guid.data1 = 0x6b697670; // "kivp"
    guid.data3 = 0x4000;
    guid.data4[0] = 0x80;
    guid.data4[7] = static_cast<std::uint8_t>(index + 1);
    return guid;
}

// The position of a pixel type in the table, or -1.
int indexOf(const SGuid& pixelType)
{
    const int index = pixelType.data4[7] - 1;
    if (index < 0 || index >= static_cast<int>(pixelTypes.size()) || guidOf(index) != pixelType)
        return -1;
    return index;
}

} // namespace

void GetPixelTypeNames(TArray<CString>& out)
{
    for (const SPixelType& type : pixelTypes)
        out.add(CString(type.name));
}

CString PixelTypeToString(const SGuid& pixelType)
{
    const int index = indexOf(pixelType);
    return index < 0 ? CString() : CString(pixelTypes[index].name);
}

SGuid ParsePixelType(const CString& name)
{
    for (std::size_t i = 0; i < pixelTypes.size(); ++i) {
        if (pixelTypes[i].name == name.view())
            return guidOf(i);
    }
    return {};
}

EDataType PixelTypeToDataType(const SGuid& pixelType)
{
    const int index = indexOf(pixelType);
    return index < 0 ? DATA_TYPE_UNKNOWN : pixelTypes[index].dataType;
}

int PixelTypeToChannelCount(const SGuid& pixelType)
{
    const int index = indexOf(pixelType);
    return index < 0 ? 0 : pixelTypes[index].channels;
}

} // namespace kiv
