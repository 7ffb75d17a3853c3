// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TSharedPtr.h>
#include <kivcam/IController.h>
#include <kivcamui/kivcamui_export.h>

#include <QObject>
#include <QString>

namespace kiv::cam::ui {

// A controller UI plugin's creator. Given a controller, it either recognises it, creates the
// panel's model (a ControllerModel) with parent, stores it through model, stores the QML file of
// the panel through qml and returns true; or it returns false and writes nothing. The controller
// is its own reference, dropped when the creator returns.
using ControllerModelCreator
    = bool (*)(TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml);

// The process-wide registry of controller panel creators. Controller UI plugins register their
// creator from their kivInitPlugin(); the connection model asks it for the panel of a controller.
// Used on the GUI thread only.
class KIVCAMUI_EXPORT IControllerModelFactory {
public:
    IControllerModelFactory();
    IControllerModelFactory(const IControllerModelFactory&);
    IControllerModelFactory& operator=(const IControllerModelFactory&);
    virtual ~IControllerModelFactory();

    // Asks the creators in registration order; the first that accepts the controller fills model
    // and qml and makes this return true. False, with model and qml untouched, when none does.
    virtual bool CreateModel(
        TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
        = 0;
    // Adds a creator; false, changing nothing, when it is registered already or null.
    virtual bool RegisterCreator(ControllerModelCreator creator) = 0;
};

// The registry. The first call loads the controller UI plugins: the files "libkivcamui*.so"
// beside this library, admitted by KIVCAMUI_WHITELIST and KIVCAMUI_BLACKLIST, each initialised
// through its exported "bool kivInitPlugin()". Later calls, and calls made from a plugin's
// kivInitPlugin() during that scan, return at once.
KIVCAMUI_EXPORT IControllerModelFactory* controllerModelFactory();

} // namespace kiv::cam::ui
