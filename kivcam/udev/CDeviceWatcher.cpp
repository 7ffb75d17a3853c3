// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CDeviceWatcher.h"

#include <kiv/Platform.h>
#include <kiv/strprintf.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <exception>
#include <libudev.h>
#include <map>
#include <optional>
#include <poll.h>
#include <pthread.h>
#include <string>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

namespace kiv::cam {

namespace {

// The control interface of a USB3 Vision camera, class 0xEF, subclass 0x05, protocol 0, as the
// kernel writes it into an interface's INTERFACE property.
constexpr const char* controlInterface = "239/5/0";

// Whether the calling thread is in a listener call, where no watcher thread may be joined.
thread_local bool inListenerCall = false;

bool equal(const char* text, const char* expected)
{
    return text && std::strcmp(text, expected) == 0;
}

std::string text(const char* value)
{
    return value ? std::string(value) : std::string();
}

// The USB device a device belongs to, or null; reads sysfs, so it is asked only of devices
// that are there.
udev_device* usbDeviceOf(udev_device* device)
{
    return udev_device_get_parent_with_subsystem_devtype(device, "usb", "usb_device");
}

// The record of a device the watcher reports, or nothing for any other device.
std::optional<SDeviceEvent> describe(udev_device* device)
{
    SDeviceEvent event;
    event.sysPath = CString(udev_device_get_syspath(device));
    const char* subsystem = udev_device_get_subsystem(device);
    if (equal(subsystem, "usb")) {
        if (!equal(udev_device_get_property_value(device, "INTERFACE"), controlInterface))
            return std::nullopt;
        // The camera is opened through the node of the USB device the interface belongs to.
        udev_device* usb = usbDeviceOf(device);
        event.kind = SDeviceEvent::KIND_USB3_VISION_CAMERA;
        event.node = CString(usb ? udev_device_get_devnode(usb) : nullptr);
        return event;
    }
    if (equal(subsystem, "tty")) {
        if (!usbDeviceOf(device) && !equal(udev_device_get_property_value(device, "ID_BUS"), "usb"))
            return std::nullopt;
        event.kind = SDeviceEvent::KIND_SERIAL_PORT;
        event.node = CString(udev_device_get_devnode(device));
        return event;
    }
    return std::nullopt;
}

void report(const char* problem, const char* reason)
{
    const CString text = strprintf("kivcam: %s, because %s. Search again to see USB3 Vision "
                                   "cameras and serial ports that were plugged in or out.\n",
        problem, reason);
    platform::DebugOutput(text.data());
}

} // namespace

// One run of the watcher, from the first listener to the last: the udev monitor, what is plugged
// in, and the thread. Destroying it stops the thread and joins it.
class CDeviceWatcher::CRun {
public:
    CRun() = default;
    ~CRun()
    {
        Stop();
        if (m_thread.joinable())
            m_thread.join();
        if (m_monitor)
            udev_monitor_unref(m_monitor);
        if (m_udev)
            udev_unref(m_udev);
        if (m_stop >= 0)
            ::close(m_stop);
    }
    CRun(const CRun&) = delete;
    CRun& operator=(const CRun&) = delete;

    // Opens the monitor, then learns what is plugged in already; false, with the reason, where
    // udev cannot be used.
    bool Open(const char*& reason);
    // Starts the thread, which hands every change to watcher.
    void Start(CDeviceWatcher& watcher)
    {
        m_thread = std::thread([this, &watcher] { Run(watcher); });
    }
    // Wakes the thread, which ends; also from the thread itself, which ends when its call returns.
    void Stop()
    {
        const std::uint64_t one = 1;
        // The counter is far from full: the write cannot fail.
        [[maybe_unused]] const ssize_t written
            = m_stop >= 0 ? ::write(m_stop, &one, sizeof one) : 0;
    }

    // A run that ended before this one, kept until the watcher can join it.
    std::unique_ptr<CRun> endedBefore;

private:
    void Run(CDeviceWatcher& watcher);
    // What an event changes, when it is a change to report.
    std::optional<SDeviceEvent> Change(udev_device* device);

    udev* m_udev = nullptr;
    udev_monitor* m_monitor = nullptr;
    int m_stop = -1; // an eventfd
    std::map<std::string, SDeviceEvent> m_present; // by sysfs path
    std::thread m_thread;
};

bool CDeviceWatcher::CRun::Open(const char*& reason)
{
    m_stop = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    m_udev = m_stop < 0 ? nullptr : udev_new();
    // "udev": the events udev has finished with, when the device node is there with its rights.
    m_monitor = m_udev ? udev_monitor_new_from_netlink(m_udev, "udev") : nullptr;
    if (!m_monitor || udev_monitor_filter_add_match_subsystem_devtype(m_monitor, "usb", nullptr) < 0
        || udev_monitor_filter_add_match_subsystem_devtype(m_monitor, "tty", nullptr) < 0
        || udev_monitor_enable_receiving(m_monitor) < 0) {
        reason = m_stop < 0 ? "no eventfd can be made" : "no udev monitor can be opened";
        return false;
    }
    // Listed after the monitor has started, so that nothing plugged in meanwhile is missed: a
    // device listed here is known, and its events are not plugs.
    udev_enumerate* present = udev_enumerate_new(m_udev);
    if (!present || udev_enumerate_add_match_subsystem(present, "usb") < 0
        || udev_enumerate_add_match_subsystem(present, "tty") < 0
        || udev_enumerate_scan_devices(present) < 0) {
        if (present)
            udev_enumerate_unref(present);
        reason = "udev cannot list the devices";
        return false;
    }
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(present))
    {
        udev_device* device = udev_device_new_from_syspath(m_udev, udev_list_entry_get_name(entry));
        if (!device)
            continue; // unplugged meanwhile
        if (const std::optional<SDeviceEvent> known = describe(device))
            m_present.emplace(text(udev_device_get_syspath(device)), *known);
        udev_device_unref(device);
    }
    udev_enumerate_unref(present);
    return true;
}

