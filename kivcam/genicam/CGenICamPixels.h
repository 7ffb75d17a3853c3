// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CImage.h>
#include <kiv/CString.h>
#include <kiv/SGuid.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/kivcam_export.h>

#include <cstddef>
#include <cstdint>

namespace kiv::cam {

// The pixel formats of GenICam cameras that have a pixel type of ours (kiv/PixelType.h), and the
// conversion of a camera's bytes into an image of that pixel type: pure functions over bytes.
//
// Unpacked samples wider than 8 bits are little endian. "Packed" formats put two samples into
// three bytes (GigE Vision's layout), "p" formats pack them bit-tight, least significant bit
// first. Packed lines follow one another without a gap, so with an odd width a line may end in
// the middle of a byte or of a pair; when the buffer gives a line padding, each line ends on a
// byte boundary and the padding follows it.
class KIVCAM_EXPORT CGenICamPixels {
public:
    // Codes of the Pixel Format Naming Convention (PFNC), as the feature PixelFormat gives them.
    enum EFormat : std::uint32_t {
        MONO8 = 0x01080001,
        MONO10 = 0x01100003,
        MONO10_PACKED = 0x010C0004,
        MONO10P = 0x010A0046,
        MONO12 = 0x01100005,
        MONO12_PACKED = 0x010C0006,
        MONO12P = 0x010C0047,
        MONO14 = 0x01100025,
        MONO16 = 0x01100007,
        RGB8 = 0x02180014,
        BAYER_GR8 = 0x01080008,
        BAYER_RG8 = 0x01080009,
        BAYER_GB8 = 0x0108000A,
        BAYER_BG8 = 0x0108000B,
        BAYER_RG16 = 0x0110002F,
    };

    // Where an image lies in a buffer.
    struct SLayout {
        std::uint32_t format = 0; // a PFNC code
        int width = 0;
        int height = 0;
        int xPadding = 0; // bytes after each line
    };

    // The pixel type of a format and the significant bits of its samples (CImage::adBits);
    // false, with a message for people, for a format that has no pixel type here.
    static bool Describe(std::uint32_t format, SGuid& pixelType, int& adBits, CString& error);
    // The image in data (size bytes) in our pixel type of the format's name, with adBits set;
    // empty, with a message for people, for a format that has no pixel type here, a width or
    // height below 1, or fewer bytes than the image takes.
    static TSharedPtr<CImage> Convert(
        const SLayout& layout, const void* data, std::size_t size, CString& error);
};

} // namespace kiv::cam
