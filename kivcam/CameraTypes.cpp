// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CameraTypes.h"

#include <kiv/PixelType.h>
#include <kivcam/CCameras.h>

namespace kiv::cam {

TSharedPtr<ICamera> GenericCameraType(const CString& name, const CString& iconName,
    const CString& description, const CString& controller, const CString& baseType)
{
    TSharedPtr<ICamera> type(new ICamera);
    type->iconName = iconName;
    type->name = name;
    type->displayName = name;
    type->description = description;
    type->controller = controller;
    type->baseTypes.add(baseType);
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

std::pair<TSharedPtr<ICamera>, bool> CameraTypeOfModel(
    const CString& model, const CString& genericType)
{
    CCameras* catalogue = cameras();
    for (int i = 0; i < catalogue->cameraCount(); ++i) {
        TSharedPtr<ICamera> type = catalogue->cameraAt(i);
        if (!model.empty() && type->models.contains(model))
            return {type, true};
    }
    return {catalogue->cameraByName(genericType), false};
}

SCameraInfo FoundCameraInfo(const CString& vendor, const CString& model, const CString& serial,
    const CString& userName, const CString& genericType, const SDeviceInfo& device)
{
    const auto [type, known] = CameraTypeOfModel(model, genericType);
    SCameraInfo info = type ? type->defaultInfo : SCameraInfo();
    info.name = type ? type->name : genericType;
    if (type) {
        info.iconName = type->iconName;
        info.controller = type->controller;
    }
    CString vendorModel = vendor;
    if (!model.empty())
        vendorModel += (vendorModel.empty() ? CString() : CString(" ")) + model;
    info.displayName
        = known || vendorModel.empty() ? (type ? type->displayName : info.name) : vendorModel;
    if (info.baseModel.empty())
        info.baseModel = model;
    info.vendor = vendor;
    info.model = model;
    info.serial = serial;
    info.identity = userName;
    if (info.identity.empty()) {
        info.identity = model.empty() ? vendor : model;
        if (!serial.empty())
            info.identity += (info.identity.empty() ? CString() : CString(" ")) + serial;
    }
    info.comm = device;
    info.video = device;
    info.canConnect = device.canConnect;
    info.errorSummary = device.errorSummary;
    info.errorMessage = device.errorMessage;
    return info;
}

} // namespace kiv::cam
