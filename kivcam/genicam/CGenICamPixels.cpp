// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGenICamPixels.h"

#include <kiv/PixelType.h>
#include <kiv/strprintf.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace kiv::cam {

namespace {

// How the samples of a format lie in the buffer.
enum EPacking {
    PACKING_BYTES, // 8-bit samples, as they are
    PACKING_WORDS, // 16-bit samples, little endian
    PACKING_PAIRS, // two 10- or 12-bit samples in three bytes (GigE Vision "Packed")
    PACKING_BITS, // bit-tight samples, least significant bit first (PFNC "p")
};

struct SFormat {
    std::uint32_t code;
    const char* name; // of the pixel type
    EPacking packing;
    int bits; // significant bits of a sample
};

constexpr std::array<SFormat, 15> formats{{
    {CGenICamPixels::MONO8, "Mono8", PACKING_BYTES, 8},
    {CGenICamPixels::MONO10, "Mono10", PACKING_WORDS, 10},
    {CGenICamPixels::MONO10_PACKED, "Mono10Packed", PACKING_PAIRS, 10},
    {CGenICamPixels::MONO10P, "Mono10p", PACKING_BITS, 10},
    {CGenICamPixels::MONO12, "Mono12", PACKING_WORDS, 12},
    {CGenICamPixels::MONO12_PACKED, "Mono12Packed", PACKING_PAIRS, 12},
    {CGenICamPixels::MONO12P, "Mono12p", PACKING_BITS, 12},
    {CGenICamPixels::MONO14, "Mono14", PACKING_WORDS, 14},
    {CGenICamPixels::MONO16, "Mono16", PACKING_WORDS, 16},
    {CGenICamPixels::RGB8, "RGB8", PACKING_BYTES, 8},
    {CGenICamPixels::BAYER_GR8, "BayerGR8", PACKING_BYTES, 8},
    {CGenICamPixels::BAYER_RG8, "BayerRG8", PACKING_BYTES, 8},
    {CGenICamPixels::BAYER_GB8, "BayerGB8", PACKING_BYTES, 8},
    {CGenICamPixels::BAYER_BG8, "BayerBG8", PACKING_BYTES, 8},
    {CGenICamPixels::BAYER_RG16, "BayerRG16", PACKING_WORDS, 16},
}};

const SFormat* find(std::uint32_t code)
{
    for (const SFormat& format : formats) {
        if (format.code == code)
            return &format;
    }
    return nullptr;
}

// The bits one pixel takes in the buffer.
std::uint64_t wireBits(const SFormat& format, int channels)
{
    switch (format.packing) {
    case PACKING_BYTES:
        return 8u * static_cast<unsigned>(channels);
    case PACKING_WORDS:
        return 16;
    case PACKING_PAIRS:
        return 12;
    case PACKING_BITS:
        return static_cast<unsigned>(format.bits);
    }
    return 0;
}

// Where line y begins: samples are counted from first at byte origin.
struct SLine {
    std::uint64_t origin;
    std::uint64_t first;
};

// Sample number s of a packed line, the pair or the bits counted from the line's origin.
std::uint16_t packedSample(const SFormat& format, const unsigned char* origin, std::uint64_t s)
{
    if (format.packing == PACKING_PAIRS) {
        const unsigned char* pair = origin + s / 2 * 3;
        const int low = format.bits - 8; // bits in the shared middle byte
        const unsigned mask = (1u << low) - 1;
        if (s % 2 == 0)
            return static_cast<std::uint16_t>((pair[0] << low) | (pair[1] & mask));
        return static_cast<std::uint16_t>((pair[2] << low) | ((pair[1] >> 4) & mask));
    }
    const std::uint64_t bit = s * static_cast<unsigned>(format.bits);
    const unsigned char* bytes = origin + bit / 8;
    const unsigned shift = bit % 8;
    // Only the bytes that hold the sample: the last sample may end the buffer.
    std::uint32_t value = 0;
    for (unsigned i = 0; i * 8 < shift + static_cast<unsigned>(format.bits); ++i)
        value |= std::uint32_t(bytes[i]) << (8 * i);
    return static_cast<std::uint16_t>((value >> shift) & ((1u << format.bits) - 1));
}

} // namespace

