#pragma once

#include <kiv/CString.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IEmulatorController.h>
#include <kivcam/emulator/CEmulatorFrameSource.h>
#include <kivcam/emulator/CEmulatorWorld.h>

#include <atomic>

namespace kiv::cam {

// A controller of the emulator's world; its faults, and its cameras', come from the world. While
// connected it streams the camera's images through its frame source.
class CEmulatorController : public IEmulatorController {
public:
    CEmulatorController(
        CEmulatorWorld::SController settings, TSharedPtr<const CEmulatorWorld> world);

    bool connect(TSharedPtr<IDevice> device, SCameraInfo camera) override;
    void disconnect() override;
    bool isConnected() const override;
    CString name() const override;
    IFrameSource* frameSource() override;
    bool runNuc() override;

private:
    const CEmulatorWorld::SController m_settings;
    const TSharedPtr<const CEmulatorWorld> m_world;
    std::atomic<bool> m_connected{false};
    CEmulatorFrameSource m_frames;
};

} // namespace kiv::cam
