// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// Helpers of the emulator's tests. The emulator reads its world once per process, so a test
// picks its world with useWorld() before its first use of a catalogue.

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/CCameraFinder.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/SDeviceInfo.h>

#include <QByteArray>
#include <QByteArrayList>
#include <QtGlobal>

namespace emulatortest {

using namespace kiv;
using namespace kiv::cam;

inline void useWorld(const char* fileName)
{
    qputenv("KIVCAM_EMULATOR_WORLD", QByteArray(KIVCAM_TEST_DATA "/") + fileName);
}

inline QByteArray str(const CString& text)
{
    return QByteArray(text.c_str());
}

inline QByteArrayList serials(const TArray<SCameraInfo>& cameras)
{
    QByteArrayList found;
    for (const SCameraInfo& camera : cameras)
        found << str(camera.serial);
    return found;
}

inline QByteArrayList deviceNames(const TArray<SDeviceInfo>& devices)
{
    QByteArrayList found;
    for (const SDeviceInfo& device : devices)
        found << str(device.interfaceName) + "/" + str(device.deviceName);
    return found;
}

inline TArray<SCameraInfo> found(const CCameraFinder& finder)
{
    TArray<SCameraInfo> cameras;
    for (std::uint64_t i = 0; i < finder.size(); ++i)
        cameras.add(finder.at(i));
    return cameras;
}

// The camera of that serial; an empty record when there is none.
inline SCameraInfo bySerial(const TArray<SCameraInfo>& cameras, const char* serial)
{
    for (const SCameraInfo& camera : cameras) {
        if (camera.serial == CString(serial))
            return camera;
    }
    return {};
}

// The device of that transport and name; an empty record when there is none.
inline SDeviceInfo byName(
    const TArray<SDeviceInfo>& devices, const char* transport, const char* name)
{
    for (const SDeviceInfo& device : devices) {
        if (device.interfaceName == CString(transport) && device.deviceName == CString(name))
            return device;
    }
    return {};
}

// The cameras the emulator reports on one transport, straight from its scan.
inline TArray<SCameraInfo> camerasOf(const char* transport)
{
    TArray<SCameraInfo> cameras;
    interfaces()->interfaceByName(transport)->findCameras(cameras, {});
    return cameras;
}

inline TArray<SDeviceInfo> devicesOf(const char* transport)
{
    TArray<SDeviceInfo> devices;
    interfaces()->interfaceByName(transport)->findDevices(devices, {});
    return devices;
}

} // namespace emulatortest
