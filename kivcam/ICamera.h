// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// One camera type of the camera catalogue.
class KIVCAM_EXPORT ICamera {
public:
    virtual ~ICamera();

    // Whether a device of that base type (SDeviceInfo::baseType) can serve this camera type:
    // true when baseTypes holds it, compared exactly.
    bool IsSupportedBaseDeviceType(const CString& baseType) const;

    CString iconName; // icon base name: the camera family
    CString name; // the key of the type in the camera catalogue
    CString displayName;
    CString description;
    CString controller; // the controller that operates it (CControllerFactory names)
    TArray<CString> baseTypes; // the device base types it accepts
    TArray<CString> models; // the model names of the type
    SCameraInfo defaultInfo; // the template description of a camera of this type
};

} // namespace kiv::cam
