#pragma once

#include <QJSEngine>
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
    // Objects without parent, made on the calling thread; they are marked as the C++ side's, as
    // the lists that show them mark them, and moved to thread. Marking them here spares the
    // model's thread the QML engine's data of each object: the QML library has set itself up
    // on the model's thread before, when the model marked its own lists.
    MadeOnPool(QList<T*> objects, QThread* thread) : m_objects(std::move(objects))
    {
        for (T* object : std::as_const(m_objects)) {
            QJSEngine::setObjectOwnership(object, QJSEngine::CppOwnership);
            object->moveToThread(thread);
        }
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
