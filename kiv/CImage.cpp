// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CImage.h"

#include "Memory.h"
#include "PixelType.h"

#include <cstddef>
#include <limits>

namespace kiv {

TSharedPtr<CImage> CImage::Create(int width, int height, const SGuid& pixelType)
{
    const int channels = PixelTypeToChannelCount(pixelType);
    if (width < 1 || height < 1 || channels == 0)
        return {};
    const EDataType dataType = PixelTypeToDataType(pixelType);
    const std::uint64_t pixelBytes = static_cast<std::uint64_t>(channels) * DataTypeSize(dataType);
    // A width below 2^31 at no more than 8 bytes a pixel cannot overflow the stride; the size is
    // checked against what any allocation could hold.
    const std::uint64_t stride = (static_cast<std::uint64_t>(width) * pixelBytes + 3) & ~3ULL;
    if (stride > static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()) / height)
        return {};
    const std::uint64_t bytes = stride * static_cast<std::uint64_t>(height);
    TSharedPtr<CImage> image(new CImage);
    image->m_bits = static_cast<unsigned char*>(Alloc(bytes));
    if (!image->m_bits)
        return {};
    image->m_width = width;
    image->m_height = height;
    image->m_pixelType = pixelType;
    image->m_dataType = dataType;
    image->m_channels = channels;
    image->m_stride = static_cast<std::size_t>(stride);
    return image;
}

CImage::~CImage()
{
    Free(m_bits);
}

} // namespace kiv
