// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/IFrameListener.h>
#include <kivcam/kivcam_export.h>

#include <cstdint>

namespace kiv::cam {

// How a stream has fared since it started: the account a user reads to tell a healthy stream
// from a lossy one. Every count starts at 0 with each stream.
struct SFrameStatistics {
    std::uint64_t completeFrames = 0; // frames that arrived whole and were handed on
    std::uint64_t incompleteFrames = 0; // frames that arrived with packets missing, or timed out
    std::uint64_t missingPackets = 0; // packets that never arrived, even after resend requests
    std::uint64_t resentPackets = 0; // packets the camera sent again on request
    std::uint64_t lateFrames = 0; // frames dropped because the listeners had not taken the last
};

// The images of a camera, as they arrive. A controller that delivers images gives its frame
// source through IController::frameSource(); the source lives as long as its controller.
//
// While the controller is connected the source hands each image, shared, to every listener, in
// the camera's pixel type (unpacked, see CImage), on a thread of its own. An emulated camera
// renders its images at its frame rate and keeps time: when it falls behind (a slow listener) it
// skips the images it missed, and its timestamps lie exactly one frame period apart. A real
// camera sets the pace itself: CImage::frameNumber is the camera's own frame id, in which a gap
// means frames that were lost on the way or dropped because the listeners were still busy (see
// statistics()), and CImage::timestamp is the camera's own timestamp in nanoseconds where the
// camera gives one, else the moment the frame arrived.
//
// Listeners come and go at any time, from any thread. Once unsubscribe, or the controller's
// disconnect, has returned, no call of the listener is running or will be made (for disconnect:
// until the next connect), so the listener may be destroyed. The one exception: unsubscribe or
// disconnect called from within a listener's own call returns while that call is still running.
// A listener must not destroy the controller from within its own call.
class KIVCAM_EXPORT IFrameSource {
public:
    static constexpr double maxFrameRate = 1000;

    virtual ~IFrameSource();

    // Adds a listener; one that is subscribed already is not added twice. When the stream is
    // running, the listener hears streamStarted before this returns.
    virtual void subscribe(IFrameListener* listener) = 0;
    // Removes a listener; see above for what the return guarantees.
    virtual void unsubscribe(IFrameListener* listener) = 0;

    // Images a second: the rate the camera is set to (for a camera whose rate is not known, the
    // rate measured over the last images). Each connect starts at the camera's rate.
    virtual double frameRate() const = 0;
    // Asks for another rate, also while streaming; an emulated camera changes at once, a real
    // camera as soon as its controller has written the rate. False, changing nothing, for a rate
    // outside (0, maxFrameRate] or one that this camera cannot be set to (not every camera's rate
    // can be set).
    virtual bool setFrameRate(double rate) = 0;
    // The figures of the running stream, or of the last one; all 0 for a source that keeps none.
    virtual SFrameStatistics statistics() const;
};

} // namespace kiv::cam
