// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// libFuzzer target: a picture buffer as a GenICam camera sends it, turned into an image by
// CGenICamPixels::Convert. The first 16 bytes pick the layout (a pixel format of the table, or
// any code; width, height and line padding, any 32-bit values), the rest are the pixels. Convert
// must give an image of the asked size or an error, never read past the buffer, and never ask
// for more memory than the buffer's pixels can fill.

#include <kivcam/genicam/CGenICamPixels.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace kiv::cam;

namespace {

constexpr std::uint32_t formats[]
    = {CGenICamPixels::MONO8, CGenICamPixels::MONO10, CGenICamPixels::MONO10_PACKED,
        CGenICamPixels::MONO10P, CGenICamPixels::MONO12, CGenICamPixels::MONO12_PACKED,
        CGenICamPixels::MONO12P, CGenICamPixels::MONO14, CGenICamPixels::MONO16,
        CGenICamPixels::RGB8, CGenICamPixels::BAYER_GR8, CGenICamPixels::BAYER_RG8,
        CGenICamPixels::BAYER_GB8, CGenICamPixels::BAYER_BG8, CGenICamPixels::BAYER_RG16};

std::uint32_t read32(const std::uint8_t* data)
{
    std::uint32_t value = 0;
    std::memcpy(&value, data, sizeof value);
    return value;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 16)
        return 0;
    const std::uint32_t pick = read32(data);
    CGenICamPixels::SLayout layout;
    // Mostly a format of the table; now and then any code.
    constexpr std::size_t count = sizeof formats / sizeof formats[0];
    layout.format = pick < 0xF0000000u ? formats[pick % count] : pick;
    layout.width = static_cast<int>(read32(data + 4));
    layout.height = static_cast<int>(read32(data + 8));
    layout.xPadding = static_cast<int>(read32(data + 12));
    // A copy of exactly the pixels' size, so that a read past its end is caught.
    const std::vector<std::uint8_t> pixels(data + 16, data + size);
    kiv::CString error;
    const kiv::TSharedPtr<kiv::CImage> image
        = CGenICamPixels::Convert(layout, pixels.data(), pixels.size(), error);
    if (image) {
        if (image->width() != layout.width || image->height() != layout.height || !error.empty())
            std::abort();
    } else if (error.empty()) {
        std::abort();
    }
    return 0;
}
