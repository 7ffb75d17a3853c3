// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QCoreApplication>
#include <QThread>
#include <QThreadPool>

#include <memory>

namespace kiv::cam::ui {

// Shares value. When the last holder lets go of it on the GUI thread, the value is destroyed on
// a thread of Qt's global pool, so that freeing the records of a whole search (their texts and
// parameter collections) never holds the GUI thread up; anywhere else, or once the application
// is gone, it is destroyed at once.
template <typename T> std::shared_ptr<T> ShareReleasedOnPool(T value)
{
    return std::shared_ptr<T>(new T(std::move(value)), [](T* released) {
        const QCoreApplication* application = QCoreApplication::instance();
        QThreadPool* pool = application ? QThreadPool::globalInstance() : nullptr;
        if (pool && QThread::currentThread() == application->thread())
            pool->start([released] { delete released; });
        else
            delete released;
    });
}

} // namespace kiv::cam::ui
