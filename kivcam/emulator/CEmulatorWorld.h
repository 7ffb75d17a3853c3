// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/CNameIndex.h>
#include <kivcam/ICamera.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/emulator/CEmulatorInterface.h>
#include <kivcam/kivcam_export.h>

#include <cstddef>
#include <cstdint>

namespace kiv::cam {

// Everything the emulator emulates, read from a world file (docs/emulator-world.md): camera
// types, controllers and transports with their devices and cameras, and the emulated GenICam
// cameras. Never changed once read. Exported for the world's fuzzer and benchmark.
class KIVCAM_EXPORT CEmulatorWorld {
public:
    struct SController {
        CString name;
        bool connectFails = false;
        int connectDelay = 0; // milliseconds each connect takes
    };

    // An emulated GenICam camera, served by the GenICam emulator (kivcam/genicam).
    struct SGenICamCamera {
        CString serial;
        CString identity;
    };

    // The longest serial number of an emulated GenICam camera, in bytes: what the serial number
    // register of the camera holds.
    static constexpr int maxGenICamSerialLength = 15;

    // The largest world file read, in bytes. Worlds are written by hand or generated for tests
    // and benchmarks; the bound holds a world of a hundred thousand devices or parameters and
    // keeps a hostile file from taking the process's memory (docs/emulator-world.md).
    static constexpr std::uint64_t maxFileSize = 32 * 1024 * 1024;

    // The world in text; source names it in messages. Loading takes time in proportion to the
    // size of the text. A world that cannot be read (too little memory included) is reported
    // once through kiv::platform::DebugOutput, as "kivcam: <source>:<line>: <reason>", and
    // gives an empty world. Text that is not valid UTF-8 is repaired, not refused.
    static TSharedPtr<const CEmulatorWorld> Load(
        const char* text, std::size_t size, const CString& source);
    // The same for a file, or a Qt resource (":/..."). A file that cannot be read - missing,
    // not a regular file (a FIFO, a device, a directory, a socket: refused without waiting),
    // larger than maxFileSize - is reported at line 0.
    static TSharedPtr<const CEmulatorWorld> LoadFile(const CString& path);
    // The world of this process: the file the environment variable KIVCAM_EMULATOR_WORLD names
    // when it is set and not empty, the built-in default world otherwise. Read on the first call
    // (thread-safe), which reports a world that cannot be read, and kept for the life of the
    // process; every backend of the emulated world serves this one.
    static TSharedPtr<const CEmulatorWorld> Current();

    const TArray<TSharedPtr<ICamera>>& cameraTypes() const { return m_cameraTypes; }
    const TArray<SController>& controllers() const { return m_controllers; }
    const TArray<TSharedPtr<CEmulatorInterface>>& interfaces() const { return m_interfaces; }
    const TArray<SGenICamCamera>& genicamCameras() const { return m_genicamCameras; }

    TSharedPtr<ICamera> cameraType(const CString& name) const;
    const SController* controller(const CString& name) const;
    TSharedPtr<CEmulatorInterface> interfaceByName(const CString& name) const;
    // The world's camera on that control device: the one of that serial, else the device's
    // first (a description of the user's own, such as a custom camera's, has no serial of the
    // world); null when the device has none.
    const SEmulatedCamera* cameraOn(const SDeviceInfo& device, const CString& serial) const;

private:
    class CReader;

    TArray<TSharedPtr<ICamera>> m_cameraTypes;
    TArray<SController> m_controllers;
    TArray<TSharedPtr<CEmulatorInterface>> m_interfaces;
    TArray<SGenICamCamera> m_genicamCameras;
    // The positions of the above by name, and of the GenICam cameras by serial.
    CNameIndex m_cameraTypeIndex;
    CNameIndex m_controllerIndex;
    CNameIndex m_interfaceIndex;
    CNameIndex m_genicamIndex;
};

} // namespace kiv::cam
