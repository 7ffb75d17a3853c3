#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/ICamera.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/emulator/CEmulatorInterface.h>

#include <cstddef>

namespace kiv::cam {

// Everything the emulator emulates, read from a world file (docs/emulator-world.md): camera
// types, controllers and transports with their devices and cameras. Never changed once read.
class CEmulatorWorld {
public:
    struct SController {
        CString name;
        bool connectFails = false;
        int connectDelay = 0; // milliseconds each connect takes
    };

    // The world in text; source names it in messages. A world that cannot be read is reported
    // once through kiv::platform::DebugOutput, as "kivcam: <source>:<line>: <reason>", and
    // gives an empty world.
    static TSharedPtr<const CEmulatorWorld> Load(
        const char* text, std::size_t size, const CString& source);
    // The same for a file, or a Qt resource (":/..."); a file that cannot be opened is
    // reported at line 0.
    static TSharedPtr<const CEmulatorWorld> LoadFile(const CString& path);

    const TArray<TSharedPtr<ICamera>>& cameraTypes() const { return m_cameraTypes; }
    const TArray<SController>& controllers() const { return m_controllers; }
    const TArray<TSharedPtr<CEmulatorInterface>>& interfaces() const { return m_interfaces; }

    TSharedPtr<ICamera> cameraType(const CString& name) const;
    const SController* controller(const CString& name) const;
    TSharedPtr<CEmulatorInterface> interfaceByName(const CString& name) const;
    // Whether the world marks the camera, known by its control device and serial, as failing
    // to connect.
    bool cameraConnectFails(const SCameraInfo& camera) const;

private:
    class CReader;

    TArray<TSharedPtr<ICamera>> m_cameraTypes;
    TArray<SController> m_controllers;
    TArray<TSharedPtr<CEmulatorInterface>> m_interfaces;
};

} // namespace kiv::cam
