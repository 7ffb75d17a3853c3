#pragma once

#include <kiv/TSharedPtr.h>
#include <kivcam/CBackend.h>
#include <kivcam/ICamera.h>
#include <kivcam/gige/CGigEInterface.h>

namespace kiv::cam {

// GigE Vision: the transport of the cameras, the generic camera type for models the catalogue
// does not know, and its controller.
class CGigEBackend : public CBackend {
public:
    CGigEBackend();

    void interfaces(TArray<TSharedPtr<IInterface>>& out) override;
    void cameraTypes(TArray<TSharedPtr<ICamera>>& out) override;
    void controllerNames(TArray<CString>& out) override;
    TSharedPtr<IController> createController(const CString& name) override;

private:
    const TSharedPtr<CGigEInterface> m_interface;
    const TSharedPtr<ICamera> m_genericType;
};

} // namespace kiv::cam
