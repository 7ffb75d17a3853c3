// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/CFrameListeners.h>
#include <kivcam/IFrameSource.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/emulator/CEmulatorScene.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace kiv::cam {

// The frame source of an emulated controller: while the controller is connected, a thread of its
// own renders the camera's scene (CEmulatorScene) at the frame rate and hands each image to the
// listeners.
class CEmulatorFrameSource : public IFrameSource {
public:
    // The rate of a camera whose record gives none.
    static constexpr double defaultFrameRate = 30;

    CEmulatorFrameSource() = default;
    // Stops the stream. Not from within a listener's call.
    ~CEmulatorFrameSource() override;

    void subscribe(IFrameListener* listener) override;
    void unsubscribe(IFrameListener* listener) override;
    double frameRate() const override;
    bool setFrameRate(double rate) override;

    // Starts the stream of that camera in that test pattern, after stopping one that runs: the
    // listeners hear streamStarted, then images follow at the camera's rate (defaultFrameRate
    // when its record gives none, maxFrameRate at most). False, starting nothing, from within a
    // listener's call.
    bool start(const SCameraInfo& camera, CEmulatorScene::EPattern pattern);
    // Stops the stream, if one runs: the listeners hear streamStopped, and once this returns no
    // listener call is running or will be made (but the caller's own, when called from within
    // a listener's call; the stream's thread then ends as that call returns).
    void stop();
    // See IEmulatorController::runNuc.
    bool runNuc();

private:
    // Stops the stream and waits for its thread; the caller holds m_controlMutex.
    void halt();
    void run();
    bool onStreamThread() const { return m_streamThread.load() == std::this_thread::get_id(); }

    CFrameListeners m_listeners;

    // Serialises start and stop.
    std::mutex m_controlMutex;
    std::thread m_thread;
    std::atomic<std::thread::id> m_streamThread;

    // What the stream's thread waits on, and is woken for.
    mutable std::mutex m_stateMutex;
    std::condition_variable m_wake;
    bool m_stopping = false;
    bool m_rateChanged = false;
    double m_rate = defaultFrameRate;
    bool m_hasNuc = false;
    // Made by start, used by the stream's thread, destroyed once the thread has ended.
    std::unique_ptr<CEmulatorScene> m_scene;
};

} // namespace kiv::cam
