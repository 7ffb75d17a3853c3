// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "InitPlugin.h"

#include <kivcamui/camera/CameraFinderModel.h>
#include <kivcamui/camera/CameraInfo.h>
#include <kivcamui/custom/CameraModel.h>
#include <kivcamui/custom/CustomCameraSelectorModel.h>
#include <kivcamui/device/DeviceFinderModel.h>
#include <kivcamui/device/DeviceInfo.h>
#include <kivcamui/editors/DisplayEditor.h>
#include <kivcamui/editors/WindowEditor.h>
#include <kivcamui/standalone/StandaloneModel.h>
#include <kivui/InitPlugin.h>

#include <QtCore/qresource.h>
#include <QtQml/qqml.h>

void kivcamuiInitPlugin()
{
    // Already registered when the library was loaded; registering again is harmless and keeps
    // the resources available to a host that loads the library statically.
    Q_INIT_RESOURCE(kivcamui);

    // The types in their fixed order; the reason texts are what QML reports when it is asked to
    // create an uncreatable one (DeviceInfo's names CameraInfo on purpose).
    using namespace kiv::cam::ui;
    qmlRegisterType<StandaloneModel>("kivcamui", 1, 0, "StandaloneModel");
    qmlRegisterType<CameraFinderModel>("kivcamui", 1, 0, "CameraFinderModel");
    qmlRegisterUncreatableType<CameraInfo>(
        "kivcamui", 1, 0, "CameraInfo", "Can only create CameraInfo from CameraFinderModel");
    qmlRegisterType<WindowEditor>("kivcamui", 1, 0, "WindowEditor");
    qmlRegisterType<DisplayEditor>("kivcamui", 1, 0, "DisplayEditor");
    qmlRegisterType<DeviceFinderModel>("kivcamui", 1, 0, "DeviceFinderModel");
    qmlRegisterUncreatableType<DeviceInfo>(
        "kivcamui", 1, 0, "DeviceInfo", "Can only create CameraInfo from CameraFinderModel");
    qmlRegisterType<CustomCameraSelectorModel>("kivcamui", 1, 0, "CustomCameraSelectorModel");
    qmlRegisterUncreatableType<CameraModel>(
        "kivcamui", 1, 0, "CameraModel", "Can only get CameraModel from CustomCameraSelectorModel");

    kivuiInitPlugin();
}
