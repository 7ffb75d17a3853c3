// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The entry of the sample controller UI plugin: it registers the creator of the emulated
// cameras' panel, and the QML types of that panel: its model and its live picture.

#include "EmulatorControllerModel.h"
#include <kivcamui/plugin/FrameView.h>

#include <kivcam/IEmulatorController.h>
#include <kivcamui/plugin/IControllerModelFactory.h>

#include <QtQml/qqml.h>

namespace {

using namespace kiv::cam;
using namespace kiv::cam::ui;

// Accepts the controllers of the emulated world, and only those.
bool createEmulatorPanel(
    kiv::TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
{
    if (!dynamic_cast<IEmulatorController*>(controller.get()))
        return false;
    *model = new EmulatorControllerModel(controller, parent);
    *qml = QStringLiteral("qrc:/kivcamuiEmulator/EmulatorPanel.qml");
    return true;
}

} // namespace

extern "C" Q_DECL_EXPORT bool kivInitPlugin()
{
    qmlRegisterType<FrameView>("kivcamuiEmulator", 1, 0, "FrameView");
    // The panel's model, so that the panel can name its type.
    qmlRegisterUncreatableType<EmulatorControllerModel>("kivcamuiEmulator", 1, 0,
        "EmulatorControllerModel",
        "EmulatorControllerModel is made by the controller model factory");
    // The creator stays registered for as long as the process runs, so this library must stay
    // loaded: it answers true even when the creator was registered before.
    controllerModelFactory()->RegisterCreator(createEmulatorPanel);
    return true;
}
