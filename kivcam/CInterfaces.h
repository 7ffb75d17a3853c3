// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IInterface.h>
#include <kivcam/SDeviceInfo.h>
#include <kivcam/TEmulatorSwitch.h>
#include <kivcam/kivcam_export.h>

#include <stop_token>

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
    // Whether the following device searches of this catalogue include emulator transports (off
    // at start). The switch is the catalogue's, and also remembered for the thread that sets
    // it, for that thread's next device search of this catalogue, by the same rule as
    // CCameraFinder::setEnableEmulators: a task that sets it right before it searches gets its
    // own value whatever other threads set meanwhile; a search on a thread that has set nothing
    // since its last search uses the catalogue's value, the last one set by anybody.
    virtual void setEnableEmulators(bool enable);
    // Searches every transport at once, so a search takes as long as the slowest transport,
    // and appends one record per device, in catalogue order. False when a transport's scan
    // failed (the devices of the others are appended all the same), and when the search itself
    // failed (too little memory).
    virtual bool findDevices(TArray<SDeviceInfo>& out, unsigned flags);
    // The same, keeping devices whose base type or transport name is in baseTypes.
    virtual bool findDevicesOf(TArray<SDeviceInfo>& out, TArray<CString> baseTypes, unsigned flags);
    // The same searches, stopped early when stop is requested: every transport's scan is handed
    // stop and wakes on it (see IInterface), so the search ends soon after, with false and the
    // devices found so far.
    virtual bool findDevices(TArray<SDeviceInfo>& out, unsigned flags, std::stop_token stop);
    virtual bool findDevicesOf(
        TArray<SDeviceInfo>& out, TArray<CString> baseTypes, unsigned flags, std::stop_token stop);

    // The value the calling thread's next device search of this catalogue uses.
    bool enableEmulators() const;

private:
    TArray<TSharedPtr<IInterface>> m_interfaces;
    TEmulatorSwitch<CInterfaces> m_enableEmulators;
};

KIVCAM_EXPORT CInterfaces* interfaces();

} // namespace kiv::cam
