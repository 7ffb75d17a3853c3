// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGenICamEmulatorInterface.h"

#include "CGenICamEmulatorDevice.h"

#include <kivcam/CameraTypes.h>

namespace kiv::cam {

namespace {

// A device record of this transport with the camera's serial number; writable in the template
// of a device filled in by hand, read-only in a found camera's.
SDeviceInfo deviceRecord(const CString& serial, CParameters::EEditLevel editLevel)
{
    SDeviceInfo device;
    device.interfaceName = CGenICamEmulatorInterface::Name;
    device.deviceName = serial;
    device.baseType = CGenICamEmulatorInterface::BaseType;
    device.iconName = "Emulator";
    device.description = "Emulated GenICam camera";
    device.parameters.Add(CParameters::CEntry(CGenICamEmulatorInterface::SerialParameter,
        "Serial number", "The serial number of the emulated camera", editLevel, CVariant(serial)));
    return device;
}

} // namespace

CGenICamEmulatorInterface::CGenICamEmulatorInterface(
    TArray<CEmulatorWorld::SGenICamCamera> cameras, TSharedPtr<const ICamera> type)
    : m_cameras(std::move(cameras)), m_type(std::move(type))
{
    icon = "Emulator";
    name = Name;
    displayName = "Emulated GenICam cameras";
    description = "GenICam cameras emulated in this program: each is its own device, for control "
                  "and images.";
    baseType = BaseType;
    comm = true;
    video = true;
    isEmulator = true;
    defaultDevice = deviceRecord(CString(), CParameters::EDIT_ALWAYS);
}

TSharedPtr<IDevice> CGenICamEmulatorInterface::createDevice()
{
    return TSharedPtr<IDevice>(new CGenICamEmulatorDevice);
}

bool CGenICamEmulatorInterface::findDevices(TArray<SDeviceInfo>& out, std::stop_token stop)
{
    if (stop.stop_requested())
        return false;
    for (const CEmulatorWorld::SGenICamCamera& camera : m_cameras)
        out.add(deviceRecord(camera.serial, CParameters::EDIT_NEVER));
    return true;
}

bool CGenICamEmulatorInterface::findCameras(TArray<SCameraInfo>& out, std::stop_token stop)
{
    if (stop.stop_requested())
        return false;
    for (const CEmulatorWorld::SGenICamCamera& camera : m_cameras) {
        SCameraInfo info = m_type->defaultInfo;
        info.serial = camera.serial;
        info.identity = camera.identity;
        info.firmwareVersion = FirmwareVersion;
        info.comm = deviceRecord(camera.serial, CParameters::EDIT_NEVER);
        info.video = info.comm;
        out.add(std::move(info));
    }
    return true;
}

TSharedPtr<ICamera> CGenICamEmulatorInterface::CameraType(const CString& controller)
{
    TSharedPtr<ICamera> type = GenericCameraType(CameraTypeName, "Emulator",
        "A GenICam camera emulated in this program, with features of every kind a GenICam "
        "controller meets.",
        controller, BaseType);
    type->models.add(ModelName);
    // What the camera streams when it opens: EmulatedCamera.xml and the fake camera's defaults.
    SCameraInfo& info = type->defaultInfo;
    info.model = ModelName;
    info.vendor = VendorName;
    info.reduceFilter = "Passthrough8";
    info.width = 512;
    info.height = 512;
    info.frameRate = 25;
    info.emulated = true;
    return type;
}

} // namespace kiv::cam
