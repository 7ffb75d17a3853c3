#pragma once

#include <kiv/CString.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IDevice.h>
#include <kivcam/IFrameSource.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// Operates one camera through an open device. Made by CControllerFactory::createController.
class KIVCAM_EXPORT IController {
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
};

} // namespace kiv::cam
