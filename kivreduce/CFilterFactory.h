// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CImage.h>
#include <kiv/CString.h>
#include <kiv/SGuid.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivreduce/kivreduce_export.h>

namespace kiv::reduce {

// A reduction filter: turns one frame into its display image, 8 bits a sample: Mono8 for
// monochrome frames, RGBA8 (alpha 255) for colour ones, with the frame's size, frameNumber and
// timestamp. Empty for a frame the filter does not take. Filters keep no state, so they may run
// on any thread, several at once.
using FilterFunction = TSharedPtr<const CImage> (*)(const TSharedPtr<const CImage>& frame);

// The catalogue of image reduction filters: what turns a camera's raw samples into a picture.
//   "Passthrough8"  8-bit samples of one channel, shown as they are (a Mono8 frame is its own
//                   display image)
//   "Linear16"      unsigned samples of one channel (10 to 16 bits, 8 and 32 as well): their
//                   significant bits (adBits, adBitShift) scaled linearly from the frame's
//                   minimum (0) to its maximum (255)
//   "Signed16"      signed samples of one channel, scaled around zero: 0 is 128, the frame's
//                   largest magnitude 1 or 255
//   "Float32"       floating-point samples (temperatures, intensities), scaled linearly like
//                   Linear16; samples that are not finite numbers are black and do not count
//   "Colour"        RGB8, BGR8, RGBA8, BGRA8, YUV422_8 (Y0 U Y1 V) and Bayer samples (each
//                   2 x 2 cell coloured as a whole), converted to RGBA8
// The filters that take one channel show Bayer samples as they lie, as grey. A frame whose
// samples all have one value is shown mid grey (128) by the scaling filters.
class KIVREDUCE_EXPORT CFilterFactory {
public:
    CFilterFactory() = default;
    virtual ~CFilterFactory();
    CFilterFactory(const CFilterFactory&) = delete;
    CFilterFactory& operator=(const CFilterFactory&) = delete;

    // Appends the names of all filters, in the order above.
    virtual void getFilterNames(TArray<CString>& out);
    // The filter that suits a pixel type; empty for an identifier that is not a pixel type.
    virtual CString defaultFilterFor(const SGuid& pixelType);
    // The filter of that name; null for a name that is not one of the above.
    virtual FilterFunction filterByName(const CString& name);
};

KIVREDUCE_EXPORT CFilterFactory* filterFactory();

} // namespace kiv::reduce
