// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/plugin/MadeOnPool.h>

#include <QFuture>
#include <QList>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <memory>
#include <stop_token>
#include <utility>

namespace kiv::cam::ui {

// A model's search on a thread of Qt's global pool, one at a time: the task makes the model's
// objects itself and moves them to the model's thread, which only takes them. Destroying the
// search stops a task still running: its transports' scans wake up and it ends soon after.
// Nobody waits for it, and its result goes nowhere.
template <typename T> class PoolSearch {
public:
    using Found = std::shared_ptr<MadeOnPool<T>>;

    PoolSearch() = default;
    ~PoolSearch() { m_stop.request_stop(); }
    PoolSearch(const PoolSearch&) = delete;
    PoolSearch& operator=(const PoolSearch&) = delete;

    // Starts a task that runs find(stop) and moves the objects it gives, without parent, to
    // thread. find gives none once stop is requested, and holds its own share of what it reads:
    // a model destroyed while it searches neither waits for it nor leaves it reading freed memory.
    template <typename Find> QFuture<Found> Start(QThread* thread, Find find)
    {
        m_stop = std::stop_source();
        return QtConcurrent::run(QThreadPool::globalInstance(),
            [find = std::move(find), stop = m_stop.get_token(), thread]() mutable {
                return std::make_shared<MadeOnPool<T>>(find(stop), thread);
            });
    }

    // The objects of what a finished task made, now the caller's; none when the task was
    // cancelled before it reported (as it is when there is no thread pool to run it).
    static QList<T*> Take(const QFuture<Found>& future)
    {
        return future.resultCount() > 0 ? future.result()->Take() : QList<T*>();
    }

private:
    std::stop_source m_stop; // of the running task
};

} // namespace kiv::cam::ui
