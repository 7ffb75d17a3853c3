// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CImage.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// Receives the images of a frame source (IFrameSource), from the source's threads. The calls of
// one source never overlap. They must return quickly, since the next image waits for them, and
// must never wait for a thread that may be subscribing, unsubscribing, connecting or
// disconnecting at the time: hand the image on, do not block. From within frameArrived a
// listener may subscribe, unsubscribe and disconnect; from within the other two it must neither
// connect nor disconnect.
class KIVCAM_EXPORT IFrameListener {
public:
    virtual ~IFrameListener();

    // The stream began: camera is the record of the connected camera, which tells the images'
    // format (width, height, pixelType, adBits, adBitShift) and the reduceFilter that shows
    // them. Called from the connecting thread, or from subscribe when the stream is running.
    virtual void streamStarted(const SCameraInfo& camera) = 0;
    // One image, on the source's own thread. It is shared, not copied: keep the pointer for as
    // long as it is needed, never change the pixels.
    virtual void frameArrived(const TSharedPtr<const CImage>& frame) = 0;
    // The stream ended; no frameArrived follows until the next streamStarted. Called from the
    // disconnecting thread.
    virtual void streamStopped() = 0;
};

} // namespace kiv::cam
