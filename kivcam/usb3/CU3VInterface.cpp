// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CU3VInterface.h"

#include "CU3VDevice.h"
#include "CU3VSysfs.h"

#include <kiv/strprintf.h>
#include <kivcam/CameraTypes.h>
#include <kivcam/FalseOnThrow.h>
#include <kivcam/genicam/CGenICamWorker.h>

#include <arv.h>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace kiv::cam {

namespace {

// The device parameters, in their order: the camera's strings, then where it is plugged in.
struct SParameter {
    const char* name;
    const char* displayName;
    const char* description;
};
constexpr SParameter parameters[] = {
    {CU3VInterface::VendorParameter, "Vendor", "Who made the camera, as it tells USB"},
    {CU3VInterface::ModelParameter, "Model", "The camera's model, as it tells USB"},
    {CU3VInterface::SerialParameter, "Serial number", "The camera's serial number"},
    {CU3VInterface::GuidParameter, "GUID",
        "The camera's USB3 Vision GUID, the same on every port; empty when it could not be read"},
    {CU3VInterface::BusPathParameter, "USB bus path",
        "The bus and port numbers the camera is plugged into: bus-port.port..."},
};

// Adds the parameters of the camera, all of them or all but its bus path.
void addParameters(
    SDeviceInfo& device, const SU3VCamera& camera, CParameters::EEditLevel level, bool busPath)
{
    const CString values[]
        = {camera.vendor, camera.model, camera.serial, camera.guid, camera.busPath};
    const int count = busPath ? 5 : 4;
    for (int i = 0; i < count; ++i) {
        device.parameters.Add(CParameters::CEntry(parameters[i].name, parameters[i].displayName,
            parameters[i].description, level, CVariant(values[i])));
    }
}

CString text(const char* value)
{
    return value ? CString(value) : CString();
}

// A string feature of an open camera; empty when it has none.
CString feature(ArvDevice* device, const char* name)
{
    GError* failure = nullptr;
    const CString value = text(arv_device_get_string_feature_value(device, name, &failure));
    g_clear_error(&failure);
    return value;
}

// The cameras whose strings Aravis can read, which are those this process may open. Only
// Aravis's USB3 Vision interface is asked: the process-wide listing would run the GigE Vision
// discovery too, which broadcasts.
TArray<SU3VCamera> aravisCameras()
{
    ArvInterface* usb3 = arv_uv_interface_get_instance();
    arv_interface_update_device_list(usb3);
    TArray<SU3VCamera> cameras;
    for (unsigned i = 0; i < arv_interface_get_n_devices(usb3); ++i) {
        SU3VCamera camera;
        camera.vendor = text(arv_interface_get_device_vendor(usb3, i));
        camera.model = text(arv_interface_get_device_model(usb3, i));
        camera.serial = text(arv_interface_get_device_serial_nbr(usb3, i));
        // Aravis 0.8 gives a USB3 Vision camera's GUID as its physical id.
        camera.guid = text(arv_interface_get_device_physical_id(usb3, i));
        // A camera whose strings could not be read is left to sysfs, which tells why.
        if (!camera.guid.empty() || !camera.vendor.empty() || !camera.model.empty()
            || !camera.serial.empty())
            cameras.add(std::move(camera));
    }
    return cameras;
}

// The user-defined name and version of a free camera, read by opening it for a moment; a camera
// that cannot be opened gets the state that says why.
void readIdentity(SU3VCamera& camera)
{
    ArvDevice* device = CU3VDevice::OpenCamera(camera);
    if (!device)
        return;
    camera.userName = feature(device, "DeviceUserID");
    camera.deviceVersion = feature(device, "DeviceVersion");
    g_object_unref(device);
}

// The listing itself, on the listing thread: Aravis's cameras with what sysfs adds, then those
// only sysfs shows.
TArray<SU3VCamera> listCameras(const std::stop_token& stop)
{
    TArray<SU3VCamera> plugged = CU3VSysfs::Cameras();
    std::vector<bool> matched(static_cast<std::size_t>(plugged.count()), false);
    TArray<SU3VCamera> cameras = aravisCameras();
    for (SU3VCamera& camera : cameras) {
        for (int i = 0; i < plugged.count(); ++i) {
            if (!matched[i] && CU3VSysfs::Key(plugged[i]) == CU3VSysfs::Key(camera)) {
                matched[i] = true;
                camera.busPath = plugged[i].busPath;
                camera.node = plugged[i].node;
                camera.claimed = plugged[i].claimed;
                break;
            }
        }
    }
    for (int i = 0; i < plugged.count(); ++i) {
        if (matched[i])
            continue;
        SU3VCamera& camera = plugged[i];
        camera.state = CU3VSysfs::AccessProblem(camera.node).first.empty()
            ? SU3VCamera::STATE_NO_ANSWER
            : SU3VCamera::STATE_NO_PERMISSION;
        cameras.add(std::move(camera));
    }
    for (SU3VCamera& camera : cameras) {
        if (stop.stop_requested())
            break;
        if (camera.state != SU3VCamera::STATE_FREE)
            continue;
        if (CU3VDevice::OpenHere(camera))
            camera.state = SU3VCamera::STATE_IN_USE_HERE;
        else if (camera.claimed)
            camera.state = SU3VCamera::STATE_IN_USE;
        else
            readIdentity(camera);
    }
    return cameras;
}

// A listing handed from the listing thread to the scan that waits for it.
struct SListing {
    std::mutex mutex;
    std::condition_variable_any done;
    bool finished = false;
    bool ok = false;
    TArray<SU3VCamera> cameras;
};

} // namespace

