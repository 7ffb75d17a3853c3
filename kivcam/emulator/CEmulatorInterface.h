#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IInterface.h>

namespace kiv::cam {

// A device of an emulated transport, as findDevices reports it, with its fault.
struct SEmulatedDevice {
    SDeviceInfo info;
    bool openFails = false;
};

// A camera attached to an emulated transport, as findCameras reports it, with its fault.
struct SEmulatedCamera {
    SCameraInfo info;
    bool connectFails = false;
};

// The device of that name among devices; null when there is none.
const SEmulatedDevice* FindEmulatedDevice(
    const TArray<SEmulatedDevice>& devices, const CString& deviceName);

// A transport of the emulator's world. It is filled while the world is read and only read
// afterwards, so its scans may run on any thread.
class CEmulatorInterface : public IInterface {
public:
    CEmulatorInterface();

    TSharedPtr<IDevice> createDevice() override;
    bool findDevices(TArray<SDeviceInfo>& out) override;
    bool findCameras(TArray<SCameraInfo>& out) override;

    // Fills in what a device record of this transport leaves out: the transport's name, and
    // its icon and base type unless the record gives its own.
    void complete(SDeviceInfo& device) const;
    // Adds a device, completed.
    void addDevice(SEmulatedDevice device);
    void addCamera(SEmulatedCamera camera);

    const TArray<SEmulatedDevice>& devices() const { return *m_devices; }
    const SEmulatedDevice* device(const CString& deviceName) const;
    // Whether the world marks the camera of that serial on that device as failing to connect.
    bool cameraConnectFails(const CString& deviceName, const CString& serial) const;

    int scanDelay = 0; // milliseconds each scan takes
    bool scanFails = false;

private:
    void scan() const;

    // Shared with the devices this transport creates, which may outlive it.
    TSharedPtr<TArray<SEmulatedDevice>> m_devices;
    TArray<SEmulatedCamera> m_cameras;
};

} // namespace kiv::cam
