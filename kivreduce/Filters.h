// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CImage.h>
#include <kiv/TSharedPtr.h>

// The reduction filters behind CFilterFactory::filterByName, one function each. Every one takes
// a frame and gives its display image (see FilterFunction), or an empty pointer for a frame it
// does not take.
namespace kiv::reduce::filters {

TSharedPtr<const CImage> Passthrough8(const TSharedPtr<const CImage>& frame);
TSharedPtr<const CImage> Linear16(const TSharedPtr<const CImage>& frame);
TSharedPtr<const CImage> Signed16(const TSharedPtr<const CImage>& frame);
TSharedPtr<const CImage> Float32(const TSharedPtr<const CImage>& frame);
TSharedPtr<const CImage> Colour(const TSharedPtr<const CImage>& frame);

} // namespace kiv::reduce::filters
