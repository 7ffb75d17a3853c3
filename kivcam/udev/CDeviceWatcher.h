// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/kivcam_export.h>
#include <kivcam/udev/SDeviceEvent.h>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace kiv::cam {

// Tells its listeners when USB3 Vision cameras and USB serial adapters are plugged in or out,
// through udev; other devices (a mouse, a serial port that is not USB) are never reported. Where
// udev cannot be used, listeners may subscribe all the same and hear nothing, and debug output
// says so once.
//
// Nothing runs while nobody listens. The first listener starts a run: a udev monitor of the
// "usb" and "tty" subsystems (the events udev has finished with), the devices plugged in already
// (known, not reported), and a thread that waits on the monitor with poll(), together with an
// eventfd that stops it, and reports the changes from then on. The last listener to leave stops
// the run and joins its thread.
//
// Listeners are called on that thread, one call at a time; a call must return quickly and never
// wait for a thread that may be subscribing or unsubscribing. Once unsubscribe has returned, no
// call of that listener is running or will be made, so whatever it uses may be destroyed; the one
// exception is unsubscribe called from within a listener call, which returns while that call is
// still running. A listener may subscribe and unsubscribe from within its call.
class KIVCAM_EXPORT CDeviceWatcher {
public:
    using Listener = std::function<void(const SDeviceEvent& event)>;

    // The name of a run's thread, as debuggers and tools that list threads show it.
    static constexpr const char* ThreadName = "kivcam-udev";

    CDeviceWatcher() = default;
    // Stops a run still going.
    ~CDeviceWatcher();
    CDeviceWatcher(const CDeviceWatcher&) = delete;
    CDeviceWatcher& operator=(const CDeviceWatcher&) = delete;

    // Adds a listener; gives the number that unsubscribes it, or 0 when there is not the memory
    // for it. For the first listener, changes are reported from the moment this returns.
    int subscribe(Listener listener);
    // Removes the listener of that number; see above for what the return guarantees. An unknown
    // number does nothing.
    void unsubscribe(int subscription);
    // Whether a run is going: listeners are subscribed and udev can be used.
    bool watching() const;

private:
    class CRun;
    struct SListener {
        int subscription;
        Listener call;
    };

    // Calls each listener that is still subscribed at its turn, on the run's thread.
    void Deliver(const SDeviceEvent& event);
    // Opens udev and starts the thread; says once why not where udev cannot be used. The caller
    // holds m_mutex.
    void StartRun();
    // The runs stopped from within listener calls, none while the caller is in one itself: the
    // caller destroys them, which joins their threads, once it has let go of m_mutex. The caller
    // holds m_mutex.
    std::unique_ptr<CRun> TakeEnded();

    // Held while listeners are called, so that unsubscribe waits for a call in progress;
    // recursive, so that a listener may subscribe and unsubscribe from within its own call.
    mutable std::recursive_mutex m_mutex;
    std::vector<SListener> m_listeners;
    int m_lastSubscription = 0;
    std::unique_ptr<CRun> m_run; // while listeners are subscribed and udev can be used
    // Runs whose last listener left from within a listener call, where no thread may be joined
    // (the call holds m_mutex, which the thread may be waiting for); each ends as soon as the
    // call returns. A chain, so that adding one needs no memory.
    std::unique_ptr<CRun> m_ended;
};

// The process's one device watcher.
KIVCAM_EXPORT CDeviceWatcher* deviceWatcher();

} // namespace kiv::cam
