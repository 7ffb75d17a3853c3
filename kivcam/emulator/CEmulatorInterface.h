// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/CNameIndex.h>
#include <kivcam/IInterface.h>
#include <kivcam/kivcam_export.h>

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
    int lostAfter = 0; // milliseconds connected before the camera falls silent; 0: never
};

// The device of that name among devices; null when there is none.
const SEmulatedDevice* FindEmulatedDevice(
    const TArray<SEmulatedDevice>& devices, const CString& deviceName);

// A transport of the emulator's world. It is filled while the world is read and only read
// afterwards, so its scans may run on any thread. Exported, like the world, for the world's
// fuzzer.
class KIVCAM_EXPORT CEmulatorInterface : public IInterface {
public:
    CEmulatorInterface();

    TSharedPtr<IDevice> createDevice() override;
    bool findDevices(TArray<SDeviceInfo>& out, std::stop_token stop) override;
    bool findCameras(TArray<SCameraInfo>& out, std::stop_token stop) override;

    // Fills in what a device record of this transport leaves out: the transport's name, and
    // its icon and base type unless the record gives its own.
    void complete(SDeviceInfo& device) const;
    // Adds a device, completed, unless the transport has a device of that name; false then.
    bool addDevice(SEmulatedDevice device);
    void addCamera(SEmulatedCamera camera);
    // Makes room for count cameras in all, so that adding them moves none.
    void reserveCameras(int count);

    const TArray<SEmulatedDevice>& devices() const { return *m_devices; }
    const SEmulatedDevice* device(const CString& deviceName) const;
    // The camera on that device: the one of that serial, else the device's first; null when
    // the device has none.
    const SEmulatedCamera* cameraOn(const CString& deviceName, const CString& serial) const;

    int scanDelay = 0; // milliseconds each scan takes, unless it is stopped
    bool scanFails = false;

private:
    // Whether a scan succeeds: it takes scanDelay, or less when stopped, which fails it.
    bool scan(const std::stop_token& stop) const;

    // Shared with the devices this transport creates, which may outlive it.
    TSharedPtr<TArray<SEmulatedDevice>> m_devices;
    CNameIndex m_deviceIndex; // positions in m_devices by device name
    TArray<SEmulatedCamera> m_cameras;
};

} // namespace kiv::cam
