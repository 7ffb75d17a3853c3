#include "CInterfaces.h"

#include "CBackend.h"
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
    m_enableEmulators = enable;
}

bool CInterfaces::findDevices(TArray<SDeviceInfo>& out, unsigned flags)
{
    return ScanInterfaces(*this, m_enableEmulators, (flags & FIND_EMULATORS_ONLY) != 0,
        &IInterface::findDevices, out);
}

bool CInterfaces::findDevicesOf(TArray<SDeviceInfo>& out, TArray<CString> baseTypes, unsigned flags)
{
    TArray<SDeviceInfo> found;
    const bool ok = findDevices(found, flags);
    for (SDeviceInfo& device : found) {
        if (baseTypes.contains(device.baseType) || baseTypes.contains(device.interfaceName))
            out.add(std::move(device));
    }
    return ok;
}

CInterfaces* interfaces()
{
    static CInterfaces instance;
    return &instance;
}

} // namespace kiv::cam
