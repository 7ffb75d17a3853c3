// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "Filters.h"

#include <kiv/PixelType.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

namespace kiv::reduce::filters {

namespace {

// What a uniform frame shows as: mid grey.
constexpr std::uint8_t uniformGrey = 128;

// The display image of a frame: same size and place in the stream, pixels still to be filled.
TSharedPtr<CImage> displayImageOf(const CImage& frame, const char* pixelType)
{
    TSharedPtr<CImage> image
        = CImage::Create(frame.width(), frame.height(), ParsePixelType(CString(pixelType)));
    if (image) {
        image->adBits = 8;
        image->frameNumber = frame.frameNumber;
        image->timestamp = frame.timestamp;
    }
    return image;
}

// The significant bits of an unsigned integer sample: adBits of them (every bit for 0 or a
// count beyond the sample), shifted left by adBitShift (a negative shift counts as none).
template <typename T> struct SBits {
    explicit SBits(const CImage& frame)
    {
        constexpr int sampleBits = std::numeric_limits<T>::digits;
        const int bits = frame.adBits > 0 && frame.adBits < sampleBits ? frame.adBits : sampleBits;
        mask = bits == 32 ? 0xFFFFFFFFu : (1u << bits) - 1u;
        shift = std::clamp(frame.adBitShift, 0, sampleBits - 1);
    }
    std::uint32_t operator()(T sample) const { return (std::uint32_t(sample) >> shift) & mask; }

    std::uint32_t mask;
    int shift;
};

// Linear auto-range: the smallest value of the frame becomes 0, the largest 255. Values that
// are not numbers (value gives NaN) are black and do not count.
template <typename T, typename Value>
TSharedPtr<const CImage> autoRange(const CImage& frame, Value value)
{
    TSharedPtr<CImage> image = displayImageOf(frame, "Mono8");
    if (!image)
        return {};
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (int y = 0; y < frame.height(); ++y) {
        const T* in = frame.row<T>(y);
        for (int x = 0; x < frame.width(); ++x) {
            const double v = value(in[x]);
            low = v < low ? v : low;
            high = v > high ? v : high;
        }
    }
    const double scale = high > low ? 255.0 / (high - low) : 0.0;
    const double offset = high > low ? 0.5 : uniformGrey;
    for (int y = 0; y < frame.height(); ++y) {
        const T* in = frame.row<T>(y);
        std::uint8_t* out = image->row<std::uint8_t>(y);
        for (int x = 0; x < frame.width(); ++x) {
            const double v = value(in[x]);
            out[x] = static_cast<std::uint8_t>(v == v ? (v - low) * scale + offset : 0.0);
        }
    }
    return image;
}

// Symmetric range around zero: 0 is mid grey, the largest magnitude of the frame is 1 or 255.
template <typename T> TSharedPtr<const CImage> aroundZero(const CImage& frame)
{
    TSharedPtr<CImage> image = displayImageOf(frame, "Mono8");
    if (!image)
        return {};
    std::int64_t magnitude = 0;
    for (int y = 0; y < frame.height(); ++y) {
        const T* in = frame.row<T>(y);
        for (int x = 0; x < frame.width(); ++x) {
            const std::int64_t v = in[x] < 0 ? -std::int64_t(in[x]) : std::int64_t(in[x]);
            magnitude = v > magnitude ? v : magnitude;
        }
    }
    const float scale = magnitude > 0 ? 127.0f / float(magnitude) : 0.0f;
    for (int y = 0; y < frame.height(); ++y) {
        const T* in = frame.row<T>(y);
        std::uint8_t* out = image->row<std::uint8_t>(y);
        for (int x = 0; x < frame.width(); ++x)
            out[x] = static_cast<std::uint8_t>(float(in[x]) * scale + (uniformGrey + 0.5f));
    }
    return image;
}

// Colour frames: each output pixel is R, G, B, 255.
void writeRgb(std::uint8_t* out, int r, int g, int b)
{
    out[0] = static_cast<std::uint8_t>(std::clamp(r, 0, 255));
    out[1] = static_cast<std::uint8_t>(std::clamp(g, 0, 255));
    out[2] = static_cast<std::uint8_t>(std::clamp(b, 0, 255));
    out[3] = 255;
}

// RGB8, BGR8, RGBA8 and BGRA8: the channels in display order.
TSharedPtr<const CImage> reorder(const CImage& frame, bool bgr)
{
    TSharedPtr<CImage> image = displayImageOf(frame, "RGBA8");
    if (!image)
        return {};
    const int step = frame.channels();
    const int red = bgr ? 2 : 0;
    const int blue = bgr ? 0 : 2;
    for (int y = 0; y < frame.height(); ++y) {
        const std::uint8_t* in = frame.row<std::uint8_t>(y);
        std::uint8_t* out = image->row<std::uint8_t>(y);
        for (int x = 0; x < frame.width(); ++x, in += step, out += 4)
            writeRgb(out, in[red], in[1], in[blue]);
    }
    return image;
}

// Bayer mosaics, demosaiced a 2 x 2 cell at a time: the cell's red, the mean of its two greens
// and its blue colour all four of its pixels. redX and redY place red within the cell; blue is
// diagonally across from it. A last odd row or column repeats the cell before it.
template <typename T> TSharedPtr<const CImage> demosaic(const CImage& frame, int redX, int redY)
{
    TSharedPtr<CImage> image = displayImageOf(frame, "RGBA8");
    if (!image || frame.width() < 2 || frame.height() < 2)
        return {};
    const SBits<T> bits(frame);
    // Samples wider than 8 bits show their top 8 significant bits.
    int drop = 0;
    while ((bits.mask >> drop) > 0xFFu)
        ++drop;
    const auto sample = [&](int x, int y) { return int(bits(frame.row<T>(y)[x]) >> drop); };
    for (int y = 0; y < frame.height(); ++y) {
        const int cellY = std::min(y, frame.height() - 2) & ~1;
        std::uint8_t* out = image->row<std::uint8_t>(y);
        for (int x = 0; x < frame.width(); ++x, out += 4) {
            const int cellX = std::min(x, frame.width() - 2) & ~1;
            const int r = sample(cellX + redX, cellY + redY);
            const int b = sample(cellX + 1 - redX, cellY + 1 - redY);
            const int g = (sample(cellX + 1 - redX, cellY + redY)
                              + sample(cellX + redX, cellY + 1 - redY) + 1)
                / 2;
            writeRgb(out, r, g, b);
        }
    }
    return image;
}

// YUV 4:2:2 in Y0 U Y1 V order, ITU-R BT.601 with full-range luma.
TSharedPtr<const CImage> fromYuv422(const CImage& frame)
{
    TSharedPtr<CImage> image = displayImageOf(frame, "RGBA8");
    if (!image)
        return {};
    for (int y = 0; y < frame.height(); ++y) {
        const std::uint8_t* in = frame.row<std::uint8_t>(y);
        std::uint8_t* out = image->row<std::uint8_t>(y);
        for (int x = 0; x < frame.width(); ++x, out += 4) {
            const int pair = x & ~1;
            const int luma = in[2 * x];
            const int u = in[2 * pair + 1] - 128;
            const int v = pair + 1 < frame.width() ? in[2 * pair + 3] - 128 : 0;
            writeRgb(out, luma + (359 * v) / 256, luma - (88 * u + 183 * v) / 256,
                luma + (454 * u) / 256);
        }
    }
    return image;
}

} // namespace

TSharedPtr<const CImage> Passthrough8(const TSharedPtr<const CImage>& frame)
{
    if (!frame || frame->channels() != 1 || frame->dataType() != DATA_TYPE_UINT8)
        return {};
    if (frame->pixelType() == ParsePixelType(CString("Mono8")))
        return frame;
    TSharedPtr<CImage> image = displayImageOf(*frame, "Mono8");
    if (image)
        std::memcpy(image->bits(), frame->bits(), frame->byteCount());
    return image;
}

TSharedPtr<const CImage> Linear16(const TSharedPtr<const CImage>& frame)
{
    if (!frame || frame->channels() != 1)
        return {};
    switch (frame->dataType()) {
    case DATA_TYPE_UINT8:
        return autoRange<std::uint8_t>(*frame,
            [bits = SBits<std::uint8_t>(*frame)](std::uint8_t v) { return double(bits(v)); });
    case DATA_TYPE_UINT16:
        return autoRange<std::uint16_t>(*frame,
            [bits = SBits<std::uint16_t>(*frame)](std::uint16_t v) { return double(bits(v)); });
    case DATA_TYPE_UINT32:
        return autoRange<std::uint32_t>(*frame,
            [bits = SBits<std::uint32_t>(*frame)](std::uint32_t v) { return double(bits(v)); });
    default:
        return {};
    }
}

TSharedPtr<const CImage> Signed16(const TSharedPtr<const CImage>& frame)
{
    if (!frame || frame->channels() != 1)
        return {};
    switch (frame->dataType()) {
    case DATA_TYPE_INT8:
        return aroundZero<std::int8_t>(*frame);
    case DATA_TYPE_INT16:
        return aroundZero<std::int16_t>(*frame);
    case DATA_TYPE_INT32:
        return aroundZero<std::int32_t>(*frame);
    default:
        return {};
    }
}

TSharedPtr<const CImage> Float32(const TSharedPtr<const CImage>& frame)
{
    if (!frame || frame->channels() != 1)
        return {};
    // Infinities count as not a number: they have no place on a linear scale.
    const auto finite = [](auto v) {
        return std::isfinite(v) ? double(v) : std::numeric_limits<double>::quiet_NaN();
    };
    switch (frame->dataType()) {
    case DATA_TYPE_FLOAT32:
        return autoRange<float>(*frame, finite);
    case DATA_TYPE_FLOAT64:
        return autoRange<double>(*frame, finite);
    default:
        return {};
    }
}

TSharedPtr<const CImage> Colour(const TSharedPtr<const CImage>& frame)
{
    if (!frame)
        return {};
    const CString name = PixelTypeToString(frame->pixelType());
    const std::string_view type = name.view();
    if (type == "RGB8" || type == "RGBA8")
        return reorder(*frame, false);
    if (type == "BGR8" || type == "BGRA8")
        return reorder(*frame, true);
    if (type == "YUV422_8")
        return fromYuv422(*frame);
    if (type == "BayerRG8")
        return demosaic<std::uint8_t>(*frame, 0, 0);
    if (type == "BayerGR8")
        return demosaic<std::uint8_t>(*frame, 1, 0);
    if (type == "BayerGB8")
        return demosaic<std::uint8_t>(*frame, 0, 1);
    if (type == "BayerBG8")
        return demosaic<std::uint8_t>(*frame, 1, 1);
    if (type == "BayerRG16")
        return demosaic<std::uint16_t>(*frame, 0, 0);
    return {};
}

} // namespace kiv::reduce::filters
