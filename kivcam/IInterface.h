#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IDevice.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/SDeviceInfo.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// One transport: a frame grabber family, serial ports, a network interface, an emulator.
// Transports come from backends (see CBackend) and are listed by the transport catalogue.
class KIVCAM_EXPORT IInterface {
public:
    virtual ~IInterface();

    // A new, unopened device object of this transport.
    virtual TSharedPtr<IDevice> createDevice() = 0;
    // Appends a record per device of this transport that is present now. Blocks for as long as
    // the scan takes. False when the scan itself failed.
    virtual bool findDevices(TArray<SDeviceInfo>& out) = 0;
    // Appends a record per camera that answers on a device of this transport, with comm (and,
    // where the camera's images arrive through another device, video) filled in, and with
    // canConnect, errorSummary and errorMessage telling whether it can be connected as found.
    virtual bool findCameras(TArray<SCameraInfo>& out) = 0;

    CString icon; // icon base name of the transport's kind
    CString name; // the key of the transport in the catalogue
    CString displayName;
    CString description;
    CString baseType; // the base type of its devices
    bool comm = false; // can carry camera control
    bool video = false; // can carry images
    bool isEmulator = false; // a software emulator, hidden unless emulators are enabled
    SDeviceInfo defaultDevice; // template of a device of this transport filled in by hand
};

} // namespace kiv::cam
