// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/ICamera.h>
#include <kivcam/IInterface.h>
#include <kivcam/emulator/CEmulatorWorld.h>
#include <kivcam/kivcam_export.h>

#include <stop_token>

namespace kiv::cam {

// The emulated GenICam cameras of the emulated world (its <genicam> elements). Each camera is
// its own device, carrying both control and images, known by its serial number; the cameras are
// of the camera type "Emulated GenICam camera" and operated by the GenICam controller.
class KIVCAM_EXPORT CGenICamEmulatorInterface : public IInterface {
public:
    static constexpr const char* Name = "GenICamEmulator";
    static constexpr const char* BaseType = "GenICam-Emulator";
    static constexpr const char* CameraTypeName = "Emulated GenICam camera";
    static constexpr const char* ModelName = "Emulated GenICam";
    static constexpr const char* VendorName = "kivcam";
    static constexpr const char* FirmwareVersion = "1.0.0";
    // The device parameter that names the camera.
    static constexpr const char* SerialParameter = "Serial";

    // The interface of the world's cameras, whose records are made from type's template.
    CGenICamEmulatorInterface(
        TArray<CEmulatorWorld::SGenICamCamera> cameras, TSharedPtr<const ICamera> type);

    TSharedPtr<IDevice> createDevice() override;
    bool findDevices(TArray<SDeviceInfo>& out, std::stop_token stop) override;
    bool findCameras(TArray<SCameraInfo>& out, std::stop_token stop) override;

    // The camera type of the emulated GenICam cameras, with the controller that operates it.
    static TSharedPtr<ICamera> CameraType(const CString& controller);

private:
    const TArray<CEmulatorWorld::SGenICamCamera> m_cameras;
    const TSharedPtr<const ICamera> m_type;
};

} // namespace kiv::cam
