// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The entry of the GenICam controller UI plugin: it registers the creator of the GenICam
// cameras' panel, and the QML types of that panel.

#include "GenICamControllerModel.h"
#include "GenICamFeatureModel.h"

#include <kivcam/IGenICamController.h>
#include <kivcamui/plugin/FrameView.h>
#include <kivcamui/plugin/IControllerModelFactory.h>
#include <kivcamui/plugin/LivePicture.h>

#include <QtQml/qqml.h>

namespace {

using namespace kiv::cam;
using namespace kiv::cam::ui;

// Accepts the GenICam controller, and only that.
bool createGenICamPanel(
    kiv::TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
{
    if (!dynamic_cast<IGenICamController*>(controller.get()))
        return false;
    *model = new GenICamControllerModel(controller, parent);
    *qml = QStringLiteral("qrc:/kivcamuiGenICam/GenICamPanel.qml");
    return true;
}

} // namespace

extern "C" Q_DECL_EXPORT bool kivInitPlugin()
{
    const char* const uri = "kivcamuiGenICam";
    qmlRegisterType<FrameView>(uri, 1, 0, "FrameView");
    // The panel's models, so that the panel can name their types.
    qmlRegisterUncreatableType<GenICamControllerModel>(uri, 1, 0, "GenICamControllerModel",
        "GenICamControllerModel is made by the controller model factory");
    qmlRegisterUncreatableType<GenICamFeatureModel>(
        uri, 1, 0, "GenICamFeatureModel", "GenICamFeatureModel belongs to its panel's model");
    qmlRegisterUncreatableType<LivePicture>(
        uri, 1, 0, "LivePicture", "LivePicture belongs to its panel's model");
    // The creator stays registered for as long as the process runs, so this library must stay
    // loaded: it answers true even when the creator was registered before.
    controllerModelFactory()->RegisterCreator(createGenICamPanel);
    return true;
}
