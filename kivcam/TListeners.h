// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TArray.h>

#include <mutex>

namespace kiv::cam {

// The listeners of a source that calls them on its own threads: each call runs under the list's
// lock, so that once remove() has returned no call of that listener is running or will be made
// (unless remove() came from within that call); the lock is recursive, so that a listener may
// add and remove listeners from within its own call.
template <class Listener> class TListeners {
public:
    // Adds a listener once; false for null or one added already.
    bool add(Listener* listener)
    {
        const std::lock_guard lock(m_mutex);
        if (!listener || m_listeners.contains(listener))
            return false;
        m_listeners.add(listener);
        return true;
    }
    // Waits here for a call in progress, unless it is the caller's own.
    void remove(Listener* listener)
    {
        const std::lock_guard lock(m_mutex);
        for (int i = 0; i < m_listeners.count(); ++i) {
            if (m_listeners[i] == listener) {
                m_listeners.removeAt(i);
                return;
            }
        }
    }
    // Calls call with each listener that is still in the list at its turn.
    template <class Call> void forEach(Call call)
    {
        const std::lock_guard lock(m_mutex);
        // A copy: the calls may change the list.
        const TArray<Listener*> listeners = m_listeners;
        for (Listener* listener : listeners) {
            if (m_listeners.contains(listener))
                call(listener);
        }
    }
    // The list's lock, for state its owner keeps beside it and changes in turn with the calls.
    std::recursive_mutex& mutex() { return m_mutex; }

private:
    std::recursive_mutex m_mutex;
    TArray<Listener*> m_listeners;
};

} // namespace kiv::cam
