#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IInterface.h>
#include <kivcam/SDeviceInfo.h>
#include <kivcam/kivcam_export.h>

#include <atomic>

namespace kiv::cam {

// The catalogue of transports, collected from the backends, and device discovery.
class KIVCAM_EXPORT CInterfaces {
public:
    enum EFindFlags : unsigned {
        FIND_PRESENT = 1, // devices present now; the only kind there is so far
        FIND_EMULATORS_ONLY = 8, // search emulator transports alone
    };

    CInterfaces();
    virtual ~CInterfaces();
    CInterfaces(const CInterfaces&) = delete;
    CInterfaces& operator=(const CInterfaces&) = delete;

    // Every transport, emulators included; empty for an index outside [0, interfaceCount()).
    virtual TSharedPtr<IInterface> interfaceAt(int index);
    virtual TSharedPtr<IInterface> interfaceByName(const CString& name);
    virtual int interfaceCount();
    // Whether the following device searches include emulator transports (off at start).
    virtual void setEnableEmulators(bool enable);
    // Searches every transport at once, so a search takes as long as the slowest transport,
    // and appends one record per device, in catalogue order. False when a transport's scan
    // failed; the devices of the others are appended all the same.
    virtual bool findDevices(TArray<SDeviceInfo>& out, unsigned flags);
    // The same, keeping devices whose base type or transport name is in baseTypes.
    virtual bool findDevicesOf(TArray<SDeviceInfo>& out, TArray<CString> baseTypes, unsigned flags);

    bool enableEmulators() const { return m_enableEmulators; }

private:
    TArray<TSharedPtr<IInterface>> m_interfaces;
    std::atomic<bool> m_enableEmulators{false};
};

KIVCAM_EXPORT CInterfaces* interfaces();

} // namespace kiv::cam
