// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGenICamWorker.h"

#include <future>

namespace kiv::cam {

CGenICamWorker::CGenICamWorker() : m_thread([this] { loop(); })
{
}

CGenICamWorker::~CGenICamWorker()
{
    {
        std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void CGenICamWorker::post(std::function<void()> task)
{
    {
        std::lock_guard lock(m_mutex);
        m_tasks.push_back(std::move(task));
    }
    m_wake.notify_one();
}

void CGenICamWorker::run(const std::function<void()>& task)
{
    if (onWorker()) {
        task();
        return;
    }
    std::promise<void> done;
    post([&] {
        task();
        done.set_value();
    });
    done.get_future().wait();
}

void CGenICamWorker::loop()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_ending || !m_tasks.empty(); });
        if (m_tasks.empty())
            return;
        std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

} // namespace kiv::cam
