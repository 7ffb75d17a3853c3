// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// Helpers of the tests of the emulator's image streams, over the world emulator-frames.xml:
// one camera per device of its transport "Emu", each known by its serial.

#include "EmulatorTest.h"

#include <kiv/CImage.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/IController.h>
#include <kivcam/IFrameListener.h>
#include <kivcam/IFrameSource.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace streamtest {

using namespace emulatortest;

// Records what a frame source tells it, and checks that no image comes outside a stream.
class CRecorder : public IFrameListener {
public:
    void streamStarted(const SCameraInfo& camera) override
    {
        const std::lock_guard lock(m_mutex);
        m_started.push_back(camera);
        m_streaming = true;
        m_changed.notify_all();
    }
    void frameArrived(const TSharedPtr<const CImage>& frame) override
    {
        inside = true;
        {
            const std::lock_guard lock(m_mutex);
            if (!m_streaming)
                ++strays;
            m_frames.push_back(frame);
        }
        m_changed.notify_all();
        std::this_thread::sleep_for(delay);
        if (onFrame)
            onFrame();
        inside = false;
    }
    void streamStopped() override
    {
        const std::lock_guard lock(m_mutex);
        m_streaming = false;
        ++m_stops;
        m_changed.notify_all();
    }

    // Waits until that many images have come in all; false when they do not come in time.
    bool waitForFrames(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(
            lock, std::chrono::seconds(10), [&] { return m_frames.size() >= count; });
    }
    std::vector<TSharedPtr<const CImage>> frames() const
    {
        const std::lock_guard lock(m_mutex);
        return m_frames;
    }
    std::size_t frameCount() const
    {
        const std::lock_guard lock(m_mutex);
        return m_frames.size();
    }
    std::vector<SCameraInfo> started() const
    {
        const std::lock_guard lock(m_mutex);
        return m_started;
    }
    int stops() const
    {
        const std::lock_guard lock(m_mutex);
        return m_stops;
    }
    void clear()
    {
        const std::lock_guard lock(m_mutex);
        m_frames.clear();
    }

    // Set before subscribing: how long each frameArrived takes, and what it does at its end.
    std::chrono::milliseconds delay{0};
    std::function<void()> onFrame;
    std::atomic<bool> inside{false};
    std::atomic<int> strays{0}; // images that came while no stream was running

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<SCameraInfo> m_started;
    std::vector<TSharedPtr<const CImage>> m_frames;
    bool m_streaming = false;
    int m_stops = 0;
};

// A camera of the transport "Emu" with its control device open and its type's controller made,
// not yet connected.
struct SCamera {
    explicit SCamera(const char* serial)
        : info(bySerial(camerasOf("Emu"), serial)),
          device(interfaces()->interfaceByName("Emu")->createDevice()),
          controller(controllerFactory()->createController(info.controller))
    {
        if (!device->open(info.comm, true))
            qWarning("cannot open the control device of %s", serial);
    }

    IFrameSource* source() const { return controller->frameSource(); }
    bool connect() const { return controller->connect(device, info); }

    SCameraInfo info;
    TSharedPtr<IDevice> device;
    TSharedPtr<IController> controller;
};

// The time between two images, in nanoseconds, at that rate.
inline std::int64_t periodOf(double rate)
{
    return std::llround(1e9 / rate);
}

} // namespace streamtest
