// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// A backend for the catalogue tests, registered by every test that includes this header. Its
// transports, camera types and controllers are fixed here, so the tests know what to expect;
// the emulator's world is emptied through the test's environment.

#include <kivcam/CBackend.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace test {

using namespace kiv;
using namespace kiv::cam;

// Switches the tests flip to make scans fail or meet each other.
struct SScanControl {
    static inline std::atomic<bool> failBroken{false};
    // When on, the scans of "TestSerial" and "TestGrabber" each wait for the other to start, so
    // they succeed only when they run at the same time.
    static inline std::atomic<bool> rendezvous{false};
    static inline std::mutex mutex;
    static inline std::condition_variable arrived;
    static inline int waiting = 0;
    // When on, the scan of "TestGrabber" waits for a minute unless it is stopped; stopped
    // counts the scans that a stop request woke.
    static inline std::atomic<bool> hold{false};
    static inline std::atomic<int> stopped{0};
    static inline std::atomic<int> holding{0};

    static bool meet()
    {
        if (!rendezvous)
            return true;
        std::unique_lock lock(mutex);
        ++waiting;
        arrived.notify_all();
        return arrived.wait_for(lock, std::chrono::seconds(20), [] { return waiting >= 2; });
    }
};

inline SDeviceInfo makeDevice(const char* transport, const char* name, const char* baseType)
{
    SDeviceInfo device;
    device.interfaceName = transport;
    device.deviceName = name;
    device.baseType = baseType;
    device.iconName = "Serial";
    return device;
}

inline SCameraInfo makeCamera(const char* type, const char* serial, const SDeviceInfo& comm)
{
    SCameraInfo camera;
    camera.name = type;
    camera.serial = serial;
    camera.comm = comm;
    return camera;
}

class CTestDevice : public IDevice {
public:
    bool open(SDeviceInfo info, bool) override
    {
        m_info = info;
        m_open = true;
        return true;
    }
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    const SDeviceInfo& info() const override { return m_info; }

private:
    SDeviceInfo m_info;
    bool m_open = false;
};

class CTestInterface : public IInterface {
public:
    CTestInterface(const char* transport, const char* base, bool emulator)
    {
        name = transport;
        displayName = transport;
        baseType = base;
        icon = emulator ? "Emulator" : "Serial";
        isEmulator = emulator;
        comm = true;
        defaultDevice = makeDevice(transport, "", base);
    }
    TSharedPtr<IDevice> createDevice() override { return TSharedPtr<IDevice>(new CTestDevice); }
    bool findDevices(TArray<SDeviceInfo>& out, std::stop_token stop) override
    {
        if (!scanStarts(stop))
            return false;
        for (const SDeviceInfo& device : devices)
            out.add(device);
        return true;
    }
    bool findCameras(TArray<SCameraInfo>& out, std::stop_token stop) override
    {
        if (!scanStarts(stop))
            return false;
        for (const SCameraInfo& camera : cameras)
            out.add(camera);
        return true;
    }

    TArray<SDeviceInfo> devices;
    TArray<SCameraInfo> cameras;
    bool broken = false;

private:
    bool scanStarts(const std::stop_token& stop) const
    {
        if (broken)
            return !SScanControl::failBroken;
        if (SScanControl::hold && name == CString("TestGrabber")) {
            ++SScanControl::holding;
            if (Wait(std::chrono::minutes(1), stop))
                return true;
            ++SScanControl::stopped;
            return false;
        }
        if (name == CString("TestSerial") || name == CString("TestGrabber"))
            return SScanControl::meet();
        return true;
    }
};

class CTestController : public IController {
public:
    explicit CTestController(CString name) : m_name(std::move(name)) { }
    bool connect(TSharedPtr<IDevice> device, SCameraInfo) override
    {
        m_connected = device && device->isOpen();
        return m_connected;
    }
    void disconnect() override { m_connected = false; }
    bool isConnected() const override { return m_connected; }
    CString name() const override { return m_name; }

private:
    CString m_name;
    bool m_connected = false;
};

class CTestBackend : public CBackend {
public:
    void interfaces(TArray<TSharedPtr<IInterface>>& out) override
    {
        auto* serial = new CTestInterface("TestSerial", "Serial", false);
        const SDeviceInfo com1 = makeDevice("TestSerial", "COM1", "Serial");
        SDeviceInfo com2 = makeDevice("TestSerial", "COM2", "Serial");
        com2.canConnect = false;
        com2.errorSummary = "Port busy";
        com2.errorMessage = "Another program holds the port.";
        serial->devices = {com1, com2};
        SCameraInfo controlOnly = makeCamera("TypeA", "A-1", com1);
        controlOnly.controller = "Generic";
        SCameraInfo busy = makeCamera("TypeA", "A-2", com2);
        SCameraInfo ghost = makeCamera("Ghost", "G-1", com1);
        SCameraInfo orphan = makeCamera("TypeC", "C-1", com1);
        serial->cameras = {controlOnly, busy, ghost, orphan};

        auto* grabber = new CTestInterface("TestGrabber", "CameraLink", false);
        const SDeviceInfo port = makeDevice("TestGrabber", "Grabber 0 / Port 0", "CameraLink");
        grabber->devices = {port};
        SCameraInfo complete = makeCamera("TypeB", "B-1", port);
        complete.video = makeDevice("TestGrabber", "Grabber 0", "CameraLink");
        SCameraInfo refused = makeCamera("TypeB", "B-2", port);
        refused.video = complete.video;
        refused.canConnect = false;
        refused.errorSummary = "Firmware too old";
        refused.errorMessage = "Update the firmware.";
        grabber->cameras = {complete, refused};

        auto* emulator = new CTestInterface("TestEmu", "CamEmu", true);
        const SDeviceInfo emu = makeDevice("TestEmu", "Emu 0", "CamEmu");
        emulator->devices = {emu};
        SCameraInfo emulated = makeCamera("TypeA", "E-1", emu);
        emulated.emulated = true;
        emulator->cameras = {emulated};

        auto* broken = new CTestInterface("TestBroken", "Serial", false);
        broken->broken = true;
        broken->devices = {makeDevice("TestBroken", "COM9", "Serial")};

        for (IInterface* transport :
            {static_cast<IInterface*>(serial), static_cast<IInterface*>(grabber),
                static_cast<IInterface*>(emulator), static_cast<IInterface*>(broken)})
            out.add(TSharedPtr<IInterface>(transport));
    }
    void cameraTypes(TArray<TSharedPtr<ICamera>>& out) override
    {
        for (const char* typeName : {"TypeA", "TypeB", "TypeC"}) {
            auto* type = new ICamera;
            type->name = typeName;
            type->displayName = CString("Type ") + CString(typeName + 4);
            type->iconName = "Kelvin";
            type->controller = typeName[4] == 'A' ? "Generic"
                : typeName[4] == 'B'              ? "Special"
                                                  : "Missing";
            type->baseTypes = typeName[4] == 'B' ? TArray<CString>{"CameraLink"}
                                                 : TArray<CString>{"Serial", "CamEmu"};
            out.add(TSharedPtr<ICamera>(type));
        }
    }
    void controllerNames(TArray<CString>& out) override
    {
        out.add("Generic");
        out.add("Special");
    }
    TSharedPtr<IController> createController(const CString& controller) override
    {
        if (controller == CString("Generic") || controller == CString("Special"))
            return TSharedPtr<IController>(new CTestController(controller));
        return {};
    }
};

KIVCAM_REGISTER_BACKEND(CTestBackend);

} // namespace test