void CDeviceWatcher::CRun::Run(CDeviceWatcher& watcher)
{
    ::pthread_setname_np(::pthread_self(), ThreadName);
    pollfd waits[] = {{m_stop, POLLIN, 0}, {udev_monitor_get_fd(m_monitor), POLLIN, 0}};
    for (;;) {
        if (::poll(waits, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            report("Watching for plugged and unplugged devices stopped", "waiting for udev failed");
            return;
        }
        if (waits[0].revents != 0)
            return;
        if ((waits[1].revents & (POLLHUP | POLLNVAL)) != 0) {
            report("Watching for plugged and unplugged devices stopped", "udev's socket closed");
            return;
        }
        // Reading also clears an error (events came faster than they were read).
        udev_device* device = udev_monitor_receive_device(m_monitor);
        if (!device)
            continue;
        try {
            if (const std::optional<SDeviceEvent> change = Change(device))
                watcher.Deliver(*change);
        } catch (const std::exception&) {
            // Without the memory for it, the event goes unreported.
        }
        udev_device_unref(device);
    }
}

std::optional<SDeviceEvent> CDeviceWatcher::CRun::Change(udev_device* device)
{
    const char* action = udev_device_get_action(device);
    const std::string path = text(udev_device_get_syspath(device));
    if (equal(action, "add")) {
        if (m_present.contains(path))
            return std::nullopt; // known already
        std::optional<SDeviceEvent> added = describe(device);
        if (added)
            m_present.emplace(path, *added);
        return added;
    }
    if (equal(action, "remove")) {
        const auto known = m_present.find(path);
        if (known == m_present.end())
            return std::nullopt;
        SDeviceEvent removed = known->second;
        removed.change = SDeviceEvent::DEVICE_REMOVED;
        m_present.erase(known);
        return removed;
    }
    // "change", "bind", "unbind", "move": the same device, nothing plugged.
    return std::nullopt;
}

CDeviceWatcher::~CDeviceWatcher()
{
    std::unique_ptr<CRun> run;
    std::unique_ptr<CRun> ended;
    {
        const std::lock_guard lock(m_mutex);
        run = std::move(m_run);
        ended = std::move(m_ended);
    }
    // Joined while the watcher, which a call in progress uses, is still whole.
    run.reset();
    ended.reset();
}

int CDeviceWatcher::subscribe(Listener listener)
{
    std::unique_ptr<CRun> ended; // joined after the lock is let go
    const std::lock_guard lock(m_mutex);
    ended = TakeEnded();
    const int subscription = m_lastSubscription == INT_MAX ? 1 : m_lastSubscription + 1;
    try {
        m_listeners.push_back({subscription, std::move(listener)});
    } catch (const std::exception&) {
        return 0;
    }
    m_lastSubscription = subscription;
    if (!m_run)
        StartRun();
    return subscription;
}

void CDeviceWatcher::unsubscribe(int subscription)
{
    std::unique_ptr<CRun> stopped; // joined after the lock is let go
    // Waits here for a call in progress, unless it is the caller's own.
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_listeners,
        [&](const SListener& listener) { return listener.subscription == subscription; });
    if (!m_listeners.empty() || !m_run)
        return;
    m_run->Stop();
    if (inListenerCall) {
        m_run->endedBefore = std::move(m_ended);
        m_ended = std::move(m_run);
    } else {
        stopped = std::move(m_run);
    }
}

bool CDeviceWatcher::watching() const
{
    const std::lock_guard lock(m_mutex);
    return m_run != nullptr;
}

void CDeviceWatcher::Deliver(const SDeviceEvent& event)
{
    const std::lock_guard lock(m_mutex);
    // A copy: the calls may change the list.
    const std::vector<SListener> listeners = m_listeners;
    inListenerCall = true;
    for (const SListener& listener : listeners) {
        const bool subscribed
            = std::any_of(m_listeners.cbegin(), m_listeners.cend(), [&](const SListener& current) {
                  return current.subscription == listener.subscription;
              });
        try {
            if (subscribed)
                listener.call(event);
        } catch (const std::exception&) {
            // A listener's failure is its own; the others hear the event all the same.
        }
    }
    inListenerCall = false;
}

void CDeviceWatcher::StartRun()
{
    const char* reason = "there is not the memory for it";
    try {
        auto run = std::make_unique<CRun>();
        if (run->Open(reason)) {
            reason = "no thread can be started";
            run->Start(*this);
            m_run = std::move(run);
            return;
        }
    } catch (const std::exception&) {
        // Reported below.
    }
    static std::atomic_flag reported;
    if (!reported.test_and_set())
        report("Plugged and unplugged devices cannot be watched", reason);
}

auto CDeviceWatcher::TakeEnded() -> std::unique_ptr<CRun>
{
    if (inListenerCall)
        return nullptr;
    return std::move(m_ended);
}

CDeviceWatcher* deviceWatcher()
{
    static CDeviceWatcher watcher;
    return &watcher;
}

} // namespace kiv::cam
