#include "CGigEBackend.h"

#include "CGigEController.h"

#include <kiv/PixelType.h>

namespace kiv::cam {

namespace {

TSharedPtr<ICamera> genericType()
{
    TSharedPtr<ICamera> type(new ICamera);
    type->iconName = "Ethernet";
    type->name = CGigEInterface::GenericCameraType;
    type->displayName = CGigEInterface::GenericCameraType;
    type->description = "A camera that speaks GigE Vision, of a model no other camera type lists.";
    type->controller = CGigEController::Name;
    type->baseTypes.add(CGigEInterface::BaseType);
    SCameraInfo& info = type->defaultInfo;
    info.iconName = type->iconName;
    info.name = type->name;
    info.displayName = type->displayName;
    info.controller = type->controller;
    info.pixelType = ParsePixelType("Mono8");
    info.dataType = PixelTypeToDataType(info.pixelType);
    info.adBits = 8;
    info.adMask = 0xFF;
    return type;
}

} // namespace

CGigEBackend::CGigEBackend() : m_interface(new CGigEInterface), m_genericType(genericType())
{
}

void CGigEBackend::interfaces(TArray<TSharedPtr<IInterface>>& out)
{
    out.add(m_interface);
}

void CGigEBackend::cameraTypes(TArray<TSharedPtr<ICamera>>& out)
{
    out.add(m_genericType);
}

void CGigEBackend::controllerNames(TArray<CString>& out)
{
    out.add(CGigEController::Name);
}

TSharedPtr<IController> CGigEBackend::createController(const CString& name)
{
    return name == CString(CGigEController::Name) ? TSharedPtr<IController>(new CGigEController)
                                                  : TSharedPtr<IController>();
}

KIVCAM_REGISTER_REAL_BACKEND(CGigEBackend);

} // namespace kiv::cam
