#pragma once

#include <kiv/CString.h>
#include <kivcam/IController.h>
#include <kivcam/kivcam_export.h>

#include <atomic>

namespace kiv::cam {

// The controller of GigE Vision cameras of no known type: it connects through an open GigE
// Vision device whose camera answers, and checks that the camera is the one the description
// names.
class KIVCAM_EXPORT CGigEController : public IController {
public:
    static constexpr const char* Name = "GigE Vision";

    // True when device is an open GigE Vision device that holds the camera and the camera's
    // model name matches the description's model (a description without a model takes any).
    bool connect(TSharedPtr<IDevice> device, SCameraInfo camera) override;
    void disconnect() override;
    bool isConnected() const override;
    CString name() const override;

private:
    TSharedPtr<IDevice> m_device;
    std::atomic<bool> m_connected{false};
};

} // namespace kiv::cam
