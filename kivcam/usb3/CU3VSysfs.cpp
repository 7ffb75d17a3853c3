// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CU3VSysfs.h"

#include <kiv/Platform.h>
#include <kiv/strprintf.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace kiv::cam {

namespace {

// Every USB device and interface, by its kernel name: "2-1.4" (bus 2, port 4 of the hub on port
// 1) for a device, "2-1.4:1.0" for its first interface.
constexpr const char* devicesFolder = "/sys/bus/usb/devices";

// An attribute of a device or interface without its line end; empty when it cannot be read.
CString attribute(const CString& entry, const char* name)
{
    const CString path = CString(devicesFolder) + "/" + entry + "/" + name;
    const int file = ::open(path.data(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return {};
    char text[512];
    ssize_t length = ::read(file, text, sizeof text);
    ::close(file);
    while (length > 0 && (text[length - 1] == '\n' || text[length - 1] == ' '))
        --length;
    return length > 0 ? CString(text, static_cast<int>(length)) : CString();
}

// The entries of the devices folder; empty where there is none.
TArray<CString> entries()
{
    TArray<CString> names;
    DIR* folder = ::opendir(devicesFolder);
    if (!folder)
        return names;
    while (const dirent* entry = ::readdir(folder)) {
        if (entry->d_name[0] != '.')
            names.add(CString(entry->d_name));
    }
    ::closedir(folder);
    return names;
}

bool hasClass(const CString& entry, const char* prefix, const char* classCode, const char* subclass,
    const char* protocol)
{
    const std::string name(prefix);
    return attribute(entry, (name + "Class").c_str()) == CString(classCode)
        && attribute(entry, (name + "SubClass").c_str()) == CString(subclass)
        && attribute(entry, (name + "Protocol").c_str()) == CString(protocol);
}

// Whether a program holds the interface: libusb claims it through usbfs, which the kernel shows
// as the interface's driver.
bool claimedByProgram(const CString& entry)
{
    const CString link = CString(devicesFolder) + "/" + entry + "/driver";
    char target[512];
    const ssize_t length = ::readlink(link.data(), target, sizeof target - 1);
    if (length <= 0)
        return false;
    target[length] = '\0';
    const char* slash = std::strrchr(target, '/');
    return std::strcmp(slash ? slash + 1 : target, "usbfs") == 0;
}

} // namespace

TArray<SU3VCamera> CU3VSysfs::Cameras()
{
    TArray<SU3VCamera> cameras;
    const TArray<CString> names = entries();
    for (const CString& device : names) {
        // A USB3 Vision device announces interface associations (class 0xEF, 2, 1) and has a
        // control (0xEF, 5, 0) and a streaming (0xEF, 5, 2) interface, as Aravis requires.
        if (device.view().find(':') != std::string_view::npos
            || !hasClass(device, "bDevice", "ef", "02", "01"))
            continue;
        bool control = false;
        bool streaming = false;
        bool claimed = false;
        const std::string prefix = std::string(device.view()) + ":";
        for (const CString& interface : names) {
            if (!interface.view().starts_with(prefix))
                continue;
            if (hasClass(interface, "bInterface", "ef", "05", "00")) {
                control = true;
                claimed = claimed || claimedByProgram(interface);
            } else if (hasClass(interface, "bInterface", "ef", "05", "02")) {
                streaming = true;
            }
        }
        if (!control || !streaming)
            continue;
        SU3VCamera camera;
        camera.vendor = attribute(device, "manufacturer");
        camera.model = attribute(device, "product");
        camera.serial = attribute(device, "serial");
        camera.busPath = device;
        camera.node
            = strprintf("/dev/bus/usb/%03d/%03d", std::atoi(attribute(device, "busnum").data()),
                std::atoi(attribute(device, "devnum").data()));
        camera.claimed = claimed;
        cameras.add(std::move(camera));
    }
    return cameras;
}

std::pair<CString, CString> CU3VSysfs::AccessProblem(const CString& path)
{
    if (::access(path.data(), R_OK | W_OK) == 0 || (errno != EACCES && errno != EPERM))
        return {};
    const CString group = platform::OwningGroup(path);
    CString message = strprintf(
        "This user may not open the camera's device node %s, which belongs to the group \"%s\". "
        "Let the user logged in at this machine use USB3 Vision cameras: put the line\n"
        "%s\n"
        "into the file %s, then unplug the camera and plug it in again.",
        path.data(), group.data(), UdevRule, UdevRuleFile);
    struct stat status { };
    if (::stat(path.data(), &status) == 0 && status.st_gid != 0)
        message += strprintf(" Or add your user to the group \"%s\" (sudo usermod -aG %s $USER) "
                             "and log in again.",
            group.data(), group.data());
    return {"No permission", message};
}

CString CU3VSysfs::Key(const SU3VCamera& camera)
{
    std::string key;
    for (const CString* text : {&camera.vendor, &camera.model, &camera.serial}) {
        for (const char c : text->view()) {
            const auto byte = static_cast<unsigned char>(c);
            // A lead byte stands for a character (two UTF-16 units from 0xF0 on); continuation
            // bytes add nothing.
            if (byte < 0x80)
                key += c;
            else if (byte >= 0xC0)
                key += byte >= 0xF0 ? "??" : "?";
        }
        key += '\n';
    }
    return CString(key);
}

} // namespace kiv::cam
