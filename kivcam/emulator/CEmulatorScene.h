// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CImage.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/SCameraInfo.h>

#include <atomic>
#include <cstdint>
#include <random>
#include <vector>

namespace kiv::cam {

// What an emulated camera sees, in one of its test patterns: a warm object drifting over a
// gradient, a flat mid-grey field, or bars that move sideways; each with temporal noise and the
// fixed pattern that its sensor lays over every image, made in the camera's size, pixel type
// and bit depth. Integer samples span the camera's adBits (moved up by adBitShift), float
// samples are temperatures in kelvin (10 to 50 degrees Celsius), colour cameras see the scene
// through a thermal palette.
class CEmulatorScene {
public:
    enum class EPattern { Gradient, Noise, Bars };

    CEmulatorScene(const SCameraInfo& camera, EPattern pattern);

    // The pattern of that name ("Gradient", "Noise", "Bars"); false for another name.
    static bool PatternFromName(const CString& name, EPattern& pattern);
    // Whether the scene can draw images of that pixel type.
    static bool CanDraw(const SGuid& pixelType);

    // The image at that time into the stream; empty when the camera's record describes no image
    // (no size, a pixel type that is not one) or storage cannot be had. One thread at a time.
    TSharedPtr<CImage> render(double seconds);
    // Takes the fixed pattern out from the next image on; it builds up again over a minute. Any
    // thread.
    void requestNuc() { m_nucRequested = true; }

private:
    enum class EKind { None, Unsigned, Signed, Float, Rgb, Bayer, Yuv };

    void renderLine(int y, double seconds);
    void renderBackground(int y, double seconds);
    void addWarmObject(int y);
    template <typename T> void encodeUnsigned(T* out) const;
    template <typename T> void encodeSigned(T* out) const;
    template <typename T> void encodeFloat(T* out) const;
    void encodeRgb(std::uint8_t* out) const;
    template <typename T> void encodeBayer(T* out, int y) const;
    void encodeYuv(std::uint8_t* out) const;
    int paletteIndex(float value) const;

    int m_width;
    int m_height;
    SGuid m_pixelType;
    EPattern m_pattern;
    EKind m_kind = EKind::None;
    int m_bits = 0; // significant bits of an integer sample
    int m_shift = 0;
    // Colour layouts: channel order, and where red lies in a Bayer cell.
    int m_channels = 1;
    bool m_bgr = false;
    int m_redX = 0;
    int m_redY = 0;

    std::vector<float> m_columnPattern; // the sensor's column offsets
    std::vector<float> m_noise; // random values in [-1, 1]; also the sensor's pixel offsets
    std::vector<float> m_line; // the scene of the row being made, 0 to 1 of full scale
    std::minstd_rand m_random;
    std::uint32_t m_noiseOffset = 0;
    double m_patternSince; // when the fixed pattern started to build up
    std::atomic<bool> m_nucRequested{false};
    // The object of the row being made: its centre and radius.
    double m_objectX = 0;
    double m_objectY = 0;
};

} // namespace kiv::cam
