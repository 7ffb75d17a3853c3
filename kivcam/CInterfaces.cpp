// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CInterfaces.h"

#include "CBackend.h"
#include "FalseOnThrow.h"
#include "InterfaceScan.h"

namespace kiv::cam {

CInterfaces::CInterfaces()
{
    for (const TSharedPtr<CBackend>& backend : CBackend::all())
        backend->interfaces(m_interfaces);
}

CInterfaces::~CInterfaces() = default;

TSharedPtr<IInterface> CInterfaces::interfaceAt(int index)
{
    return index >= 0 && index < m_interfaces.count() ? m_interfaces[index]
                                                      : TSharedPtr<IInterface>();
}

TSharedPtr<IInterface> CInterfaces::interfaceByName(const CString& name)
{
    for (const TSharedPtr<IInterface>& transport : m_interfaces) {
        if (transport->name == name)
            return transport;
    }
    return {};
}

int CInterfaces::interfaceCount()
{
    return m_interfaces.count();
}

void CInterfaces::setEnableEmulators(bool enable)
{
    m_enableEmulators.set(enable);
}

bool CInterfaces::enableEmulators() const
{
    return m_enableEmulators.get();
}

bool CInterfaces::findDevices(TArray<SDeviceInfo>& out, unsigned flags)
{
    return findDevices(out, flags, std::stop_token());
}

bool CInterfaces::findDevicesOf(TArray<SDeviceInfo>& out, TArray<CString> baseTypes, unsigned flags)
{
    return findDevicesOf(out, std::move(baseTypes), flags, std::stop_token());
}

bool CInterfaces::findDevices(TArray<SDeviceInfo>& out, unsigned flags, std::stop_token stop)
{
    const bool emulators = m_enableEmulators.take();
    return FalseOnThrow([&] {
        return ScanInterfaces(*this, emulators, (flags & FIND_EMULATORS_ONLY) != 0,
            &IInterface::findDevices, out, stop);
    });
}

bool CInterfaces::findDevicesOf(
    TArray<SDeviceInfo>& out, TArray<CString> baseTypes, unsigned flags, std::stop_token stop)
{
    TArray<SDeviceInfo> found;
    const bool ok = findDevices(found, flags, std::move(stop));
    return FalseOnThrow([&] {
        for (SDeviceInfo& device : found) {
            if (baseTypes.contains(device.baseType) || baseTypes.contains(device.interfaceName))
                out.add(std::move(device));
        }
        return ok;
    });
}

CInterfaces* interfaces()
{
    static CInterfaces instance;
    return &instance;
}

} // namespace kiv::cam
