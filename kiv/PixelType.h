// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/EDataType.h>
#include <kiv/SGuid.h>
#include <kiv/TArray.h>
#include <kiv/kiv_export.h>

namespace kiv {

// The pixel types of infrared and scientific cameras, in this fixed order:
//   Mono8, Mono10, Mono10Packed, Mono10p, Mono12, Mono12Packed, Mono12p, Mono14, Mono16,
//   Mono16s, Mono32f, RGB8, BGR8, RGBA8, BGRA8, BayerRG8, BayerGR8, BayerGB8, BayerBG8,
//   BayerRG16, YUV422_8.
// "Packed" types put two 10- or 12-bit samples into three bytes, the "p" types pack samples
// bit-tight, least significant bit first. Each type has a fixed identifier
// {6b697670-0000-4000-8000-0000000000NN}, NN numbering the types from 01 in the order above.

// Appends the names of all pixel types, in the order above.
KIV_EXPORT void GetPixelTypeNames(TArray<CString>& out);
// The name of a pixel type; empty for an identifier that is not one.
KIV_EXPORT CString PixelTypeToString(const SGuid& pixelType);
// The identifier of the pixel type of that name (exact letter case); null for an unknown name.
KIV_EXPORT SGuid ParsePixelType(const CString& name);
// The type of one unpacked sample; DATA_TYPE_UNKNOWN for an identifier that is not a pixel type.
KIV_EXPORT EDataType PixelTypeToDataType(const SGuid& pixelType);
// The number of samples of one unpacked pixel: 3 for RGB8 and BGR8, 4 for RGBA8 and BGRA8, 2
// for YUV422_8 (Y and, alternately, U or V), 1 for the others; 0 for an identifier that is not a
// pixel type.
KIV_EXPORT int PixelTypeToChannelCount(const SGuid& pixelType);

} // namespace kiv
