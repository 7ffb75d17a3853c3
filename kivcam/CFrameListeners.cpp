#include "CFrameListeners.h"

namespace kiv::cam {

void CFrameListeners::subscribe(IFrameListener* listener)
{
    const std::lock_guard lock(m_mutex);
    if (!listener || m_listeners.contains(listener))
        return;
    m_listeners.add(listener);
    if (m_streaming)
        listener->streamStarted(m_camera);
}

void CFrameListeners::unsubscribe(IFrameListener* listener)
{
    // Waits here for a call in progress, unless it is the caller's own.
    const std::lock_guard lock(m_mutex);
    for (int i = 0; i < m_listeners.count(); ++i) {
        if (m_listeners[i] == listener) {
            m_listeners.removeAt(i);
            return;
        }
    }
}

template <class Call> void CFrameListeners::forEachListener(bool whileStreaming, Call call)
{
    // A copy: the calls may change the list.
    const TArray<IFrameListener*> listeners = m_listeners;
    for (IFrameListener* listener : listeners) {
        if ((!whileStreaming || m_streaming) && m_listeners.contains(listener))
            call(listener);
    }
}

void CFrameListeners::started(const SCameraInfo& camera)
{
    const std::lock_guard lock(m_mutex);
    m_camera = camera;
    m_streaming = true;
    forEachListener(true, [&](IFrameListener* listener) { listener->streamStarted(camera); });
}

void CFrameListeners::deliver(const TSharedPtr<const CImage>& image)
{
    const std::lock_guard lock(m_mutex);
    forEachListener(true, [&](IFrameListener* listener) { listener->frameArrived(image); });
}

void CFrameListeners::stopped()
{
    const std::lock_guard lock(m_mutex);
    if (!m_streaming)
        return;
    m_streaming = false;
    forEachListener(false, [](IFrameListener* listener) { listener->streamStopped(); });
}

} // namespace kiv::cam
