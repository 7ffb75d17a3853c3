// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <mutex>

namespace kiv::cam::ui {

// Hands calls from the camera's threads to a QObject on its own thread, safely while the object
// is being destroyed: the object's destructor detaches the relay, and from then on nothing more is
// posted. Threads that call back later keep the relay alive through their shared pointer.
class GuiRelay {
public:
    static std::shared_ptr<GuiRelay> Make(QObject* receiver)
    {
        return std::shared_ptr<GuiRelay>(new GuiRelay(receiver));
    }

    // From any thread: call runs on the receiver's thread, unless the receiver is gone by then.
    void Post(std::function<void()> call)
    {
        const std::lock_guard lock(m_mutex);
        if (m_receiver)
            QMetaObject::invokeMethod(m_receiver, std::move(call), Qt::QueuedConnection);
    }
    // From the receiver's destructor. Calls posted before and not yet run are dropped by Qt with
    // the receiver.
    void Detach()
    {
        const std::lock_guard lock(m_mutex);
        m_receiver = nullptr;
    }

private:
    explicit GuiRelay(QObject* receiver) : m_receiver(receiver) { }

    std::mutex m_mutex;
    QObject* m_receiver;
};

} // namespace kiv::cam::ui
