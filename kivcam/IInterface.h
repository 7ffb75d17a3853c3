// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IDevice.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/SDeviceInfo.h>
#include <kivcam/kivcam_export.h>

#include <chrono>
#include <stop_token>

namespace kiv::cam {

// One transport: a frame grabber family, serial ports, a network interface, an emulator.
// Transports come from backends (see CBackend) and are listed by the transport catalogue.
class KIVCAM_EXPORT IInterface {
public:
    virtual ~IInterface();

    // A new, unopened device object of this transport.
    virtual TSharedPtr<IDevice> createDevice() = 0;

    // The scans. Each runs on a thread of its own, beside the scans of the other transports, and
    // blocks for as long as it takes. False when the scan itself failed.
    //
    // A scan is stopped early when stop is requested: by a search whose owner is gone or that a
    // newer search replaces. Every wait of a scan must wake on it and end the scan with false:
    // a fixed delay through Wait(); a wait on a socket (answers to a discovery broadcast, a
    // bounded UDP wait) or a device through a std::stop_callback that wakes it, for example by
    // writing to an eventfd the wait polls as well, or by shutting the socket down. A default
    // std::stop_token is never stopped.

    // Appends a record per device of this transport that is present now.
    virtual bool findDevices(TArray<SDeviceInfo>& out, std::stop_token stop) = 0;
    // Appends a record per camera that answers on a device of this transport, with comm (and,
    // where the camera's images arrive through another device, video) filled in, and with
    // canConnect, errorSummary and errorMessage telling whether it can be connected as found.
    virtual bool findCameras(TArray<SCameraInfo>& out, std::stop_token stop) = 0;

    CString icon; // icon base name of the transport's kind
    CString name; // the key of the transport in the catalogue
    CString displayName;
    CString description;
    CString baseType; // the base type of its devices
    bool comm = false; // can carry camera control
    bool video = false; // can carry images
    bool isEmulator = false; // a software emulator, hidden unless emulators are enabled
    SDeviceInfo defaultDevice; // template of a device of this transport filled in by hand

    // Waits for delay, or less when stop is requested; true when the whole delay passed. Scans
    // wait through it, and so does whatever else of a transport waits on a stop token.
    static bool Wait(std::chrono::milliseconds delay, const std::stop_token& stop);
};

} // namespace kiv::cam
