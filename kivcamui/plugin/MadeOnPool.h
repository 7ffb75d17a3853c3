// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QList>
#include <QObject>
#include <QThread>

#include <utility>

namespace kiv::cam::ui {

// Objects that a task of Qt's global pool made for a model, moved to the model's thread as the
// task ends, so that the model's thread only takes them. Until the model takes them nobody else
// knows them: those left untaken (the model is gone, or the search was stopped) are deleted with
// this, on whichever thread lets go of it last.
template <typename T> class MadeOnPool {
public:
    MadeOnPool() = default;
    // Objects without parent, made on the calling thread, and moved to thread. Nothing of the
    // QML engine's is touched here: the lists that show the objects mark them on their thread.
    MadeOnPool(QList<T*> objects, QThread* thread) : m_objects(std::move(objects))
    {
        for (T* object : std::as_const(m_objects))
            object->moveToThread(thread);
    }
    ~MadeOnPool() { qDeleteAll(m_objects); }
    MadeOnPool(const MadeOnPool&) = delete;
    MadeOnPool& operator=(const MadeOnPool&) = delete;

    // The objects, now the caller's.
    QList<T*> Take() { return std::exchange(m_objects, {}); }

private:
    QList<T*> m_objects;
};

} // namespace kiv::cam::ui
