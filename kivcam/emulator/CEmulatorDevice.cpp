// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CEmulatorDevice.h"

#include <kiv/strprintf.h>

#include <utility>

namespace kiv::cam {

CEmulatorDevice::CEmulatorDevice(
    CString interfaceName, CString displayName, TSharedPtr<const TArray<SEmulatedDevice>> devices)
    : m_interfaceName(std::move(interfaceName)),
      m_displayName(std::move(displayName)),
      m_devices(std::move(devices))
{
}

bool CEmulatorDevice::open(SDeviceInfo info, bool)
{
    std::lock_guard lock(m_mutex);
    m_error = Refusal(info);
    if (!m_error.empty())
        return false;
    m_info = std::move(info);
    m_open = true;
    return true;
}

CString CEmulatorDevice::Refusal(SDeviceInfo& info) const
{
    if (m_open)
        return "The device is open already.";
    if (info.interfaceName != m_interfaceName)
        return strprintf("The device \"%s\" is a device of \"%s\", not of \"%s\".",
            info.deviceName.data(), info.interfaceName.data(), m_interfaceName.data());
    if (info.deviceName.empty()) {
        CString refusal = Identify(info);
        if (!refusal.empty() || info.deviceName.empty())
            return refusal;
    }
    const SEmulatedDevice* device = FindEmulatedDevice(*m_devices, info.deviceName);
    if (!device)
        return strprintf("There is no device \"%s\" on \"%s\" now.", info.deviceName.data(),
            m_interfaceName.data());
    if (!device->info.canConnect)
        return !device->info.errorMessage.empty()
            ? device->info.errorMessage
            : strprintf("The device \"%s\" on \"%s\" cannot be used.", info.deviceName.data(),
                m_interfaceName.data());
    if (device->openFails)
        return strprintf("The device \"%s\" on \"%s\" did not open.", info.deviceName.data(),
            m_interfaceName.data());
    return {};
}

CString CEmulatorDevice::Identify(SDeviceInfo& info) const
{
    const auto fixedOnAFoundDevice = [this](const CString& name) {
        for (const SEmulatedDevice& device : *m_devices) {
            if (device.info.parameters.Exists(name)
                && device.info.parameters[name].editLevel != CParameters::EDIT_ALWAYS)
                return true;
        }
        return false;
    };
    for (unsigned i = 0; i < info.parameters.count(); ++i) {
        const CParameters::CEntry& entry = info.parameters[i];
        if (entry.editLevel != CParameters::EDIT_ALWAYS || !fixedOnAFoundDevice(entry.name))
            continue;
        const CString value = entry.value().ToString();
        for (const SEmulatedDevice& device : *m_devices) {
            if (device.info.parameters.Exists(entry.name)
                && device.info.parameters.TextOf(entry.name) == value) {
                info.deviceName = device.info.deviceName;
                return {};
            }
        }
        return strprintf(
            "No emulated device on \"%s\" answers at \"%s\".", m_displayName.data(), value.data());
    }
    return {};
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

CString CEmulatorDevice::errorMessage() const
{
    std::lock_guard lock(m_mutex);
    return m_error;
}

} // namespace kiv::cam
