// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CFilterFactory.h"

#include "Filters.h"

#include <kiv/EDataType.h>
#include <kiv/PixelType.h>

#include <array>
#include <string_view>
#include <utility>

namespace kiv::reduce {

namespace {

constexpr std::array<std::pair<std::string_view, FilterFunction>, 5> filterTable{{
    {"Passthrough8", filters::Passthrough8},
    {"Linear16", filters::Linear16},
    {"Signed16", filters::Signed16},
    {"Float32", filters::Float32},
    {"Colour", filters::Colour},
}};

bool isColour(std::string_view name)
{
    return name.starts_with("RGB") || name.starts_with("BGR") || name.starts_with("Bayer")
        || name.starts_with("YUV");
}

} // namespace

CFilterFactory::~CFilterFactory() = default;

void CFilterFactory::getFilterNames(TArray<CString>& out)
{
    for (const auto& [name, filter] : filterTable)
        out.add(CString(name));
}

CString CFilterFactory::defaultFilterFor(const SGuid& pixelType)
{
    const CString name = PixelTypeToString(pixelType);
    if (name.empty())
        return {};
    if (isColour(name.view()))
        return "Colour";
    switch (PixelTypeToDataType(pixelType)) {
    case DATA_TYPE_UINT8:
        return "Passthrough8";
    case DATA_TYPE_INT16:
        return "Signed16";
    case DATA_TYPE_FLOAT32:
    case DATA_TYPE_FLOAT64:
        return "Float32";
    default:
        return "Linear16";
    }
}

FilterFunction CFilterFactory::filterByName(const CString& name)
{
    for (const auto& [filterName, filter] : filterTable) {
        if (filterName == name.view())
            return filter;
    }
    return nullptr;
}

CFilterFactory* filterFactory()
{
    static CFilterFactory instance;
    return &instance;
}

} // namespace kiv::reduce
