// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/IInterface.h>
#include <kivcam/kivcam_export.h>
#include <kivcam/usb3/SU3VCamera.h>

#include <stop_token>
#include <utility>

namespace kiv::cam {

class CGenICamWorker;

// USB3 Vision cameras, listed through Aravis's USB3 Vision interface alone (which sends nothing
// on any network) and through sysfs. A camera is its own device: the record carries its strings,
// its GUID and its bus path.
//
// Aravis lists only the cameras this process may open; sysfs adds those it may not, which are
// listed as cannot be connected, with the reason. Each free camera is opened for a moment to read
// its user-defined name.
class KIVCAM_EXPORT CU3VInterface : public IInterface {
public:
    // Names of the device parameters.
    static constexpr const char* VendorParameter = "Vendor";
    static constexpr const char* ModelParameter = "Model";
    static constexpr const char* SerialParameter = "Serial";
    static constexpr const char* GuidParameter = "GUID";
    static constexpr const char* BusPathParameter = "BusPath";

    // The base type of the devices, and the name of the camera type for cameras whose model
    // the camera catalogue does not know.
    static constexpr const char* BaseType = "USB3-Vision";
    static constexpr const char* GenericCameraType = "USB3 Vision camera";

    CU3VInterface();

    TSharedPtr<IDevice> createDevice() override;
    bool findDevices(TArray<SDeviceInfo>& out, std::stop_token stop) override;
    bool findCameras(TArray<SCameraInfo>& out, std::stop_token stop) override;

    // Lists the cameras on the listing thread and waits for it, or returns false as soon as stop
    // is requested, even while the listing thread is busy.
    static bool Find(TArray<SU3VCamera>& out, const std::stop_token& stop);

    // Why a listed camera cannot be connected, as errorSummary and errorMessage; both empty when
    // it can.
    static std::pair<CString, CString> Diagnosis(const SU3VCamera& camera);

    // The camera as messages name it: vendor, model, serial number and where it is plugged in.
    static CString Describe(const SU3VCamera& camera);

    // The one thread that uses Aravis's USB3 Vision interface, and opens USB3 Vision cameras, for
    // the life of the process: an ArvInterface may be used from one thread only, and scans run on
    // changing threads.
    static CGenICamWorker& ListingThread();

private:
    SDeviceInfo DeviceRecord(const SU3VCamera& camera) const;
    SCameraInfo CameraRecord(const SU3VCamera& camera) const;
};

} // namespace kiv::cam
