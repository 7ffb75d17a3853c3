// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/EDataType.h>
#include <kiv/SGuid.h>
#include <kiv/TSharedPtr.h>
#include <kiv/kiv_export.h>

#include <cstddef>
#include <cstdint>

namespace kiv {

// An image in memory: width x height pixels of one pixel type, unpacked, so that each pixel is
// PixelTypeToChannelCount() samples of PixelTypeToDataType() (packed pixel types arrive
// unpacked, as a frame grabber delivers them). Rows are stride() bytes apart, a multiple of 4.
//
// Its producer fills the pixels and the fields below, then hands the image on as a
// TSharedPtr<const CImage>: from then on it is read-only and shared, never copied, and any
// number of readers on any threads may hold it for as long as they need.
class KIV_EXPORT CImage {
public:
    // A new image with uninitialised pixels; empty for a width or height below 1, an identifier
    // that is not a pixel type, or storage that cannot be had.
    static TSharedPtr<CImage> Create(int width, int height, const SGuid& pixelType);

    ~CImage();
    CImage(const CImage&) = delete;
    CImage& operator=(const CImage&) = delete;

    int width() const { return m_width; }
    int height() const { return m_height; }
    const SGuid& pixelType() const { return m_pixelType; }
    EDataType dataType() const { return m_dataType; }
    int channels() const { return m_channels; }
    int bytesPerPixel() const { return m_channels * DataTypeSize(m_dataType); }
    std::size_t stride() const { return m_stride; }
    std::size_t byteCount() const { return m_stride * static_cast<std::size_t>(m_height); }

    unsigned char* bits() { return m_bits; }
    const unsigned char* bits() const { return m_bits; }
    // The first sample of row y, as the image's sample type T.
    template <typename T> T* row(int y)
    {
        return reinterpret_cast<T*>(m_bits + m_stride * static_cast<std::size_t>(y));
    }
    template <typename T> const T* row(int y) const
    {
        return reinterpret_cast<const T*>(m_bits + m_stride * static_cast<std::size_t>(y));
    }

    // Where the significant bits of integer samples sit: adBits of them (0: every bit of the
    // sample), shifted left by adBitShift.
    std::int32_t adBits = 0;
    std::int32_t adBitShift = 0;
    // The image's place in its stream, counted from 0; a gap means images the camera took that
    // never arrived.
    std::uint64_t frameNumber = 0;
    // When the image was taken, in nanoseconds of a steady clock.
    std::int64_t timestamp = 0;

private:
    CImage() = default;

    int m_width = 0;
    int m_height = 0;
    SGuid m_pixelType;
    EDataType m_dataType = DATA_TYPE_UNKNOWN;
    int m_channels = 0;
    std::size_t m_stride = 0;
    unsigned char* m_bits = nullptr;
};

} // namespace kiv
