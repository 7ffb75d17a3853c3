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
    m_connected = false;
    if (!device || !device->isOpen())
        return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(m_settings.connectDelay));
    m_connected = !m_settings.connectFails && !m_world->cameraConnectFails(camera);
    return m_connected;
}

void CEmulatorController::disconnect()
{
    m_connected = false;
}

bool CEmulatorController::isConnected() const
{
    return m_connected;
}

CString CEmulatorController::name() const
{
    return m_settings.name;
}

} // namespace kiv::cam
