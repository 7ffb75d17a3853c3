// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// Plugging fake devices in and out of the fake udev world (umockdev) of a test that CTest runs
// through umockdev-wrapper: each plug and unplug sends udev's event, as the kernel and udev do
// on a real machine, to the udev monitors of the test's own process.

// No Qt header here: GLib's headers, which umockdev's includes, use "signals" as a name, so a
// test whose headers need Qt's keywords includes this one before any Qt header.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <umockdev.h>

namespace plugtest {

// Whether the test runs in a fake udev world.
inline bool InFakeWorld()
{
    const char* preload = std::getenv("LD_PRELOAD");
    return preload && std::strstr(preload, "libumockdev-preload");
}

// A device as the watcher reports it.
struct SPlugged {
    std::string path; // in sysfs: an interface or a port
    std::string node; // of the USB device for an interface
};

// Every device gets names of its own (bus paths "2-1", "2-2"..., ports "ttyUSB1"...), since
// umockdev keeps a few links of an unplugged device.
class CPlugWorld {
public:
    CPlugWorld() = default;
    ~CPlugWorld()
    {
        if (m_world)
            g_object_unref(m_world);
    }
    CPlugWorld(const CPlugWorld&) = delete;
    CPlugWorld& operator=(const CPlugWorld&) = delete;

    bool Make() { return (m_world = umockdev_testbed_new()) != nullptr; }

    // Plugs in a USB device (node /dev/bus/usb/002/DDD) with one interface of that class,
    // subclass and protocol: the interface.
    SPlugged PlugUsb(int classCode, int subclass, int protocol)
    {
        const int address = ++m_devices;
        const std::string busPath = "2-" + std::to_string(address);
        char node[32];
        std::snprintf(node, sizeof node, "/dev/bus/usb/002/%03d", address);
        const std::string device
            = Take(umockdev_testbed_add_device(m_world, "usb", busPath.c_str(), nullptr,
                // attributes
                "busnum", "2", "devnum", std::to_string(address).c_str(), nullptr,
                // properties
                "DEVTYPE", "usb_device", "DEVNAME", node, nullptr));
        const std::string name = busPath + ":1.0";
        const std::string interface = std::to_string(classCode) + "/" + std::to_string(subclass)
            + "/" + std::to_string(protocol);
        return {Take(umockdev_testbed_add_device(m_world, "usb", name.c_str(), device.c_str(),
                    // attributes
                    "bInterfaceClass", Hex(classCode).c_str(), "bInterfaceSubClass",
                    Hex(subclass).c_str(), "bInterfaceProtocol", Hex(protocol).c_str(), nullptr,
                    // properties
                    "DEVTYPE", "usb_interface", "INTERFACE", interface.c_str(), nullptr)),
            node};
    }
    // The control interface of a USB3 Vision camera.
    SPlugged PlugCamera() { return PlugUsb(0xef, 5, 0); }

    // Plugs in a USB serial adapter (an interface of a vendor's class): its port /dev/ttyUSB<n>.
    SPlugged PlugSerialAdapter() { return AddPort("ttyUSB", PlugUsb(0xff, 0, 0).path.c_str()); }
    // A serial port of the machine's own, not on USB: /dev/ttyS<n>.
    SPlugged PlugBoardPort() { return AddPort("ttyS", nullptr); }

    // Sends udev's event of that action ("add", "change", "bind") for the device again.
    void Send(const SPlugged& device, const char* action)
    {
        umockdev_testbed_uevent(m_world, device.path.c_str(), action);
    }

    // Unplugs the device with the USB device it belongs to, if any: the removal events, from
    // the bottom up as the kernel sends them, then the devices go.
    void Unplug(const SPlugged& device)
    {
        std::string path = device.path;
        for (;;) {
            umockdev_testbed_uevent(m_world, path.c_str(), "remove");
            const std::string parent = Parent(path);
            if (parent == "/sys/devices")
                break;
            path = parent;
        }
        umockdev_testbed_remove_device(m_world, path.c_str());
    }

private:
    static std::string Hex(int value)
    {
        char text[8];
        std::snprintf(text, sizeof text, "%02x", value);
        return text;
    }
    static std::string Parent(const std::string& path) { return path.substr(0, path.rfind('/')); }

    static std::string Take(gchar* path)
    {
        const std::string taken = path ? path : "";
        g_free(path);
        return taken;
    }

    SPlugged AddPort(const char* prefix, const char* parent)
    {
        const int number = ++m_ports;
        const std::string name = prefix + std::to_string(number);
        const std::string node = "/dev/" + name;
        const std::string device = "188:" + std::to_string(number);
        return {Take(umockdev_testbed_add_device(m_world, "tty", name.c_str(), parent,
                    // attributes
                    "dev", device.c_str(), nullptr,
                    // properties
                    "DEVNAME", node.c_str(), nullptr)),
            node};
    }

    UMockdevTestbed* m_world = nullptr;
    int m_devices = 0;
    int m_ports = 0;
};

} // namespace plugtest
