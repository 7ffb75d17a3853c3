#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IDevice.h>
#include <kivcam/emulator/CEmulatorInterface.h>

#include <mutex>

namespace kiv::cam {

// An open connection to a device of an emulated transport.
class CEmulatorDevice : public IDevice {
public:
    CEmulatorDevice(CString interfaceName, TSharedPtr<const TArray<SEmulatedDevice>> devices);

    // Succeeds for a record that names a device of this transport that can be used and has
    // no open fault, when this object is not open yet; errorMessage() says why it did not.
    // Exclusive use is not emulated.
    bool open(SDeviceInfo info, bool exclusive) override;
    void close() override;
    bool isOpen() const override;
    const SDeviceInfo& info() const override;
    CString errorMessage() const override;

private:
    // Why the record cannot be opened now; empty when it can.
    CString Refusal(const SDeviceInfo& info) const;

    const CString m_interfaceName;
    const TSharedPtr<const TArray<SEmulatedDevice>> m_devices;
    mutable std::mutex m_mutex;
    SDeviceInfo m_info;
    CString m_error;
    bool m_open = false;
};

} // namespace kiv::cam
