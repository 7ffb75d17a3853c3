// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// A camera library backend for the connection model's tests, registered by the test that
// includes this header. Its transport "ProbeLink" and its controller "Probe" count what is
// alive, open and connected, can be told to fail, to take a while, or to stop at a gate until
// the test lets them through, so that a test can tell exactly what a connect left behind.
//   camera types: "ProbeCam" and "ProbeCam2" (controller "Probe"), "ProbeOrphan" (controller
//   "NoSuchController", which nobody makes)

#include <kivcam/CBackend.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace probe {

using namespace kiv;
using namespace kiv::cam;

// A point where calls wait while it is closed, and which counts the calls that reached it.
class CGate {
public:
    void pass()
    {
        std::unique_lock lock(m_mutex);
        ++m_arrived;
        m_changed.notify_all();
        m_changed.wait_for(lock, std::chrono::seconds(30), [this] { return m_open; });
    }
    void close()
    {
        std::lock_guard lock(m_mutex);
        m_open = false;
        m_arrived = 0;
    }
    void open()
    {
        std::lock_guard lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }
    bool reached()
    {
        std::lock_guard lock(m_mutex);
        return m_arrived > 0;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_open = true;
    int m_arrived = 0;
};

// What the probe's objects did, and what they are told to do.
struct SProbe {
    static inline std::atomic<int> devicesAlive{0};
    static inline std::atomic<int> devicesOpen{0};
    static inline std::atomic<int> controllersAlive{0};
    static inline std::atomic<int> controllersConnected{0};
    // What the last open and connect were given.
    static inline std::atomic<bool> openedExclusively{false};
    static inline std::atomic<bool> connectedToOpenDevice{false};
    static inline std::mutex recordMutex;
    static inline CString lastOpened; // device name
    static inline CString lastConnected; // camera serial

    static inline std::atomic<bool> openFails{false};
    static inline std::atomic<bool> connectFails{false};
    static inline std::atomic<int> openDelay{0}; // milliseconds
    static inline std::atomic<int> connectDelay{0};
    static inline CGate openGate;
    static inline CGate connectGate;

    // Forgets the records before it opens the gates, so that a call let through is recorded.
    static void reset()
    {
        openFails = false;
        connectFails = false;
        openDelay = 0;
        connectDelay = 0;
        {
            std::lock_guard lock(recordMutex);
            lastOpened = {};
            lastConnected = {};
        }
        openGate.open();
        connectGate.open();
    }
};

class CProbeDevice : public IDevice {
public:
    CProbeDevice() { ++SProbe::devicesAlive; }
    // Does not close: a device freed while open stays counted as open.
    ~CProbeDevice() override { --SProbe::devicesAlive; }
    bool open(SDeviceInfo info, bool exclusive) override
    {
        SProbe::openGate.pass();
        std::this_thread::sleep_for(std::chrono::milliseconds(SProbe::openDelay));
        if (m_open || SProbe::openFails)
            return false;
        SProbe::openedExclusively = exclusive;
        {
            std::lock_guard lock(SProbe::recordMutex);
            SProbe::lastOpened = info.deviceName;
        }
        m_info = std::move(info);
        m_open = true;
        ++SProbe::devicesOpen;
        return true;
    }
    void close() override
    {
        if (m_open.exchange(false))
            --SProbe::devicesOpen;
    }
    bool isOpen() const override { return m_open; }
    const SDeviceInfo& info() const override { return m_info; }

private:
    SDeviceInfo m_info;
    std::atomic<bool> m_open{false};
};

class CProbeController : public IController {
public:
    CProbeController() { ++SProbe::controllersAlive; }
    // Does not disconnect: a controller freed while connected stays counted as connected.
    ~CProbeController() override { --SProbe::controllersAlive; }
    bool connect(TSharedPtr<IDevice> device, SCameraInfo camera) override
    {
        SProbe::connectGate.pass();
        std::this_thread::sleep_for(std::chrono::milliseconds(SProbe::connectDelay));
        SProbe::connectedToOpenDevice = device && device->isOpen();
        if (m_connected || SProbe::connectFails || !device || !device->isOpen())
            return false;
        {
            std::lock_guard lock(SProbe::recordMutex);
            SProbe::lastConnected = camera.serial;
        }
        m_connected = true;
        ++SProbe::controllersConnected;
        return true;
    }
    void disconnect() override
    {
        if (m_connected.exchange(false))
            --SProbe::controllersConnected;
    }
    bool isConnected() const override { return m_connected; }
    CString name() const override { return "Probe"; }

private:
    std::atomic<bool> m_connected{false};
};

class CProbeInterface : public IInterface {
public:
    CProbeInterface()
    {
        name = "ProbeLink";
        displayName = "Probe link";
        icon = "Serial";
        baseType = "Probe";
        comm = true;
        isEmulator = true;
    }
    TSharedPtr<IDevice> createDevice() override { return TSharedPtr<IDevice>(new CProbeDevice); }
    bool findDevices(TArray<SDeviceInfo>&, std::stop_token) override { return true; }
    bool findCameras(TArray<SCameraInfo>&, std::stop_token) override { return true; }
};

class CProbeBackend : public CBackend {
public:
    void interfaces(TArray<TSharedPtr<IInterface>>& out) override
    {
        out.add(TSharedPtr<IInterface>(new CProbeInterface));
    }
    void cameraTypes(TArray<TSharedPtr<ICamera>>& out) override
    {
        const char* types[][3]
            = {{"ProbeCam", "Probe camera", "Probe"}, {"ProbeCam2", "Second probe camera", "Probe"},
                {"ProbeOrphan", "Probe camera without controller", "NoSuchController"}};
        for (const auto& [typeName, displayName, controller] : types) {
            auto* type = new ICamera;
            type->name = typeName;
            type->displayName = displayName;
            type->controller = controller;
            type->baseTypes = {"Probe"};
            out.add(TSharedPtr<ICamera>(type));
        }
    }
    void controllerNames(TArray<CString>& out) override { out.add("Probe"); }
    TSharedPtr<IController> createController(const CString& name) override
    {
        if (name == CString("Probe"))
            return TSharedPtr<IController>(new CProbeController);
        return {};
    }
};

KIVCAM_REGISTER_BACKEND(CProbeBackend);

// A camera of a probe type on a probe device.
inline SCameraInfo makeCamera(const char* type, const char* serial, const char* device = "P0")
{
    SCameraInfo camera;
    camera.name = type;
    camera.serial = serial;
    camera.comm.interfaceName = "ProbeLink";
    camera.comm.deviceName = device;
    camera.comm.baseType = "Probe";
    return camera;
}

} // namespace probe
