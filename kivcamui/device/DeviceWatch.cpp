// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "DeviceWatch.h"

#include <kivcam/udev/CDeviceWatcher.h>

#include <utility>

DeviceWatch::DeviceWatch(QObject* model, std::function<void()> scan, std::function<bool()> scanning)
    : QObject(model), m_scan(std::move(scan)), m_scanning(std::move(scanning))
{
    m_wait.setSingleShot(true);
    m_wait.setInterval(burstWait);
    connect(&m_wait, &QTimer::timeout, this, [this] { m_scan(); });
}

DeviceWatch::~DeviceWatch()
{
    setEnabled(false);
}

bool DeviceWatch::setEnabled(bool enabled)
{
    if (enabled == this->enabled())
        return false;
    kiv::cam::CDeviceWatcher* watcher = kiv::cam::deviceWatcher();
    if (!enabled) {
        watcher->unsubscribe(std::exchange(m_subscription, 0));
        m_wait.stop();
        m_again = false;
        return true;
    }
    // On the watcher's thread: the call is posted to this object, and Qt drops it with the object.
    m_subscription = watcher->subscribe([this](const kiv::cam::SDeviceEvent&) {
        QMetaObject::invokeMethod(this, &DeviceWatch::DeviceChanged, Qt::QueuedConnection);
    });
    return m_subscription != 0;
}

void DeviceWatch::DeviceChanged()
{
    if (!enabled())
        return; // posted before it was switched off
    if (m_scanning())
        m_again = true;
    else if (!m_wait.isActive())
        m_wait.start();
}

void DeviceWatch::ScanningChanged()
{
    if (m_scanning())
        m_wait.stop(); // this search sees every change so far
    else if (std::exchange(m_again, false))
        m_wait.start();
}
