#include "CFilterFactory.h"

#include <kiv/EDataType.h>
#include <kiv/PixelType.h>

#include <string_view>

namespace kiv::reduce {

namespace {

bool isColour(std::string_view name)
{
    return name.starts_with("RGB") || name.starts_with("BGR") || name.starts_with("Bayer")
        || name.starts_with("YUV");
}

} // namespace

CFilterFactory::~CFilterFactory() = default;

void CFilterFactory::getFilterNames(TArray<CString>& out)
{
    for (const char* name : {"Passthrough8", "Linear16", "Signed16", "Float32", "Colour"})
        out.add(name);
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

CFilterFactory* filterFactory()
{
    static CFilterFactory instance;
    return &instance;
}

} // namespace kiv::reduce
