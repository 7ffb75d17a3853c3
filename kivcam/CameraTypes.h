// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/ICamera.h>
#include <kivcam/SCameraInfo.h>

#include <utility>

// The camera types of cameras that a real transport finds on its own, shared by the transports.
namespace kiv::cam {

// A camera type for the cameras of a transport whose model no other type lists: 8-bit
// monochrome until its controller reads the camera's own format.
TSharedPtr<ICamera> GenericCameraType(const CString& name, const CString& iconName,
    const CString& description, const CString& controller, const CString& baseType);

// The camera type of a model: the first type of the camera catalogue that lists the model, or
// the type named genericType (empty when the catalogue has none of that name). The flag is true
// when the catalogue knows the model.
std::pair<TSharedPtr<ICamera>, bool> CameraTypeOfModel(
    const CString& model, const CString& genericType);

// The record of a found camera that is its own device, for control and images alike: its type's
// template description with the type's name, icon and controller, the camera's vendor, model and
// serial, a display name of vendor and model unless the catalogue knows the model, and device as
// comm and video, whose canConnect and reasons it takes. Its identity is the camera's
// user-defined name, or model and serial for a camera that has none, so that every list can
// name it. The transport fills in the rest.
SCameraInfo FoundCameraInfo(const CString& vendor, const CString& model, const CString& serial,
    const CString& userName, const CString& genericType, const SDeviceInfo& device);

} // namespace kiv::cam