bool CGenICamPixels::Describe(std::uint32_t code, SGuid& pixelType, int& adBits, CString& error)
{
    const SFormat* format = find(code);
    if (!format) {
        error = strprintf("The camera's pixel format 0x%08X has no pixel type here: set the "
                          "camera's PixelFormat to Mono8, Mono10, Mono12, Mono14, Mono16, "
                          "Mono10Packed, Mono12Packed, Mono10p, Mono12p, a Bayer format or RGB8.",
            code);
        return false;
    }
    pixelType = ParsePixelType(CString(format->name));
    adBits = format->bits;
    return true;
}

TSharedPtr<CImage> CGenICamPixels::Convert(
    const SLayout& layout, const void* data, std::size_t size, CString& error)
{
    SGuid pixelType;
    int adBits = 0;
    if (!Describe(layout.format, pixelType, adBits, error))
        return {};
    const SFormat& format = *find(layout.format);
    const int channels = PixelTypeToChannelCount(pixelType);
    const std::uint64_t width = static_cast<unsigned>(std::max(layout.width, 0));
    const std::uint64_t height = static_cast<unsigned>(std::max(layout.height, 0));
    const std::uint64_t lineBits = width * wireBits(format, channels);
    const std::uint64_t lineBytes = (lineBits + 7) / 8;
    const std::uint64_t stride = lineBytes + static_cast<unsigned>(std::max(layout.xPadding, 0));
    // The sizes come from the camera: one whose bytes would not even fit 64 bits (which a
    // hostile camera could make wrap around to a small number) is refused as well.
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    const bool fits = layout.xPadding == 0
        ? lineBits <= (most - 7) / std::max(height, std::uint64_t{1})
        : stride <= (most - lineBytes) / std::max(height, std::uint64_t{1});
    if (layout.width < 1 || layout.height < 1 || layout.xPadding < 0 || !fits) {
        error = strprintf("The camera sent a %s image of %d x %d pixels with %d bytes of line "
                          "padding, which cannot be shown.",
            format.name, layout.width, layout.height, layout.xPadding);
        return {};
    }
    // Without padding the lines follow one another bit by bit, else byte-aligned.
    const std::uint64_t needed
        = layout.xPadding == 0 ? (height * lineBits + 7) / 8 : (height - 1) * stride + lineBytes;
    if (size < needed) {
        error = strprintf("The camera sent %zu bytes for a %d x %d %s image, which takes %llu: "
                          "the frame is incomplete.",
            size, layout.width, layout.height, format.name,
            static_cast<unsigned long long>(needed));
        return {};
    }
    TSharedPtr<CImage> image = CImage::Create(layout.width, layout.height, pixelType);
    if (!image) {
        error = strprintf("There is not enough memory for a %d x %d %s image.", layout.width,
            layout.height, format.name);
        return {};
    }
    image->adBits = adBits;
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (int y = 0; y < layout.height; ++y) {
        const std::uint64_t row = static_cast<unsigned>(y);
        const SLine line = layout.xPadding == 0 ? SLine{0, row * width} : SLine{row * stride, 0};
        switch (format.packing) {
        case PACKING_BYTES:
            std::memcpy(image->row<unsigned char>(y),
                bytes + line.origin + line.first * wireBits(format, channels) / 8, lineBytes);
            break;
        case PACKING_WORDS: {
            const unsigned char* in = bytes + line.origin + line.first * 2;
            std::uint16_t* out = image->row<std::uint16_t>(y);
            for (int x = 0; x < layout.width; ++x)
                out[x] = static_cast<std::uint16_t>(in[2 * x] | (in[2 * x + 1] << 8));
            break;
        }
        case PACKING_PAIRS:
        case PACKING_BITS: {
            std::uint16_t* out = image->row<std::uint16_t>(y);
            for (int x = 0; x < layout.width; ++x)
                out[x] = packedSample(format, bytes + line.origin, line.first + unsigned(x));
            break;
        }
        }
    }
    return image;
}

} // namespace kiv::cam
