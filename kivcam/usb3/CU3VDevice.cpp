// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CU3VDevice.h"

#include "CU3VInterface.h"
#include "CU3VSysfs.h"

#include <kiv/strprintf.h>
#include <kivcam/genicam/CGenICamWorker.h>

#include <arv.h>
#include <mutex>
#include <string_view>

namespace kiv::cam {

namespace {

// The cameras that devices of this program hold.
std::mutex heldMutex;
TArray<SU3VCamera>& held()
{
    static TArray<SU3VCamera> cameras;
    return cameras;
}

bool sameCamera(const SU3VCamera& a, const SU3VCamera& b)
{
    if (!a.guid.empty() && !b.guid.empty())
        return a.guid == b.guid;
    return CU3VSysfs::Key(a) == CU3VSysfs::Key(b);
}

} // namespace

CU3VDevice::~CU3VDevice()
{
    close();
}

bool CU3VDevice::Open(SDeviceInfo info, bool, CString& error)
{
    SU3VCamera camera;
    camera.vendor = info.parameters.TextOf(CU3VInterface::VendorParameter);
    camera.model = info.parameters.TextOf(CU3VInterface::ModelParameter);
    camera.serial = info.parameters.TextOf(CU3VInterface::SerialParameter);
    camera.guid = info.parameters.TextOf(CU3VInterface::GuidParameter);
    if (camera.guid.empty() && camera.vendor.empty() && camera.model.empty()) {
        error = "The record names no USB3 Vision camera: give its GUID, or its vendor, model and "
                "serial number.";
        return false;
    }
    // What the kernel shows of the camera, where the record names it by its strings: whether
    // this user may open it, and whether a program holds it.
    const bool named = !camera.vendor.empty() || !camera.model.empty();
    for (const SU3VCamera& plugged : CU3VSysfs::Cameras()) {
        if (named && CU3VSysfs::Key(plugged) == CU3VSysfs::Key(camera)) {
            camera.busPath = plugged.busPath;
            camera.node = plugged.node;
            camera.claimed = plugged.claimed;
            break;
        }
    }
    if (OpenHere(camera))
        camera.state = SU3VCamera::STATE_IN_USE_HERE;
    else if (!CU3VSysfs::AccessProblem(camera.node).first.empty())
        camera.state = SU3VCamera::STATE_NO_PERMISSION;
    else if (camera.claimed)
        camera.state = SU3VCamera::STATE_IN_USE;
    ArvDevice* device = nullptr;
    if (camera.state == SU3VCamera::STATE_FREE)
        CU3VInterface::ListingThread().run([&] { device = OpenCamera(camera); });
    if (!device && camera.state == SU3VCamera::STATE_MISSING && camera.node.empty()) {
        // A camera this user may not open is missing to Aravis, whose GUID only Aravis could
        // tell; the kernel still shows it.
        for (const SU3VCamera& plugged : CU3VSysfs::Cameras()) {
            if (!CU3VSysfs::AccessProblem(plugged.node).first.empty()) {
                camera.node = plugged.node;
                camera.state = SU3VCamera::STATE_NO_PERMISSION;
                break;
            }
        }
    }
    if (!device) {
        error = CU3VInterface::Diagnosis(camera).second;
        return false;
    }
    {
        std::lock_guard lock(heldMutex);
        held().add(camera);
    }
    m_camera = camera;
    Adopt(device, std::move(info),
        strprintf("Lost the USB3 Vision camera %s: it was unplugged, or stopped answering.",
            CU3VInterface::Describe(camera).data()));
    return true;
}

void CU3VDevice::close()
{
    if (!isOpen())
        return;
    CAravisDevice::close();
    std::lock_guard lock(heldMutex);
    TArray<SU3VCamera>& cameras = held();
    for (int i = 0; i < cameras.count(); ++i) {
        if (sameCamera(cameras[i], m_camera)) {
            cameras.removeAt(i);
            break;
        }
    }
}

ArvDevice* CU3VDevice::OpenCamera(SU3VCamera& camera)
{
    GError* failure = nullptr;
    ArvDevice* device = !camera.guid.empty()
        ? arv_uv_device_new_from_guid(camera.guid.data(), &failure)
        : arv_uv_device_new(
            camera.vendor.data(), camera.model.data(), camera.serial.data(), &failure);
    if (device)
        return device;
    camera.reason = failure ? CString(failure->message) : CString();
    if (failure && g_error_matches(failure, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_NOT_FOUND))
        camera.state = SU3VCamera::STATE_MISSING;
    // Aravis names libusb's error when another program has claimed the camera's interfaces.
    else if (camera.reason.view().find("LIBUSB_ERROR_BUSY") != std::string_view::npos)
        camera.state = SU3VCamera::STATE_IN_USE;
    else
        camera.state = SU3VCamera::STATE_NO_ANSWER;
    g_clear_error(&failure);
    return nullptr;
}

bool CU3VDevice::OpenHere(const SU3VCamera& camera)
{
    std::lock_guard lock(heldMutex);
    for (const SU3VCamera& open : held()) {
        if (sameCamera(open, camera))
            return true;
    }
    return false;
}

} // namespace kiv::cam
