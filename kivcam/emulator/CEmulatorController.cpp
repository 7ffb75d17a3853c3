#include "CEmulatorController.h"

#include <chrono>
#include <thread>
#include <utility>

namespace kiv::cam {

CEmulatorController::CEmulatorController(
    CEmulatorWorld::SController settings, TSharedPtr<const CEmulatorWorld> world)
    : m_settings(std::move(settings)), m_world(std::move(world))
{
}

bool CEmulatorController::connect(TSharedPtr<IDevice> device, SCameraInfo camera)
{
    // A new connection ends the stream of the previous one.
    m_connected = false;
    m_frames.stop();
    if (!device || !device->isOpen())
        return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(m_settings.connectDelay));
    if (m_settings.connectFails || m_world->cameraConnectFails(camera))
        return false;
    // Connected before the first image, which a listener may answer with a disconnect.
    m_connected = true;
    if (!m_frames.start(camera)) {
        m_connected = false;
        return false;
    }
    return true;
}

void CEmulatorController::disconnect()
{
    m_connected = false;
    m_frames.stop();
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

bool CEmulatorController::runNuc()
{
    return m_connected && m_frames.runNuc();
}

} // namespace kiv::cam
