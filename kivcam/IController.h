// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/CLostReport.h>
#include <kivcam/IDevice.h>
#include <kivcam/IFrameSource.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// Operates one camera through an open device. Made by CControllerFactory::createController. Its
// lost handler (CLostReport) hears, once, when the connected camera is lost (its device went
// away, control was taken, its pictures stopped); the controller stays connected until
// disconnect().
class KIVCAM_EXPORT IController : public CLostReport {
public:
    virtual ~IController();

    // Brings the camera up through an open device; false when the camera does not answer.
    // Blocks for as long as that takes, so it is called off the GUI thread.
    virtual bool connect(TSharedPtr<IDevice> device, SCameraInfo camera) = 0;
    virtual void disconnect() = 0;
    virtual bool isConnected() const = 0;
    // The controller catalogue's name of this controller.
    virtual CString name() const = 0;
    // The images of the connected camera; null (as here) for a controller that delivers none.
    // disconnect() stops them before it returns.
    virtual IFrameSource* frameSource();
    // Why the last connect failed, or why the connected camera was lost, in full, for people;
    // empty (as here) when there is nothing to say.
    virtual CString errorMessage() const;
};

} // namespace kiv::cam
