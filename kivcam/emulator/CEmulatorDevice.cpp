#include "CEmulatorDevice.h"

#include <utility>

namespace kiv::cam {

CEmulatorDevice::CEmulatorDevice(
    CString interfaceName, TSharedPtr<const TArray<SEmulatedDevice>> devices)
    : m_interfaceName(std::move(interfaceName)), m_devices(std::move(devices))
{
}

bool CEmulatorDevice::open(SDeviceInfo info, bool)
{
    std::lock_guard lock(m_mutex);
    if (m_open || info.interfaceName != m_interfaceName)
        return false;
    const SEmulatedDevice* device = FindEmulatedDevice(*m_devices, info.deviceName);
    if (!device || device->openFails || !device->info.canConnect)
        return false;
    m_info = std::move(info);
    m_open = true;
    return true;
}

void CEmulatorDevice::close()
{
    std::lock_guard lock(m_mutex);
    m_open = false;
}

bool CEmulatorDevice::isOpen() const
{
    std::lock_guard lock(m_mutex);
    return m_open;
}

const SDeviceInfo& CEmulatorDevice::info() const
{
    return m_info;
}

} // namespace kiv::cam
