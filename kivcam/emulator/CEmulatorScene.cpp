// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CEmulatorScene.h"

#include <kiv/PixelType.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <string_view>
#include <utility>

namespace kiv::cam {

namespace {

constexpr std::size_t noiseSize = 1 << 18;
constexpr std::uint32_t noiseMask = noiseSize - 1;
constexpr float temporalNoise = 0.008f;
constexpr float columnPatternLevel = 0.03f;
constexpr float pixelPatternLevel = 0.012f;
constexpr double patternBuildUp = 60; // seconds from a NUC until the fixed pattern is back
constexpr double objectHeat = 0.45;
constexpr double celsiusZero = 273.15;
// The "Noise" pattern: a flat field at half scale under noise that shows.
constexpr float midGrey = 0.5f;
constexpr float fieldNoise = 0.12f;
// The "Bars" pattern: bars from dark to bright, moving right by one bar's width a second.
constexpr int barCount = 8;
constexpr float darkestBar = 0.1f;
constexpr float brightestBar = 0.9f;

struct SRgb {
    std::uint8_t r, g, b;
};

// A thermal palette: black, violet, red, orange, yellow, white, from cold to hot.
const std::array<SRgb, 256>& palette()
{
    static const std::array<SRgb, 256> table = [] {
        constexpr std::array<std::array<double, 4>, 6> stops{{
            {0.0, 0, 0, 0},
            {0.2, 80, 0, 140},
            {0.45, 200, 20, 60},
            {0.7, 250, 130, 0},
            {0.88, 255, 220, 40},
            {1.0, 255, 255, 255},
        }};
        std::array<SRgb, 256> colours{};
        for (int i = 0; i < 256; ++i) {
            const double t = i / 255.0;
            std::size_t stop = 1;
            while (stop + 1 < stops.size() && stops[stop][0] < t)
                ++stop;
            const auto& a = stops[stop - 1];
            const auto& b = stops[stop];
            const double f = (t - a[0]) / (b[0] - a[0]);
            const auto mix = [&](int c) {
                return static_cast<std::uint8_t>(std::lround(a[c] + (b[c] - a[c]) * f));
            };
            colours[i] = {mix(1), mix(2), mix(3)};
        }
        return colours;
    }();
    return table;
}

// The significant bits of an integer sample of that many bits, and their shift.
void significantBits(const SCameraInfo& camera, int sampleBits, int& bits, int& shift)
{
    bits = camera.adBits > 0 && camera.adBits <= sampleBits ? camera.adBits : sampleBits;
    shift = std::clamp(camera.adBitShift, 0, sampleBits - bits);
}

} // namespace

bool CEmulatorScene::PatternFromName(const CString& name, EPattern& pattern)
{
    constexpr std::array<std::pair<std::string_view, EPattern>, 3> names{{
        {"Gradient", EPattern::Gradient},
        {"Noise", EPattern::Noise},
        {"Bars", EPattern::Bars},
    }};
    for (const auto& [text, value] : names) {
        if (name.view() == text) {
            pattern = value;
            return true;
        }
    }
    return false;
}

bool CEmulatorScene::CanDraw(const SGuid& pixelType)
{
    return !PixelTypeToString(pixelType).empty();
}

CEmulatorScene::CEmulatorScene(const SCameraInfo& camera, EPattern pattern)
    : m_width(camera.width),
      m_height(camera.height),
      m_pixelType(camera.pixelType),
      m_pattern(pattern),
      m_random(std::hash<std::string_view>()(camera.serial.view()) | 1),
      m_patternSince(-patternBuildUp)
{
    const CString name = PixelTypeToString(m_pixelType);
    const std::string_view type = name.view();
    const EDataType dataType = PixelTypeToDataType(m_pixelType);
    const int sampleBits = 8 * DataTypeSize(dataType);
    m_channels = PixelTypeToChannelCount(m_pixelType);
    if (m_width < 1 || m_height < 1 || !CanDraw(m_pixelType)) {
        m_kind = EKind::None;
    } else if (type.starts_with("Bayer")) {
        m_kind = EKind::Bayer;
        // RG, GR, GB or BG: the first two letters after "Bayer" give the top row of a cell.
        m_redX = type.substr(5, 2) == "GR" || type.substr(5, 2) == "BG" ? 1 : 0;
        m_redY = type.substr(5, 2) == "GB" || type.substr(5, 2) == "BG" ? 1 : 0;
        significantBits(camera, sampleBits, m_bits, m_shift);
    } else if (type == "YUV422_8") {
        m_kind = EKind::Yuv;
    } else if (m_channels >= 3) {
        m_kind = EKind::Rgb;
        m_bgr = type.starts_with("BGR");
    } else if (dataType == DATA_TYPE_FLOAT32 || dataType == DATA_TYPE_FLOAT64) {
        m_kind = EKind::Float;
    } else if (dataType == DATA_TYPE_INT8 || dataType == DATA_TYPE_INT16
        || dataType == DATA_TYPE_INT32) {
        m_kind = EKind::Signed;
        significantBits(camera, sampleBits, m_bits, m_shift);
    } else {
        m_kind = EKind::Unsigned;
        significantBits(camera, sampleBits, m_bits, m_shift);
    }
    if (m_kind == EKind::None)
        return;

    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    m_noise.resize(noiseSize);
    for (float& value : m_noise)
        value = uniform(m_random);
    m_columnPattern.resize(static_cast<std::size_t>(m_width));
    for (float& value : m_columnPattern)
        value = columnPatternLevel * uniform(m_random);
    m_line.resize(static_cast<std::size_t>(m_width));
}

TSharedPtr<CImage> CEmulatorScene::render(double seconds)
{
    if (m_kind == EKind::None)
        return {};
    TSharedPtr<CImage> image = CImage::Create(m_width, m_height, m_pixelType);
    if (!image)
        return {};
    if (m_nucRequested.exchange(false))
        m_patternSince = seconds;
    if (m_kind == EKind::Unsigned || m_kind == EKind::Signed || m_kind == EKind::Bayer) {
        image->adBits = m_bits;
        image->adBitShift = m_shift;
    }

    // The object circles the image on a slow figure, never quite leaving it.
    const double radius = std::min(m_width, m_height) / 6.0;
    m_objectX = m_width / 2.0
        + std::max(0.0, m_width / 2.0 - radius) * 0.9
            * std::sin(2 * std::numbers::pi * seconds / 7);
    m_objectY = m_height / 2.0
        + std::max(0.0, m_height / 2.0 - radius) * 0.9
            * std::sin(2 * std::numbers::pi * seconds / 5 + 1);
    m_noiseOffset = static_cast<std::uint32_t>(m_random()) & noiseMask;

    const EDataType dataType = image->dataType();
    for (int y = 0; y < m_height; ++y) {
        renderLine(y, seconds);
        switch (m_kind) {
        case EKind::Unsigned:
            if (dataType == DATA_TYPE_UINT8)
                encodeUnsigned(image->row<std::uint8_t>(y));
            else if (dataType == DATA_TYPE_UINT16)
                encodeUnsigned(image->row<std::uint16_t>(y));
            else
                encodeUnsigned(image->row<std::uint32_t>(y));
            break;
        case EKind::Signed:
            if (dataType == DATA_TYPE_INT8)
                encodeSigned(image->row<std::int8_t>(y));
            else if (dataType == DATA_TYPE_INT16)
                encodeSigned(image->row<std::int16_t>(y));
            else
                encodeSigned(image->row<std::int32_t>(y));
            break;
        case EKind::Float:
            if (dataType == DATA_TYPE_FLOAT32)
                encodeFloat(image->row<float>(y));
            else
                encodeFloat(image->row<double>(y));
            break;
        case EKind::Rgb:
            encodeRgb(image->row<std::uint8_t>(y));
            break;
        case EKind::Bayer:
            if (dataType == DATA_TYPE_UINT8)
                encodeBayer(image->row<std::uint8_t>(y), y);
            else
                encodeBayer(image->row<std::uint16_t>(y), y);
            break;
        case EKind::Yuv:
            encodeYuv(image->row<std::uint8_t>(y));
            break;
        case EKind::None:
            break;
        }
    }
    return image;
}

void CEmulatorScene::renderLine(int y, double seconds)
{
    renderBackground(y, seconds);
    const float pattern
        = static_cast<float>(std::clamp((seconds - m_patternSince) / patternBuildUp, 0.0, 1.0));
    const float noise = m_pattern == EPattern::Noise ? fieldNoise : temporalNoise;
    const std::uint32_t first = static_cast<std::uint32_t>(y) * static_cast<std::uint32_t>(m_width);
    for (int x = 0; x < m_width; ++x) {
        const std::uint32_t i = first + static_cast<std::uint32_t>(x);
        const float fixed = m_columnPattern[x] + pixelPatternLevel * m_noise[i & noiseMask];
        m_line[x] = m_line[x] + pattern * fixed + noise * m_noise[(i + m_noiseOffset) & noiseMask];
    }
    if (m_pattern == EPattern::Gradient)
        addWarmObject(y);
}

void CEmulatorScene::renderBackground(int y, double seconds)
{
    switch (m_pattern) {
    case EPattern::Gradient: {
        const float rowBase = 0.2f + 0.15f * static_cast<float>(y) / static_cast<float>(m_height);
        const float slope = 0.25f / static_cast<float>(m_width);
        for (int x = 0; x < m_width; ++x)
            m_line[x] = rowBase + slope * static_cast<float>(x);
        break;
    }
    case EPattern::Noise:
        std::fill(m_line.begin(), m_line.end(), midGrey);
        break;
    case EPattern::Bars: {
        const double shift = std::fmod(seconds * m_width / barCount, m_width);
        for (int x = 0; x < m_width; ++x) {
            double position = x - shift;
            if (position < 0)
                position += m_width;
            const int bar = std::min(barCount - 1, static_cast<int>(position * barCount / m_width));
            m_line[x] = darkestBar
                + (brightestBar - darkestBar) * static_cast<float>(bar) / (barCount - 1);
        }
        break;
    }
    }
}

void CEmulatorScene::addWarmObject(int y)
{
    // A round spot, hottest at its centre.
    const double radius = std::min(m_width, m_height) / 6.0;
    const double dy = (y - m_objectY) / radius;
    if (std::abs(dy) >= 1)
        return;
    const int left = std::max(0, static_cast<int>(m_objectX - radius));
    const int right = std::min(m_width, static_cast<int>(m_objectX + radius) + 1);
    for (int x = left; x < right; ++x) {
        const double dx = (x - m_objectX) / radius;
        const double d2 = dx * dx + dy * dy;
        if (d2 < 1)
            m_line[x] += static_cast<float>(objectHeat * (1 - d2) * (1 - d2));
    }
}

template <typename T> void CEmulatorScene::encodeUnsigned(T* out) const
{
    const double full = std::ldexp(1.0, m_bits) - 1;
    for (int x = 0; x < m_width; ++x) {
        const double counts = std::clamp(static_cast<double>(m_line[x]), 0.0, 1.0) * full + 0.5;
        out[x] = static_cast<T>(static_cast<std::uint32_t>(counts) << m_shift);
    }
}

template <typename T> void CEmulatorScene::encodeSigned(T* out) const
{
    // Centred on mid scale: a difference image of the scene.
    const double full = std::ldexp(1.0, m_bits - 1) - 1;
    for (int x = 0; x < m_width; ++x) {
        const double counts = std::clamp(2.0 * m_line[x] - 1.0, -1.0, 1.0) * full;
        out[x] = static_cast<T>(std::lround(counts) * (1LL << m_shift));
    }
}

template <typename T> void CEmulatorScene::encodeFloat(T* out) const
{
    for (int x = 0; x < m_width; ++x)
        out[x] = static_cast<T>(celsiusZero + 10 + 40 * m_line[x]);
}

int CEmulatorScene::paletteIndex(float value) const
{
    return static_cast<int>(std::clamp(value, 0.0f, 1.0f) * 255.0f + 0.5f);
}

void CEmulatorScene::encodeRgb(std::uint8_t* out) const
{
    for (int x = 0; x < m_width; ++x, out += m_channels) {
        const SRgb colour = palette()[paletteIndex(m_line[x])];
        out[0] = m_bgr ? colour.b : colour.r;
        out[1] = colour.g;
        out[2] = m_bgr ? colour.r : colour.b;
        if (m_channels == 4)
            out[3] = 255;
    }
}

template <typename T> void CEmulatorScene::encodeBayer(T* out, int y) const
{
    const int cellRow = (y & 1) ^ m_redY; // 0: the row of red, 1: the row of blue
    const double full = std::ldexp(1.0, m_bits) - 1;
    for (int x = 0; x < m_width; ++x) {
        const SRgb colour = palette()[paletteIndex(m_line[x])];
        const int cellColumn = (x & 1) ^ m_redX;
        const std::uint8_t value
            = cellRow == cellColumn ? (cellRow == 0 ? colour.r : colour.b) : colour.g;
        out[x] = static_cast<T>(static_cast<std::uint32_t>(value / 255.0 * full + 0.5) << m_shift);
    }
}

void CEmulatorScene::encodeYuv(std::uint8_t* out) const
{
    // ITU-R BT.601 with full-range luma, Y0 U Y1 V; a pair shares the chroma of its first pixel.
    for (int x = 0; x < m_width; ++x) {
        const SRgb colour = palette()[paletteIndex(m_line[x])];
        const double luma = 0.299 * colour.r + 0.587 * colour.g + 0.114 * colour.b;
        out[2 * x] = static_cast<std::uint8_t>(std::lround(luma));
        if ((x & 1) == 0) {
            const double u = 128 + 0.564 * (colour.b - luma);
            const double v = 128 + 0.713 * (colour.r - luma);
            out[2 * x + 1] = static_cast<std::uint8_t>(std::clamp(std::lround(u), 0L, 255L));
            if (x + 1 < m_width)
                out[2 * x + 3] = static_cast<std::uint8_t>(std::clamp(std::lround(v), 0L, 255L));
        }
    }
}

} // namespace kiv::cam
