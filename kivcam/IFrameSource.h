#pragma once

#include <kivcam/IFrameListener.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// The images of a camera, as they arrive. A controller that delivers images gives its frame
// source through IController::frameSource(); the source lives as long as its controller.
//
// While the controller is connected the source takes images at its frame rate, on a thread of
// its own, in the camera's pixel type, and hands each image, shared, to every listener. It keeps
// time: when it falls behind (a slow listener) it skips the images it missed, and the gaps show
// in CImage::frameNumber. The timestamp of an image is the moment it was due, so consecutive
// images lie exactly one frame period apart.
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

    // Images a second. Each connect starts at the camera's rate (SCameraInfo::frameRate).
    virtual double frameRate() const = 0;
    // Changes the rate at once, also while streaming: the next image is due one new period after
    // the last. False, changing nothing, for a rate outside (0, maxFrameRate] or one that this
    // camera cannot be set to.
    virtual bool setFrameRate(double rate) = 0;
};

} // namespace kiv::cam
