// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGenICamEmulatorDevice.h"

#include "CGenICamEmulatorInterface.h"

#include <kiv/strprintf.h>
#include <kivcam/emulator/CEmulatorWorld.h>

#include <QByteArray>
#include <QFile>

#include <arv.h>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <unistd.h>

namespace kiv::cam {

namespace {

// The fake camera reads its GenICam file from a path, named process-wide before each fake camera
// is made. The file is the library's resource, written once per process to a private temporary
// file that is removed at exit.
class CGenICamFile {
public:
    ~CGenICamFile()
    {
        if (!m_path.empty())
            std::remove(m_path.c_str());
    }

    // The path of the file, written on the first call; empty, with the reason in error, when it
    // cannot be written. Called under fakeCameraMutex.
    const std::string& path(CString& error)
    {
        if (m_path.empty())
            write(error);
        return m_path;
    }

private:
    void write(CString& error)
    {
        QFile resource(":/kivcam/EmulatedCamera.xml");
        if (!resource.open(QIODevice::ReadOnly)) {
            error = strprintf("The GenICam file of the emulated camera is missing from the "
                              "camera library: %s",
                resource.errorString().toUtf8().constData());
            return;
        }
        const QByteArray text = resource.readAll();
        // GLib names the folder even where it does not exist; Qt would give an empty path then.
        const char* folder = g_get_tmp_dir();
        std::string path = std::string(folder) + "/kivcam-emulated-camera-XXXXXX";
        const int file = mkstemp(path.data()); // readable and writable by this user alone
        if (file < 0) {
            error = strprintf("The GenICam file of the emulated camera cannot be written to the "
                              "temporary folder %s: %s. Make room there, or point TMPDIR to a "
                              "writable folder.",
                folder, std::strerror(errno));
            return;
        }
        const ssize_t written = ::write(file, text.constData(), static_cast<size_t>(text.size()));
        const int failure = errno;
        ::close(file);
        if (written != text.size()) {
            std::remove(path.c_str());
            error = strprintf("The GenICam file of the emulated camera cannot be written to %s: "
                              "%s. Make room in the temporary folder.",
                path.c_str(), written < 0 ? std::strerror(failure) : "the disk is full");
            return;
        }
        m_path = std::move(path);
    }

    std::string m_path;
};

// Aravis names the fake cameras' GenICam file process-wide: it is set, the camera made, and
// Aravis's own file named again, all under this mutex.
std::mutex fakeCameraMutex;

ArvDevice* newFakeCamera(const CString& serial, CString& error)
{
    static CGenICamFile genicamFile;
    std::lock_guard lock(fakeCameraMutex);
    const std::string& path = genicamFile.path(error);
    if (path.empty())
        return nullptr;
    arv_set_fake_camera_genicam_filename(path.c_str());
    GError* failure = nullptr;
    ArvDevice* device = arv_fake_device_new(serial.data(), &failure);
    arv_set_fake_camera_genicam_filename(nullptr);
    if (!device) {
        error = strprintf("The emulated GenICam camera \"%s\" cannot be made: %s", serial.data(),
            failure ? failure->message : "no reason given");
        g_clear_error(&failure);
    }
    return device;
}

} // namespace

bool CGenICamEmulatorDevice::Open(SDeviceInfo info, bool, CString& error)
{
    const CString serial = info.parameters.TextOf(CGenICamEmulatorInterface::SerialParameter);
    if (serial.empty()) {
        error = strprintf("The device \"%s\" names no emulated GenICam camera: its parameter "
                          "\"%s\" is missing or empty. Pick the camera from a search, or give "
                          "its serial number.",
            info.deviceName.data(), CGenICamEmulatorInterface::SerialParameter);
        return false;
    }
    if (serial.length() > CEmulatorWorld::maxGenICamSerialLength) {
        error = strprintf("The serial number \"%s\" of an emulated GenICam camera is longer "
                          "than %d bytes. Give a shorter one.",
            serial.data(), CEmulatorWorld::maxGenICamSerialLength);
        return false;
    }
    ArvDevice* device = newFakeCamera(serial, error);
    if (!device)
        return false;
    Adopt(device, std::move(info),
        strprintf("The emulated GenICam camera \"%s\" stopped answering.", serial.data()));
    return true;
}

} // namespace kiv::cam