CU3VInterface::CU3VInterface()
{
    icon = "USB";
    name = "USB3Vision";
    displayName = "USB3 Vision";
    description = "Cameras on USB that speak USB3 Vision, listed through the USB bus; nothing is "
                  "sent on any network.";
    baseType = BaseType;
    comm = true;
    video = true;
    defaultDevice.interfaceName = name;
    defaultDevice.baseType = baseType;
    defaultDevice.iconName = icon;
    defaultDevice.description
        = "A USB3 Vision camera entered by its GUID, or by its vendor, model and serial number.";
    // Entered by hand, a camera is found by its strings wherever it is plugged in.
    addParameters(defaultDevice, SU3VCamera(), CParameters::EDIT_ALWAYS, false);
}

TSharedPtr<IDevice> CU3VInterface::createDevice()
{
    return TSharedPtr<IDevice>(new CU3VDevice);
}

bool CU3VInterface::findDevices(TArray<SDeviceInfo>& out, std::stop_token stop)
{
    // Each camera is its own device.
    TArray<SCameraInfo> cameras;
    const bool ok = findCameras(cameras, std::move(stop));
    for (SCameraInfo& camera : cameras)
        out.add(std::move(camera.comm));
    return ok;
}

bool CU3VInterface::findCameras(TArray<SCameraInfo>& out, std::stop_token stop)
{
    TArray<SU3VCamera> found;
    const bool ok = Find(found, stop);
    for (const SU3VCamera& camera : found)
        out.add(CameraRecord(camera));
    return ok;
}

bool CU3VInterface::Find(TArray<SU3VCamera>& out, const std::stop_token& stop)
{
    const auto listing = std::make_shared<SListing>();
    ListingThread().post([listing, stop] {
        TArray<SU3VCamera> cameras;
        const bool ok = !stop.stop_requested() && FalseOnThrow([&] {
            cameras = listCameras(stop);
            return true;
        });
        std::lock_guard lock(listing->mutex);
        listing->cameras = std::move(cameras);
        listing->ok = ok;
        listing->finished = true;
        listing->done.notify_all();
    });
    std::unique_lock lock(listing->mutex);
    if (!listing->done.wait(lock, stop, [&] { return listing->finished; }))
        return false;
    for (SU3VCamera& camera : listing->cameras)
        out.add(std::move(camera));
    return listing->ok && !stop.stop_requested();
}

CGenICamWorker& CU3VInterface::ListingThread()
{
    static CGenICamWorker thread;
    return thread;
}

CString CU3VInterface::Describe(const SU3VCamera& camera)
{
    CString text = camera.vendor;
    if (!camera.model.empty())
        text += (text.empty() ? CString() : CString(" ")) + camera.model;
    if (!camera.serial.empty())
        text += strprintf(" (serial number %s)", camera.serial.data());
    if (text.empty())
        text = strprintf("of GUID %s", camera.guid.data());
    if (!camera.busPath.empty())
        text += strprintf(" on USB port %s", camera.busPath.data());
    return text;
}

std::pair<CString, CString> CU3VInterface::Diagnosis(const SU3VCamera& camera)
{
    const CString described = Describe(camera);
    switch (camera.state) {
    case SU3VCamera::STATE_FREE:
        return {};
    case SU3VCamera::STATE_NO_PERMISSION: {
        auto problem = CU3VSysfs::AccessProblem(camera.node);
        if (problem.first.empty())
            return {"No permission",
                strprintf(
                    "This user could not open the camera %s; search again.", described.data())};
        return problem;
    }
    case SU3VCamera::STATE_IN_USE:
        return {"In use",
            strprintf("Another program has the camera %s open. Close that program, or wait until "
                      "it lets the camera go, then search again.",
                described.data())};
    case SU3VCamera::STATE_IN_USE_HERE:
        return {"In use by this program",
            strprintf("This program has the camera %s open already; close that connection first.",
                described.data())};
    case SU3VCamera::STATE_MISSING:
        return {"Not plugged in",
            strprintf("The USB3 Vision camera %s is not plugged in. Plug it in, then search again.",
                described.data())};
    case SU3VCamera::STATE_NO_ANSWER:
        break;
    }
    const CString reason = camera.reason.empty() ? CString() : " (" + camera.reason + ")";
    return {"No answer",
        strprintf("The camera %s is plugged in but cannot be opened%s. Unplug it and plug it in "
                  "again; if that does not help, try another USB 3 port or cable.",
            described.data(), reason.data())};
}

SDeviceInfo CU3VInterface::DeviceRecord(const SU3VCamera& camera) const
{
    SDeviceInfo device;
    device.interfaceName = name;
    // The GUID stays with the camera on every port; a camera whose GUID could not be read is
    // named by where it is plugged in.
    device.deviceName = !camera.guid.empty() ? camera.guid
        : !camera.busPath.empty()            ? camera.busPath
                                             : camera.vendor + "-" + camera.serial;
    device.baseType = baseType;
    device.iconName = icon;
    device.description = strprintf("USB3 Vision camera %s", Describe(camera).data());
    addParameters(device, camera, CParameters::EDIT_NEVER, true);
    auto [summary, message] = Diagnosis(camera);
    device.canConnect = summary.empty();
    device.errorSummary = std::move(summary);
    device.errorMessage = std::move(message);
    return device;
}

SCameraInfo CU3VInterface::CameraRecord(const SU3VCamera& camera) const
{
    SCameraInfo info = FoundCameraInfo(camera.vendor, camera.model, camera.serial, camera.userName,
        GenericCameraType, DeviceRecord(camera));
    info.firmwareVersion = camera.deviceVersion;
    return info;
}

} // namespace kiv::cam
