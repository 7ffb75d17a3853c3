// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CEmulatorFrameSource.h"

#include <chrono>
#include <cmath>

namespace kiv::cam {

namespace {

using Clock = std::chrono::steady_clock;

Clock::duration periodOf(double rate)
{
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::nanoseconds(std::llround(1e9 / rate)));
}

} // namespace

CEmulatorFrameSource::~CEmulatorFrameSource()
{
    stop();
}

void CEmulatorFrameSource::subscribe(IFrameListener* listener)
{
    m_listeners.subscribe(listener);
}

void CEmulatorFrameSource::unsubscribe(IFrameListener* listener)
{
    m_listeners.unsubscribe(listener);
}

double CEmulatorFrameSource::frameRate() const
{
    const std::lock_guard lock(m_stateMutex);
    return m_rate;
}

bool CEmulatorFrameSource::setFrameRate(double rate)
{
    if (!(rate > 0 && rate <= maxFrameRate))
        return false;
    {
        const std::lock_guard lock(m_stateMutex);
        m_rate = rate;
        m_rateChanged = true;
    }
    m_wake.notify_all();
    return true;
}

bool CEmulatorFrameSource::start(const SCameraInfo& camera, CEmulatorScene::EPattern pattern)
{
    if (onStreamThread())
        return false;
    const std::lock_guard control(m_controlMutex);
    halt();
    {
        const std::lock_guard lock(m_stateMutex);
        m_stopping = false;
        m_rateChanged = false;
        m_rate = camera.frameRate > 0 ? std::min(camera.frameRate, maxFrameRate) : defaultFrameRate;
        m_hasNuc = camera.hasNucMask;
        m_scene = std::make_unique<CEmulatorScene>(camera, pattern);
    }
    m_listeners.started(camera);
    m_thread = std::thread(&CEmulatorFrameSource::run, this);
    return true;
}

void CEmulatorFrameSource::stop()
{
    if (onStreamThread()) {
        // From within a listener's call the stream's thread cannot be waited for; it ends as
        // soon as that call returns, and the next start or stop joins it.
        {
            const std::lock_guard lock(m_stateMutex);
            m_stopping = true;
        }
        m_listeners.stopped();
        return;
    }
    const std::lock_guard control(m_controlMutex);
    halt();
}

void CEmulatorFrameSource::halt()
{
    {
        const std::lock_guard lock(m_stateMutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    if (m_thread.joinable()) {
        m_thread.join();
        m_streamThread = std::thread::id();
        const std::lock_guard lock(m_stateMutex);
        m_scene.reset();
    }
    m_listeners.stopped();
}

bool CEmulatorFrameSource::runNuc()
{
    const std::lock_guard lock(m_stateMutex);
    if (!m_scene || m_stopping || !m_hasNuc)
        return false;
    m_scene->requestNuc();
    return true;
}

void CEmulatorFrameSource::run()
{
    m_streamThread = std::this_thread::get_id();
    const Clock::time_point begin = Clock::now();
    Clock::time_point due = begin;
    Clock::time_point last = begin;
    std::uint64_t number = 0;
    Clock::duration period;
    {
        const std::lock_guard lock(m_stateMutex);
        period = periodOf(m_rate);
    }
    for (;;) {
        {
            std::unique_lock lock(m_stateMutex);
            m_wake.wait_until(lock, due, [this] { return m_stopping || m_rateChanged; });
            if (m_stopping)
                return;
            if (m_rateChanged) {
                // The next image is due one new period after the last.
                m_rateChanged = false;
                period = periodOf(m_rate);
                due = number == 0 ? begin : last + period;
                continue;
            }
        }
        if (TSharedPtr<CImage> image
            = m_scene->render(std::chrono::duration<double>(due - begin).count())) {
            image->frameNumber = number;
            image->timestamp
                = std::chrono::duration_cast<std::chrono::nanoseconds>(due.time_since_epoch())
                      .count();
            m_listeners.deliver(image);
        }
        last = due;
        ++number;
        due += period;
        // Images whose time passed while this one was made or delivered are missed.
        const Clock::duration late = Clock::now() - due;
        if (late >= period) {
            const auto missed = late / period;
            number += static_cast<std::uint64_t>(missed);
            due += missed * period;
        }
    }
}

} // namespace kiv::cam
