// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGenICamController.h"

#include "CAravisDevice.h"
#include "CGenICamFrameSource.h"

#include <kiv/strprintf.h>

#include <arv.h>
#include <cstdlib>

namespace kiv::cam {

namespace {

constexpr const char* NotConnected = "The camera is not connected.";

std::int64_t integerOf(const SGenICamFeature* row)
{
    return row ? std::strtoll(row->value.data(), nullptr, 10) : 0;
}

// What the pictures of a stream look like, by the features that decide it.
CString pictureOf(const CGenICamTree& tree)
{
    CString picture;
    for (const char* name : {"PayloadSize", "Width", "Height", "PixelFormat"}) {
        const SGenICamFeature* row = tree.Find(name);
        picture += (row ? row->value : CString()) + "/";
    }
    return picture;
}

} // namespace

CGenICamController::CGenICamController() : m_frames(std::make_unique<CGenICamFrameSource>())
{
}

CGenICamController::~CGenICamController()
{
    disconnect();
}

bool CGenICamController::connect(TSharedPtr<IDevice> device, SCameraInfo camera)
{
    disconnect();
    SetError(CString());
    bool connected = false;
    CString error;
    m_worker.run([&] { connected = Open(std::move(device), camera, error); });
    if (!connected)
        SetError(std::move(error));
    return connected;
}

bool CGenICamController::Open(TSharedPtr<IDevice> device, const SCameraInfo& camera, CString& error)
{
    auto* aravis = dynamic_cast<CAravisDevice*>(device.get());
    if (!aravis || !aravis->arvDevice()) {
        error = "The device is not an open GenICam camera.";
        return false;
    }
    if (!aravis->hasControl()) {
        error = aravis->errorMessage();
        return false;
    }
    ArvDevice* arv = aravis->arvDevice();
    // Aravis caches what the description lets it cache and forgets what a write invalidates, so
    // that reading the tree again after a write asks the camera only for what may have changed.
    arv_device_set_register_cache_policy(arv, ARV_REGISTER_CACHE_POLICY_ENABLE);
    if (!camera.model.empty()) {
        GError* failure = nullptr;
        const CString model(arv_device_get_string_feature_value(arv, "DeviceModelName", &failure));
        g_clear_error(&failure);
        if (!(model == camera.model)) {
            error = strprintf("The camera is a \"%s\", not the \"%s\" its description names.",
                model.data(), camera.model.data());
            return false;
        }
    }
    if (!m_tree.Read(arv, error))
        return false;
    m_device = std::move(device);
    m_aravis = aravis;
    m_camera = camera;
    m_connected = true;
    m_control = true;
    // Reported on threads of Aravis's and of the stream; handled here, in turn with the rest.
    const auto lost
        = [this](const CString& message) { m_worker.post([this, message] { Lost(message); }); };
    m_device->setLostHandler(lost);
    m_frames->setStreamLost(lost);
    m_frames->setRateWriter([this](double rate) {
        SGenICamFeature row;
        CString message;
        if (!feature("AcquisitionFrameRate", row)
            || !CGenICamTree::Check(row, strprintf("%.17g", rate), message))
            return false;
        setFeature("AcquisitionFrameRate", strprintf("%.17g", rate));
        return true;
    });
    if (const SGenICamFeature* rate = m_tree.Find("AcquisitionFrameRate"))
        m_frames->setCameraRate(std::strtod(rate->value.data(), nullptr));
    CString streamError;
    if (!StartStream(streamError))
        SetError(strprintf("The camera is connected, but its pictures cannot be streamed: %s",
            streamError.data()));
    // What acquiring locks.
    m_tree.Refresh(arv);
    {
        std::lock_guard lock(m_mutex);
        m_published = m_tree.rows();
    }
    m_listeners.forEach([](IGenICamListener* listener) { listener->treeChanged(); });
    return true;
}

void CGenICamController::disconnect()
{
    m_connected = false;
    if (m_frames->isDeliveryThread()) {
        // From within a picture's delivery: the deliveries end here, and the stream, which waits
        // for this call to return, ends on the worker afterwards.
        m_frames->stop(nullptr);
        m_worker.post([this] { Close(); });
    } else {
        m_worker.run([this] { Close(); });
    }
}

void CGenICamController::Close()
{
    if (!m_device)
        return;
    m_device->setLostHandler({});
    StopStream();
    m_frames->setStreamLost({});
    m_frames->setRateWriter({});
    m_tree.Clear();
    m_device = {};
    m_aravis = nullptr;
    m_connected = false;
    m_control = false;
    {
        std::lock_guard lock(m_mutex);
        m_published = {};
    }
    m_listeners.forEach([](IGenICamListener* listener) { listener->treeChanged(); });
}

bool CGenICamController::isConnected() const
{
    return m_connected;
}

CString CGenICamController::name() const
{
    return Name;
}

IFrameSource* CGenICamController::frameSource()
{
    return m_frames.get();
}

TArray<SGenICamFeature> CGenICamController::features() const
{
    std::lock_guard lock(m_mutex);
    return m_published;
}

bool CGenICamController::feature(const CString& name, SGenICamFeature& out) const
{
    std::lock_guard lock(m_mutex);
    for (const SGenICamFeature& row : m_published) {
        if (row.name == name) {
            out = row;
            return true;
        }
    }
    return false;
}

template <typename Work> void CGenICamController::Request(Done done, Work work)
{
    m_worker.post([this, done = std::move(done), work = std::move(work)] {
        SGenICamResult result;
        if (!m_device) {
            result.message = NotConnected;
        } else {
            result = work(m_aravis->arvDevice());
            Publish();
        }
        if (done)
            done(result);
    });
}

void CGenICamController::setFeature(const CString& name, const CString& value, Done done)
{
    Request(std::move(done), [this, name, value](ArvDevice* device) {
        SGenICamResult result = m_tree.Write(device, name, value);
        // Also after a refusal: the row then shows what the camera really holds.
        m_tree.Refresh(device);
        return result;
    });
}

void CGenICamController::execute(const CString& name, Done done)
{
    Request(std::move(done), [this, name](ArvDevice* device) {
        SGenICamResult result;
        const SGenICamFeature* row = m_tree.Find(name);
        if (row && row->type != SGenICamFeature::COMMAND) {
            result.message = strprintf("%s is not a command.", name.data());
            return result;
        }
        // The stream starts and stops with the acquisition, whoever asks for it.
        if (name == "AcquisitionStart") {
            result.ok = m_frames->isStreaming() || StartStream(result.message);
        } else if (name == "AcquisitionStop") {
            StopStream();
            result.ok = true;
        } else {
            result = m_tree.Write(device, name, CString());
        }
        m_tree.Refresh(device);
        return result;
    });
}

void CGenICamController::refresh(Done done)
{
    Request(std::move(done), [this](ArvDevice* device) {
        // Everything from the camera itself, cached or not.
        arv_device_set_register_cache_policy(device, ARV_REGISTER_CACHE_POLICY_DISABLE);
        m_tree.Refresh(device);
        arv_device_set_register_cache_policy(device, ARV_REGISTER_CACHE_POLICY_ENABLE);
        SGenICamResult result;
        result.ok = true;
        return result;
    });
}

SGenICamResult CGenICamController::WriteFitted(const char* name, std::int64_t value)
{
    // The limits of the moment: a write to the other feature of the axis moves them.
    ArvDevice* device = m_aravis->arvDevice();
    SGenICamFeature row;
    m_tree.ReadNow(device, name, row);
    const CString text = strprintf("%lld", static_cast<long long>(CGenICamTree::Fit(row, value)));
    if (row.value == text) {
        SGenICamResult unchanged;
        unchanged.ok = true;
        return unchanged;
    }
    return m_tree.Write(device, name, text);
}

// The size and offset of one axis in an order the coupled limits allow: a smaller size first,
// so that the offset has room; a larger size last, once the offset has made room for it.
SGenICamResult CGenICamController::ApplyWindowAxis(
    const char* offsetName, const char* sizeName, std::int64_t offset, std::int64_t size)
{
    SGenICamFeature now;
    m_tree.ReadNow(m_aravis->arvDevice(), sizeName, now);
    const std::int64_t current = integerOf(&now);
    SGenICamResult result;
    result.ok = true;
    if (size < current)
        result = WriteFitted(sizeName, size);
    if (result.ok)
        result = WriteFitted(offsetName, offset);
    if (result.ok && size > current)
        result = WriteFitted(sizeName, size);
    return result;
}

void CGenICamController::setSensorWindow(const SSensorWindow& window, Done done)
{
    Request(std::move(done), [this, window](ArvDevice* device) {
        SGenICamResult result;
        for (const char* name : {"OffsetX", "OffsetY", "Width", "Height"}) {
            const SGenICamFeature* row = m_tree.Find(name);
            if (!row || row->type != SGenICamFeature::INTEGER) {
                result.message = strprintf(
                    "The camera has no sensor window: its description lacks the integer %s.", name);
                return result;
            }
        }
        const bool streaming = m_frames->isStreaming();
        if (streaming)
            StopStream();
        result = ApplyWindowAxis("OffsetX", "Width", window.x, window.width);
        if (result.ok)
            result = ApplyWindowAxis("OffsetY", "Height", window.y, window.height);
        m_tree.Refresh(device);
        CString error;
        if (streaming && !StartStream(error) && result.ok) {
            result.ok = false;
            result.message = strprintf(
                "The sensor window was set, but the pictures cannot be streamed again: %s",
                error.data());
        }
        return result;
    });
}

SSensorWindow CGenICamController::sensorWindow() const
{
    SSensorWindow window;
    std::lock_guard lock(m_mutex);
    for (const SGenICamFeature& row : m_published) {
        const std::int64_t value = integerOf(&row);
        if (row.name == "OffsetX")
            window.x = value;
        else if (row.name == "OffsetY")
            window.y = value;
        else if (row.name == "Width")
            window.width = value;
        else if (row.name == "Height")
            window.height = value;
    }
    return window;
}

void CGenICamController::startAcquisition(Done done)
{
    execute("AcquisitionStart", std::move(done));
}

void CGenICamController::stopAcquisition(Done done)
{
    execute("AcquisitionStop", std::move(done));
}

bool CGenICamController::StartStream(CString& error)
{
    SCameraInfo camera = m_camera;
    const bool started = m_frames->start(m_aravis->arvDevice(), camera, error);
    m_acquiring = started;
    m_streamPicture = pictureOf(m_tree);
    return started;
}

void CGenICamController::StopStream()
{
    // A camera that is gone is not asked to stop.
    m_frames->stop(m_control ? m_aravis->arvDevice() : nullptr);
    m_acquiring = false;
}

bool CGenICamController::isAcquiring() const
{
    return m_acquiring;
}

void CGenICamController::Publish()
{
    TArray<SGenICamFeature> changed;
    {
        std::lock_guard lock(m_mutex);
        changed = CGenICamTree::Changed(m_published, m_tree.rows());
        m_published = m_tree.rows();
    }
    if (changed.empty())
        return;
    // A stream whose pictures changed size or format under it starts again with the new ones.
    CString error;
    if (m_frames->isStreaming() && !(pictureOf(m_tree) == m_streamPicture)) {
        StopStream();
        StartStream(error);
    }
    if (const SGenICamFeature* rate = m_tree.Find("AcquisitionFrameRate"))
        m_frames->setCameraRate(std::strtod(rate->value.data(), nullptr));
    m_listeners.forEach([&](IGenICamListener* listener) { listener->featuresChanged(changed); });
}

void CGenICamController::Lost(const CString& message)
{
    if (!m_device || !m_control)
        return;
    m_control = false;
    // Closing the device then leaves the rest of Aravis's farewell to the camera in the background.
    m_aravis->MarkLost();
    SetError(message);
    m_listeners.forEach([&](IGenICamListener* listener) { listener->connectionLost(message); });
    reportLost(message);
}

bool CGenICamController::hasControl() const
{
    return m_control;
}

void CGenICamController::SetError(CString message)
{
    std::lock_guard lock(m_mutex);
    m_error = std::move(message);
}

CString CGenICamController::errorMessage() const
{
    std::lock_guard lock(m_mutex);
    return m_error;
}

void CGenICamController::subscribe(IGenICamListener* listener)
{
    m_listeners.add(listener);
}

void CGenICamController::unsubscribe(IGenICamListener* listener)
{
    m_listeners.remove(listener);
}

} // namespace kiv::cam
