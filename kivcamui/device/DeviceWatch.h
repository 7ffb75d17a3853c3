// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

// Lets a discovery model follow the machine: while enabled, a USB3 Vision camera or USB serial
// adapter plugged in or out (the camera library's device watcher) starts the model's search.
// The first event of a burst starts a short wait that the others join, so a burst gives one
// search; an event during a search gives exactly one more once it ends; and no search is started
// while one runs. A search that starts for any reason covers the events before it.
//
// The model owns it as a child. Its events come from the watcher's thread to this object's
// thread as posted calls, which go with the object should it be destroyed first; it unsubscribes
// when destroyed, which waits for a call that is posting one, so none comes after.
class DeviceWatch : public QObject {
    Q_OBJECT

public:
    // How long after the first event of a burst the search starts, in milliseconds.
    static constexpr int burstWait = 300;

    // For a model with scan(), scanning() and the signal scanningChanged(); off until enabled.
    template <class Model>
    explicit DeviceWatch(Model* model)
        : DeviceWatch(
            model, [model] { model->scan(); }, [model] { return model->scanning(); })
    {
        connect(model, &Model::scanningChanged, this, &DeviceWatch::ScanningChanged);
    }
    ~DeviceWatch() override;

    bool enabled() const { return m_subscription != 0; }
    // Subscribes to the watcher, or unsubscribes at once, forgetting the events not yet acted
    // on. False when nothing changed (it was so already, or the watcher took no listener).
    bool setEnabled(bool enabled);

private:
    DeviceWatch(QObject* model, std::function<void()> scan, std::function<bool()> scanning);

    // A device was plugged in or out.
    void DeviceChanged();
    void ScanningChanged();

    std::function<void()> m_scan;
    std::function<bool()> m_scanning;
    QTimer m_wait;
    int m_subscription = 0;
    bool m_again = false; // an event came during the search
};
