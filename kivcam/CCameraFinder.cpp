// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CCameraFinder.h"

#include "CCameras.h"
#include "CControllerFactory.h"
#include "FalseOnThrow.h"
#include "InterfaceScan.h"
#include "TEmulatorSwitch.h"

namespace kiv::cam {

namespace {

// The switch of every finder.
TEmulatorSwitch<CCameraFinder>& emulatorSwitch()
{
    static TEmulatorSwitch<CCameraFinder> instance;
    return instance;
}

void refuse(SCameraInfo& camera, CString summary, CString message)
{
    camera.canConnect = false;
    camera.errorSummary = std::move(summary);
    camera.errorMessage = std::move(message);
}

// Tells, in the record, whether a found camera can be connected as it is: its transport's
// verdict first, then its devices, its camera type and its controller.
void judge(SCameraInfo& camera, const TArray<CString>& controllers)
{
    if (!camera.canConnect)
        return;
    for (const SDeviceInfo* device : {&camera.comm, &camera.video}) {
        if (!device->empty() && !device->canConnect) {
            refuse(camera,
                device->errorSummary.empty() ? CString("Device unavailable") : device->errorSummary,
                CString("The device \"") + device->deviceName + "\" of \"" + device->interfaceName
                    + "\" cannot be used."
                    + (device->errorMessage.empty() ? CString() : " " + device->errorMessage));
            return;
        }
    }
    const TSharedPtr<ICamera> type = cameras()->cameraByName(camera.name);
    if (!type) {
        refuse(camera, "Unknown camera type",
            CString("The camera type \"") + camera.name + "\" is not installed.");
        return;
    }
    if (camera.controller.empty())
        camera.controller = type->controller;
    if (!controllers.contains(camera.controller)) {
        refuse(camera, "No controller",
            CString("No controller named \"") + camera.controller
                + "\" is installed for this camera.");
    }
}

} // namespace

bool CCameraFinder::Find(unsigned flags)
{
    return Find(flags, std::stop_token());
}

bool CCameraFinder::Find(TArray<CString> cameraNames, unsigned flags)
{
    return Find(std::move(cameraNames), flags, std::stop_token());
}

bool CCameraFinder::Find(unsigned flags, std::stop_token stop)
{
    const bool emulators = emulatorSwitch().take();
    m_cameras.clear();
    return FalseOnThrow([&] {
        TArray<SCameraInfo> found;
        const bool ok = ScanInterfaces(*interfaces(), emulators, (flags & FIND_EMULATORS_ONLY) != 0,
            &IInterface::findCameras, found, stop);
        TArray<CString> controllers;
        controllerFactory()->getControllerNames(controllers);
        for (SCameraInfo& camera : found) {
            if ((flags & FIND_COMPLETE) && camera.video.empty())
                continue;
            judge(camera, controllers);
            m_cameras.add(std::move(camera));
        }
        return ok;
    });
}

bool CCameraFinder::Find(TArray<CString> cameraNames, unsigned flags, std::stop_token stop)
{
    const bool ok = Find(flags, std::move(stop));
    return FalseOnThrow([&] {
        TArray<SCameraInfo> kept;
        for (SCameraInfo& camera : m_cameras) {
            if (cameraNames.contains(camera.name))
                kept.add(std::move(camera));
        }
        m_cameras = std::move(kept);
        return ok;
    });
}

SCameraInfo CCameraFinder::at(std::uint64_t index) const
{
    if (index >= size())
        ThrowOutOfRangeException("CCameraFinder: index out of range.");
    return m_cameras[static_cast<int>(index)];
}

TArray<SCameraInfo> CCameraFinder::Take()
{
    return std::move(m_cameras);
}

void CCameraFinder::setEnableEmulators(bool enable)
{
    emulatorSwitch().set(enable);
}

bool CCameraFinder::enableEmulators()
{
    return emulatorSwitch().get();
}

} // namespace kiv::cam
