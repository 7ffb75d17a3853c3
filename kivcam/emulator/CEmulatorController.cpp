// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CEmulatorController.h"

#include <kiv/CVariant.h>
#include <kiv/strprintf.h>

#include <chrono>
#include <condition_variable>
#include <thread>
#include <utility>

namespace kiv::cam {

namespace {

// The sensor of a control device without a camera of the world on it: a free slot.
constexpr int freeSlotSensorSize = 4096;

bool sameDevice(const SDeviceInfo& a, const SDeviceInfo& b)
{
    return a.interfaceName == b.interfaceName && a.deviceName == b.deviceName;
}

// The device in messages for people.
CString deviceLabel(const SDeviceInfo& device)
{
    return device.deviceName.empty()
        ? strprintf("the device entered by hand on \"%s\"", device.interfaceName.data())
        : strprintf("\"%s\"", device.deviceName.data());
}

} // namespace

CEmulatorController::CEmulatorController(
    CEmulatorWorld::SController settings, TSharedPtr<const CEmulatorWorld> world)
    : m_settings(std::move(settings)), m_world(std::move(world))
{
}

CEmulatorController::~CEmulatorController()
{
    disconnect();
}

bool CEmulatorController::connect(TSharedPtr<IDevice> device, SCameraInfo camera)
{
    // A new connection ends the previous one.
    disconnect();
    SetError(CString());
    if (!device || !device->isOpen()) {
        SetError("The camera's device is not open.");
        return false;
    }
    // A device entered by hand is the device that it opened as.
    const SDeviceInfo reached = camera.comm.deviceName.empty() ? device->info() : camera.comm;
    const SEmulatedCamera* on = m_world->cameraOn(reached, camera.serial);
    CEmulatorScene::EPattern pattern = CEmulatorScene::EPattern::Gradient;
    CString refusal = PictureRefusal(reached, on, camera, pattern);
    if (!refusal.empty()) {
        SetError(std::move(refusal));
        return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(m_settings.connectDelay));
    // The faults belong to the world's camera of this serial alone.
    const SEmulatedCamera* emulated = on && on->info.serial == camera.serial ? on : nullptr;
    if (m_settings.connectFails || (emulated && emulated->connectFails)) {
        SetError(strprintf("The camera %s did not answer the controller \"%s\".",
            camera.serial.data(), m_settings.name.data()));
        return false;
    }
    // Connected before the first image, which a listener may answer with a disconnect.
    m_connected = true;
    if (!m_frames.start(camera, pattern)) {
        m_connected = false;
        SetError("The camera's pictures cannot be made.");
        return false;
    }
    m_device = std::move(device);
    m_device->setLostHandler([this](const CString& reason) { Lose(reason); });
    if (emulated && emulated->lostAfter > 0) {
        const auto silence = std::chrono::milliseconds(emulated->lostAfter);
        const CString reason = strprintf("The camera %s stopped answering.", camera.serial.data());
        m_silence = std::jthread([this, silence, reason](std::stop_token stop) {
            std::mutex mutex;
            std::condition_variable_any wake;
            std::unique_lock lock(mutex);
            // Wakes early only when disconnect() stops it.
            wake.wait_for(lock, stop, silence, [] { return false; });
            if (!stop.stop_requested())
                Lose(reason);
        });
    }
    return true;
}

CString CEmulatorController::PictureRefusal(const SDeviceInfo& reached, const SEmulatedCamera* on,
    SCameraInfo& camera, CEmulatorScene::EPattern& pattern) const
{
    // The finder edits only the control device's parameters, so a camera whose pictures come
    // through its control device takes them from there.
    const SDeviceInfo& carrier = camera.video.empty() || sameDevice(camera.video, camera.comm)
        ? camera.comm
        : camera.video;
    const CParameters& parameters = carrier.parameters;
    if (parameters.Exists("FrameRate")) {
        const CVariant& given = parameters["FrameRate"].value();
        CVariant rate(CVariant::TYPE_DOUBLE);
        const bool number = rate.Assign(given);
        if (!number || !(rate.ToDouble() > 0 && rate.ToDouble() <= IFrameSource::maxFrameRate))
            return strprintf(number ? "The frame rate %s Hz of %s is not possible; choose a rate "
                                      "above 0 and at most %g Hz."
                                    : "The frame rate \"%s\" of %s is not a number; choose a "
                                      "rate above 0 and at most %g Hz.",
                given.ToString().data(), deviceLabel(carrier).data(), IFrameSource::maxFrameRate);
        camera.frameRate = rate.ToDouble();
    }
    if (parameters.Exists("Pattern")) {
        const CString name = parameters["Pattern"].value().ToString();
        if (!CEmulatorScene::PatternFromName(name, pattern))
            return strprintf("The test pattern \"%s\" of %s is not one the emulator draws; "
                             "choose Gradient, Noise or Bars.",
                name.data(), deviceLabel(carrier).data());
    }

    // A record that describes no pictures at all is a camera reached for control alone.
    if (camera.pixelType.isNull() && camera.width == 0 && camera.height == 0)
        return {};
    if (!CEmulatorScene::CanDraw(camera.pixelType))
        return camera.pixelType.isNull()
            ? CString("The camera description gives no pixel type, so the emulator cannot draw "
                      "its pictures; choose one, such as Mono16.")
            : strprintf("The pixel type %s cannot be drawn by the emulator; choose one of the "
                        "camera library's pixel types, such as Mono16.",
                camera.pixelType.ToString().data());
    int sensorWidth = freeSlotSensorSize;
    int sensorHeight = freeSlotSensorSize;
    CString sensor;
    const TSharedPtr<ICamera> type = on ? m_world->cameraType(on->info.name) : nullptr;
    if (type && type->defaultInfo.width > 0 && type->defaultInfo.height > 0) {
        sensorWidth = type->defaultInfo.width;
        sensorHeight = type->defaultInfo.height;
        sensor = strprintf("the %d x %d sensor of the camera on %s", sensorWidth, sensorHeight,
            deviceLabel(reached).data());
    } else {
        sensor
            = strprintf("the %d x %d sensor of an emulated camera slot", sensorWidth, sensorHeight);
    }
    const bool empty = camera.width == 0 || camera.height == 0;
    if (empty || camera.width > sensorWidth || camera.height > sensorHeight)
        return strprintf(empty ? "The frame %d x %d has no pixels for %s; make it at least 1 x 1 "
                                 "and at most %d x %d."
                               : "The frame %d x %d does not fit %s; make it at most %d x %d.",
            camera.width, camera.height, sensor.data(), sensorWidth, sensorHeight);
    return {};
}

void CEmulatorController::disconnect()
{
    m_connected = false;
    if (m_silence.joinable()) {
        m_silence.request_stop();
        m_silence.join();
    }
    if (m_device) {
        m_device->setLostHandler({});
        m_device = {};
    }
    m_frames.stop();
    m_lost = false;
}

void CEmulatorController::Lose(const CString& reason)
{
    if (m_lost.exchange(true))
        return;
    m_frames.stop();
    SetError(reason);
    reportLost(reason);
}

bool CEmulatorController::isConnected() const
{
    return m_connected;
}

CString CEmulatorController::name() const
{
    return m_settings.name;
}

IFrameSource* CEmulatorController::frameSource()
{
    return &m_frames;
}

CString CEmulatorController::errorMessage() const
{
    std::lock_guard lock(m_mutex);
    return m_error;
}

void CEmulatorController::SetError(CString message)
{
    std::lock_guard lock(m_mutex);
    m_error = std::move(message);
}

bool CEmulatorController::runNuc()
{
    return m_connected && m_frames.runNuc();
}

} // namespace kiv::cam
