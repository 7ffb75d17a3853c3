// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// Helpers of the USB3 Vision tests. CTest runs them through umockdev-wrapper, which shows each
// test a fake udev world (sysfs and device nodes) that the test builds, instead of the machine's:
// the machine's own cameras never take part, and a fake camera can be plugged in. Aravis cannot
// read a fake camera (it asks a real one for its strings over USB), so a fake camera is one that
// only the kernel shows.

#include <kiv/CString.h>
#include <kivcam/SDeviceInfo.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

#include <cstdio>
#include <grp.h>
#include <string>
#include <umockdev.h>
#include <unistd.h>

namespace u3vtest {

using namespace kiv;
using namespace kiv::cam;

inline QByteArray str(const CString& text)
{
    return QByteArray(text.c_str());
}

inline QByteArray parameter(const SDeviceInfo& device, const char* name)
{
    return device.parameters.Exists(name) ? str(device.parameters[CString(name)].value().ToString())
                                          : QByteArray("<none>");
}

// Whether the test runs in a fake udev world.
inline bool InFakeWorld()
{
    return qgetenv("LD_PRELOAD").contains("libumockdev-preload");
}

// The fake udev world of a test.
class CFakeWorld {
public:
    CFakeWorld() = default;
    ~CFakeWorld()
    {
        if (m_world)
            g_object_unref(m_world);
    }
    CFakeWorld(const CFakeWorld&) = delete;
    CFakeWorld& operator=(const CFakeWorld&) = delete;

    bool Make() { return (m_world = umockdev_testbed_new()) != nullptr; }
    // Unplugs every device.
    void Clear()
    {
        if (m_world)
            umockdev_testbed_clear(m_world);
    }

    // Adds devices given in umockdev's text form.
    bool Add(const std::string& description)
    {
        GError* error = nullptr;
        const bool added = umockdev_testbed_add_from_string(m_world, description.c_str(), &error);
        if (error)
            std::fprintf(stderr, "umockdev: %s\n", error->message);
        g_clear_error(&error);
        return added;
    }

    // Plugs in a fake USB3 Vision camera: the device at busPath on the bus with its strings, a
    // control and a streaming interface, and its device node /dev/bus/usb/BBB/DDD.
    bool PlugCamera(const char* busPath, int bus, int address, const char* vendor,
        const char* model, const char* serial)
    {
        char node[32];
        std::snprintf(node, sizeof node, "bus/usb/%03d/%03d", bus, address);
        const std::string device = DevicePath(busPath, bus);
        std::string description = "P: " + device + "\nN: " + node + "\nE: DEVNAME=/dev/" + node
            + "\nE: DEVTYPE=usb_device\nE: SUBSYSTEM=usb\n"
              "A: bDeviceClass=ef\nA: bDeviceSubClass=02\nA: bDeviceProtocol=01\n"
              "A: busnum="
            + std::to_string(bus) + "\nA: devnum=" + std::to_string(address) + "\nA: manufacturer="
            + vendor + "\nA: product=" + model + "\nA: serial=" + serial + "\n";
        // Interface 0 controls the camera, interface 1 streams its images.
        for (const char* protocol : {"0", "2"}) {
            description += "\nP: " + device + "/" + busPath + ":1."
                + (protocol[0] == '0' ? "0" : "1")
                + "\nE: DEVTYPE=usb_interface\nE: SUBSYSTEM=usb\n"
                  "A: bInterfaceClass=ef\nA: bInterfaceSubClass=05\nA: bInterfaceProtocol=0"
                + protocol + "\n";
        }
        return Add(description);
    }

    // Shows the control interface of a fake camera as claimed by a program, as libusb's claim
    // through usbfs looks in sysfs.
    void ClaimCamera(const char* busPath, int bus)
    {
        const std::string control = DevicePath(busPath, bus) + "/" + busPath + ":1.0";
        umockdev_testbed_set_attribute_link(
            m_world, ("/sys" + control).c_str(), "driver", "../../../../../bus/usb/drivers/usbfs");
    }

    // The sysfs path of a device below /sys.
    static std::string DevicePath(const char* busPath, int bus)
    {
        return "/devices/pci0000:00/usb" + std::to_string(bus) + "/" + busPath;
    }

private:
    UMockdevTestbed* m_world = nullptr;
};

// In initTestCase: gives up root in the copy that runs as "nobody" (see U3V_AS_NOBODY), then
// makes the fake world, or skips where the test was not run through umockdev-wrapper.
#define U3V_MAKE_FAKE_WORLD(world)                                                                 \
    do {                                                                                           \
        QVERIFY(u3vtest::DropRootIfAsked());                                                       \
        if (!u3vtest::InFakeWorld())                                                               \
            QSKIP("Run through umockdev-wrapper, which gives the test a fake udev world without "  \
                  "the machine's own cameras");                                                    \
        QVERIFY((world).Make());                                                                   \
    } while (false)

// Root may open every file, so what a user may not open is tested as the user "nobody": a test
// function that needs it runs again, alone, in a copy of the test that gives up root first.
inline constexpr const char* AsNobodyVariable = "U3VTEST_AS_NOBODY";

// In the copy: gives up root for good, before the fake world is made.
inline bool DropRootIfAsked()
{
    if (!qEnvironmentVariableIsSet(AsNobodyVariable))
        return true;
    constexpr gid_t nogroup = 65534;
    constexpr uid_t nobody = 65534;
    return ::setgroups(0, nullptr) == 0 && ::setgid(nogroup) == 0 && ::setuid(nobody) == 0
        && ::geteuid() == nobody;
}

// True when this process is root: then it has run the current test function in a copy as
// "nobody", and passed tells whether that passed. The copy's output goes to standard error when
// it did not.
inline bool RanAsNobody(bool& passed)
{
    if (::geteuid() != 0)
        return false;
    const char* function = QTest::currentTestFunction();
    QProcess copy;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(AsNobodyVariable, "1");
    // The copy makes a fake world of its own; the one of this process is root's.
    environment.remove("UMOCKDEV_DIR");
    copy.setProcessEnvironment(environment);
    copy.setProcessChannelMode(QProcess::MergedChannels);
    copy.start(QCoreApplication::applicationFilePath(), {function});
    const bool finished = copy.waitForFinished(60000);
    const QByteArray output = copy.readAll();
    const QByteArray passLine = QByteArray("::") + function + "()";
    passed = false;
    for (const QByteArray& line : output.split('\n'))
        passed = passed || (line.startsWith("PASS") && line.contains(passLine));
    passed = passed && finished && copy.exitCode() == 0;
    if (!passed)
        std::fprintf(stderr, "The copy run as \"nobody\" did not pass:\n%s\n", output.constData());
    return true;
}

// Runs the calling test function as "nobody" instead when this process is root, and returns.
#define U3V_AS_NOBODY()                                                                            \
    do {                                                                                           \
        bool passed = false;                                                                       \
        if (u3vtest::RanAsNobody(passed)) {                                                        \
            QVERIFY2(passed, "The copy run as \"nobody\" did not pass.");                          \
            return;                                                                                \
        }                                                                                          \
    } while (false)

} // namespace u3vtest
