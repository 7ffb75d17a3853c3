// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/IInterface.h>
#include <kivcam/gige/SGigECamera.h>
#include <kivcam/kivcam_export.h>

#include <stop_token>

namespace kiv::cam {

// GigE Vision cameras, found by a discovery broadcast on each adapter the user allows
// (CGigEConfig), each adapter on a thread of its own. A camera is its own device: the record
// carries its addresses and the adapter it answered on.
//
// A camera that answers on several adapters is listed once, by MAC address, preferring an
// adapter it can be reached through. A camera in another subnet than its adapter, or controlled
// by another application, is listed as one that cannot be connected, with the reason.
class KIVCAM_EXPORT CGigEInterface : public IInterface {
public:
    // Names of the device parameters.
    static constexpr const char* AddressParameter = "Address";
    static constexpr const char* SubnetMaskParameter = "SubnetMask";
    static constexpr const char* GatewayParameter = "Gateway";
    static constexpr const char* MacParameter = "MAC";
    static constexpr const char* AdapterParameter = "Adapter";
    static constexpr const char* AdapterAddressParameter = "AdapterAddress";
    static constexpr const char* DeviceVersionParameter = "DeviceVersion";

    // The base type of the devices, and the name of the camera type for cameras whose model
    // the camera catalogue does not know.
    static constexpr const char* BaseType = "GigE-Vision";
    static constexpr const char* GenericCameraType = "GigE Vision camera";

    CGigEInterface();

    TSharedPtr<IDevice> createDevice() override;
    bool findDevices(TArray<SDeviceInfo>& out, std::stop_token stop) override;
    bool findCameras(TArray<SCameraInfo>& out, std::stop_token stop) override;

    // Gives the camera of a found device record a temporary address by its MAC address,
    // through the adapter it answered on, which must be one the user allows. netmask and
    // gateway are dotted quads; an empty gateway is none. False, with the reason in error, when
    // it cannot be done. Search again afterwards to see the camera at its new address.
    static bool ForceIp(const SDeviceInfo& device, const CString& address, const CString& netmask,
        const CString& gateway, CString& error);

    // Discovers on every allowed adapter at once, and merges the answers by camera.
    static bool Discover(TArray<SGigECamera>& out, const std::stop_token& stop);

private:
    SDeviceInfo DeviceRecord(const SGigECamera& camera) const;
    SCameraInfo CameraRecord(const SGigECamera& camera) const;
};

} // namespace kiv::cam
