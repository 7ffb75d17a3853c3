// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CAravisDevice.h"

#include "CGenICamWorker.h"

#include <arv.h>
#include <atomic>
#include <utility>

namespace kiv::cam {

// What Aravis's heartbeat thread writes when it finds control lost. Shared with the signal
// handler, which may still run while the device is being closed.
struct SAravisWatch {
    std::atomic<bool> control{true};
    CString lostMessage;
    // Held while the device's lost handler is told, so that closing the device waits for that.
    std::mutex handlerMutex;
    std::function<void(const CString&)> report; // empty once the device is closed
};

namespace {

void controlLost(ArvDevice*, gpointer data)
{
    SAravisWatch& watch = **static_cast<std::shared_ptr<SAravisWatch>*>(data);
    // Aravis reports it once; a second report changes nothing.
    if (!watch.control.exchange(false))
        return;
    std::lock_guard lock(watch.handlerMutex);
    if (watch.report)
        watch.report(watch.lostMessage);
}

void releaseWatch(gpointer data, GClosure*)
{
    delete static_cast<std::shared_ptr<SAravisWatch>*>(data);
}

// Finalising the Aravis objects of a camera that is gone waits for Aravis's heartbeat and stream
// threads to give up and for its farewell to the camera to time out, several seconds; this thread
// does that instead of the caller. It ends with the process, after what it was given.
CGenICamWorker& finaliser()
{
    static CGenICamWorker worker;
    return worker;
}

} // namespace

CAravisDevice::CAravisDevice() = default;

CAravisDevice::~CAravisDevice()
{
    close();
}

bool CAravisDevice::open(SDeviceInfo info, bool exclusive)
{
    if (isOpen()) {
        SetError("The camera is open already.");
        return false;
    }
    CString error;
    if (!Open(std::move(info), exclusive, error)) {
        SetError(std::move(error));
        return false;
    }
    return true;
}

void CAravisDevice::Adopt(ArvDevice* device, SDeviceInfo info, CString lostMessage)
{
    auto watch = std::make_shared<SAravisWatch>();
    watch->lostMessage = std::move(lostMessage);
    watch->report = [this](const CString& message) { reportLost(message); };
    const gulong handler = g_signal_connect_data(device, "control-lost", G_CALLBACK(controlLost),
        new std::shared_ptr<SAravisWatch>(watch), releaseWatch, GConnectFlags(0));
    std::lock_guard lock(m_mutex);
    m_device = device;
    m_handler = handler;
    m_watch = std::move(watch);
    m_info = std::move(info);
    m_error = CString();
}

void CAravisDevice::SetError(CString message)
{
    std::lock_guard lock(m_mutex);
    m_error = std::move(message);
}

void CAravisDevice::close()
{
    ArvDevice* device = nullptr;
    bool lost = false;
    std::shared_ptr<SAravisWatch> watch;
    {
        std::lock_guard lock(m_mutex);
        std::swap(device, m_device);
        if (device)
            g_signal_handler_disconnect(device, m_handler);
        m_handler = 0;
        lost = m_watch && !m_watch->control;
        watch = std::exchange(m_watch, nullptr);
    }
    if (watch) {
        // A signal that came before the disconnection may still be on its way.
        std::lock_guard lock(watch->handlerMutex);
        watch->report = {};
    }
    if (!device)
        return;
    // Finalising the device stops its heartbeat and gives control back.
    if (lost)
        ReleaseInBackground(device);
    else
        g_object_unref(device);
}

void CAravisDevice::ReleaseInBackground(void* object)
{
    finaliser().post([object] { g_object_unref(object); });
}

void CAravisDevice::MarkLost()
{
    std::lock_guard lock(m_mutex);
    if (m_watch)
        m_watch->control = false;
}

bool CAravisDevice::isOpen() const
{
    std::lock_guard lock(m_mutex);
    return m_device != nullptr;
}

const SDeviceInfo& CAravisDevice::info() const
{
    return m_info;
}

CString CAravisDevice::errorMessage() const
{
    std::lock_guard lock(m_mutex);
    if (m_watch && !m_watch->control)
        return m_watch->lostMessage;
    return m_error;
}

bool CAravisDevice::hasControl() const
{
    std::lock_guard lock(m_mutex);
    return m_watch && m_watch->control;
}

} // namespace kiv::cam
