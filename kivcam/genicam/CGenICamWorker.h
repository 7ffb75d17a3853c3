// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/kivcam_export.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace kiv::cam {

// The one thread that talks to a GenICam camera. Aravis lets one thread at a time use a device,
// and a camera answers one request at a time anyway, so every request to the camera is a task
// run here, in the order given.
class KIVCAM_EXPORT CGenICamWorker {
public:
    CGenICamWorker();
    // Runs the tasks queued so far, then ends the thread.
    ~CGenICamWorker();
    CGenICamWorker(const CGenICamWorker&) = delete;
    CGenICamWorker& operator=(const CGenICamWorker&) = delete;

    // Queues a task and returns at once.
    void post(std::function<void()> task);
    // Runs a task and waits for it: queued behind the others, or at once when called from the
    // worker itself.
    void run(const std::function<void()>& task);
    bool onWorker() const { return std::this_thread::get_id() == m_thread.get_id(); }

private:
    void loop();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_tasks;
    bool m_ending = false;
    std::thread m_thread;
};

} // namespace kiv::cam
