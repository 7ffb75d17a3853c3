#include "CEmulatorInterface.h"

#include "CEmulatorDevice.h"

#include <chrono>
#include <thread>

namespace kiv::cam {

const SEmulatedDevice* FindEmulatedDevice(
    const TArray<SEmulatedDevice>& devices, const CString& deviceName)
{
    for (const SEmulatedDevice& device : devices) {
        if (device.info.deviceName == deviceName)
            return &device;
    }
    return nullptr;
}

CEmulatorInterface::CEmulatorInterface() : m_devices(MakeShared<TArray<SEmulatedDevice>>())
{
}

TSharedPtr<IDevice> CEmulatorInterface::createDevice()
{
    return TSharedPtr<IDevice>(new CEmulatorDevice(name, m_devices));
}

bool CEmulatorInterface::findDevices(TArray<SDeviceInfo>& out)
{
    scan();
    if (scanFails)
        return false;
    for (const SEmulatedDevice& device : *m_devices)
        out.add(device.info);
    return true;
}

bool CEmulatorInterface::findCameras(TArray<SCameraInfo>& out)
{
    scan();
    if (scanFails)
        return false;
    for (const SEmulatedCamera& camera : m_cameras)
        out.add(camera.info);
    return true;
}

void CEmulatorInterface::complete(SDeviceInfo& device) const
{
    device.interfaceName = name;
    if (device.iconName.empty())
        device.iconName = icon;
    if (device.baseType.empty())
        device.baseType = baseType;
}

void CEmulatorInterface::addDevice(SEmulatedDevice device)
{
    complete(device.info);
    m_devices->add(std::move(device));
}

void CEmulatorInterface::addCamera(SEmulatedCamera camera)
{
    m_cameras.add(std::move(camera));
}

const SEmulatedDevice* CEmulatorInterface::device(const CString& deviceName) const
{
    return FindEmulatedDevice(*m_devices, deviceName);
}

bool CEmulatorInterface::cameraConnectFails(const CString& deviceName, const CString& serial) const
{
    for (const SEmulatedCamera& camera : m_cameras) {
        if (camera.info.comm.deviceName == deviceName && camera.info.serial == serial)
            return camera.connectFails;
    }
    return false;
}

void CEmulatorInterface::scan() const
{
    std::this_thread::sleep_for(std::chrono::milliseconds(scanDelay));
}

} // namespace kiv::cam
