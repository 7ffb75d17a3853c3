// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QSemaphore>
#include <QThreadPool>

#include <memory>

// Keeps every thread of Qt's global pool busy until release() or destruction, so that a task
// started meanwhile waits in the queue.
class PoolBlocker {
public:
    PoolBlocker() : m_threads(QThreadPool::globalInstance()->maxThreadCount())
    {
        for (int i = 0; i < m_threads; ++i) {
            QThreadPool::globalInstance()->start([started = m_started, gate = m_gate] {
                started->release();
                gate->acquire();
            });
        }
        m_started->acquire(m_threads);
    }
    ~PoolBlocker() { release(); }
    PoolBlocker(const PoolBlocker&) = delete;
    PoolBlocker& operator=(const PoolBlocker&) = delete;

    void release()
    {
        m_gate->release(m_threads - m_released);
        m_released = m_threads;
    }

private:
    // Shared with the blocking tasks, which may still be leaving them after the blocker is gone.
    std::shared_ptr<QSemaphore> m_started = std::make_shared<QSemaphore>();
    std::shared_ptr<QSemaphore> m_gate = std::make_shared<QSemaphore>();
    int m_threads;
    int m_released = 0;
};
