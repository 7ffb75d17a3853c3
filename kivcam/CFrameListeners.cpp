// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CFrameListeners.h"

namespace kiv::cam {

void CFrameListeners::subscribe(IFrameListener* listener)
{
    const std::lock_guard lock(m_listeners.mutex());
    if (m_listeners.add(listener) && m_streaming)
        listener->streamStarted(m_camera);
}

void CFrameListeners::unsubscribe(IFrameListener* listener)
{
    m_listeners.remove(listener);
}

void CFrameListeners::started(const SCameraInfo& camera)
{
    const std::lock_guard lock(m_listeners.mutex());
    m_camera = camera;
    m_streaming = true;
    // A listener may stop the stream from within its call: the others hear no more of it.
    m_listeners.forEach([&](IFrameListener* listener) {
        if (m_streaming)
            listener->streamStarted(camera);
    });
}

void CFrameListeners::deliver(const TSharedPtr<const CImage>& image)
{
    m_listeners.forEach([&](IFrameListener* listener) {
        if (m_streaming)
            listener->frameArrived(image);
    });
}

void CFrameListeners::stopped()
{
    const std::lock_guard lock(m_listeners.mutex());
    if (!m_streaming)
        return;
    m_streaming = false;
    m_listeners.forEach([](IFrameListener* listener) { listener->streamStopped(); });
}

} // namespace kiv::cam
