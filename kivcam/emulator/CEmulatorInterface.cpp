// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CEmulatorInterface.h"

#include "CEmulatorDevice.h"

#include <chrono>

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
    return TSharedPtr<IDevice>(
        new CEmulatorDevice(name, displayName.empty() ? name : displayName, m_devices));
}

bool CEmulatorInterface::findDevices(TArray<SDeviceInfo>& out, std::stop_token stop)
{
    if (!scan(stop))
        return false;
    for (const SEmulatedDevice& device : *m_devices)
        out.add(device.info);
    return true;
}

bool CEmulatorInterface::findCameras(TArray<SCameraInfo>& out, std::stop_token stop)
{
    if (!scan(stop))
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

bool CEmulatorInterface::addDevice(SEmulatedDevice device)
{
    if (!m_deviceIndex.insert(device.info.deviceName.view(), m_devices->count()))
        return false;
    complete(device.info);
    m_devices->add(std::move(device));
    return true;
}

void CEmulatorInterface::addCamera(SEmulatedCamera camera)
{
    m_cameras.add(std::move(camera));
}

void CEmulatorInterface::reserveCameras(int count)
{
    m_cameras.reserve(count);
}

const SEmulatedDevice* CEmulatorInterface::device(const CString& deviceName) const
{
    const int position = m_deviceIndex.find(deviceName.view());
    return position < 0 ? nullptr : &(*m_devices)[position];
}

const SEmulatedCamera* CEmulatorInterface::cameraOn(
    const CString& deviceName, const CString& serial) const
{
    const SEmulatedCamera* first = nullptr;
    for (const SEmulatedCamera& camera : m_cameras) {
        if (camera.info.comm.deviceName != deviceName)
            continue;
        if (camera.info.serial == serial)
            return &camera;
        if (!first)
            first = &camera;
    }
    return first;
}

bool CEmulatorInterface::scan(const std::stop_token& stop) const
{
    return Wait(std::chrono::milliseconds(scanDelay), stop) && !scanFails;
}

} // namespace kiv::cam
