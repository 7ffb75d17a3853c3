// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CImage.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IFrameListener.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/TListeners.h>

namespace kiv::cam {

// The listeners of a frame source, called as IFrameSource promises: a listener that subscribes
// while the stream runs hears streamStarted at once; once unsubscribe has returned, no call of
// the listener runs or follows (unless unsubscribe came from within that call); and a listener
// may subscribe, unsubscribe or stop the stream from within its own call.
class CFrameListeners {
public:
    void subscribe(IFrameListener* listener);
    void unsubscribe(IFrameListener* listener);

    // The stream began: every listener hears streamStarted with that camera, and so does each
    // one that subscribes until stopped().
    void started(const SCameraInfo& camera);
    // Hands the image to every listener, while the stream runs.
    void deliver(const TSharedPtr<const CImage>& image);
    // The stream ended: every listener hears streamStopped, once; nothing when none runs.
    void stopped();

private:
    // Their lock also guards the stream's state below.
    TListeners<IFrameListener> m_listeners;
    SCameraInfo m_camera; // of the running stream
    bool m_streaming = false;
};

} // namespace kiv::cam
