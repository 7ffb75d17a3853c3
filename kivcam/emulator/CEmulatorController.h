// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IEmulatorController.h>
#include <kivcam/emulator/CEmulatorFrameSource.h>
#include <kivcam/emulator/CEmulatorWorld.h>

#include <atomic>
#include <mutex>
#include <thread>

namespace kiv::cam {

// A controller of the emulator's world; its faults, and its cameras', come from the world. While
// connected it streams the camera's images through its frame source, in the test pattern and at
// the frame rate that the device carrying the pictures gives (its parameters "Pattern" and
// "FrameRate"), in a frame that fits the sensor of the world's camera on the control device.
// The camera is lost when its device reports itself gone, or, for a camera of the world with
// lostAfter, that long after the connect: its pictures stop and the lost handler hears why.
class CEmulatorController : public IEmulatorController {
public:
    CEmulatorController(
        CEmulatorWorld::SController settings, TSharedPtr<const CEmulatorWorld> world);
    ~CEmulatorController() override;

    bool connect(TSharedPtr<IDevice> device, SCameraInfo camera) override;
    void disconnect() override;
    bool isConnected() const override;
    CString name() const override;
    IFrameSource* frameSource() override;
    CString errorMessage() const override;
    bool runNuc() override;

private:
    // Why the camera's pictures cannot be made as its record and the device carrying them say;
    // empty when they can, with the device's frame rate in camera and its test pattern in
    // pattern. reached is the control device the camera is reached through, on the world's
    // camera on it (null for none), whose sensor bounds the frame.
    CString PictureRefusal(const SDeviceInfo& reached, const SEmulatedCamera* on,
        SCameraInfo& camera, CEmulatorScene::EPattern& pattern) const;
    // The camera is gone: its pictures stop, once, and the lost handler hears it.
    void Lose(const CString& reason);
    void SetError(CString message);

    const CEmulatorWorld::SController m_settings;
    const TSharedPtr<const CEmulatorWorld> m_world;
    std::atomic<bool> m_connected{false};
    std::atomic<bool> m_lost{false};
    // The device of the connection, whose losses are the camera's.
    TSharedPtr<IDevice> m_device;
    // Waits out a camera's lostAfter; stopped by disconnect.
    std::jthread m_silence;
    mutable std::mutex m_mutex;
    CString m_error;
    CEmulatorFrameSource m_frames;
};

} // namespace kiv::cam
