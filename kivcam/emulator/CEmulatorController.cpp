#include "CEmulatorController.h"

#include <kiv/strprintf.h>

#include <chrono>
#include <condition_variable>
#include <thread>
#include <utility>

namespace kiv::cam {

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
    std::this_thread::sleep_for(std::chrono::milliseconds(m_settings.connectDelay));
    const SEmulatedCamera* emulated = m_world->emulatedCamera(camera);
    if (m_settings.connectFails || (emulated && emulated->connectFails)) {
        SetError(strprintf("The camera %s did not answer the controller \"%s\".",
            camera.serial.data(), m_settings.name.data()));
        return false;
    }
    // Connected before the first image, which a listener may answer with a disconnect.
    m_connected = true;
    if (!m_frames.start(camera)) {
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
