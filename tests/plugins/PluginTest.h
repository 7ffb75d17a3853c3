// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// Helpers of the sample plugin's tests: the plugin loaded as a host loads it, and an emulated
// camera of plugin-world.xml connected as the connection model connects one, with the panel's
// model asked of the controller model factory.

#include <kiv/Platform.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcamui/plugin/IControllerModelFactory.h>

#include <QByteArrayList>
#include <QFuture>
#include <QObject>
#include <QString>
#include <QtConcurrent>

namespace plugintest {

using namespace kiv;
using namespace kiv::cam;

inline QByteArrayList& scanMessages()
{
    static QByteArrayList messages;
    return messages;
}

// Loads the controller UI plugins, keeping what the scan reports.
inline ui::IControllerModelFactory* loadPlugins()
{
    platform::SetDebugOutputHandler([](const char* text) { scanMessages() << text; });
    ui::IControllerModelFactory* factory = ui::controllerModelFactory();
    platform::SetDebugOutputHandler(nullptr);
    return factory;
}

// A camera of a transport of the test's world ("Emu" unless named), known by its serial, with its
// device open, its controller made and the panel's model (a child of parent) asked of the factory;
// connected on request.
struct SSession {
    SSession(const char* serial, QObject* parent, const char* transportName = "Emu")
    {
        // The test's world (KIVCAM_EMULATOR_WORLD) has the transport; without it nothing works.
        const TSharedPtr<IInterface> transport = interfaces()->interfaceByName(transportName);
        if (!transport)
            qFatal("no transport \"%s\": run the test with its world (ctest sets it)",
                transportName);
        device = transport->createDevice();
        TArray<SCameraInfo> cameras;
        transport->findCameras(cameras, {});
        for (const SCameraInfo& found : cameras) {
            if (found.serial == CString(serial))
                camera = found;
        }
        if (!device->open(camera.comm, true))
            qWarning("cannot open the control device of %s", serial);
        controller = controllerFactory()->createController(camera.controller);
        created = ui::controllerModelFactory()->CreateModel(controller, parent, &model, &qml);
    }

    // Connects on a pool thread, as the connection model does, and waits for the outcome.
    bool connect() const
    {
        const TSharedPtr<IController> c = controller;
        const TSharedPtr<IDevice> d = device;
        const SCameraInfo info = camera;
        QFuture<bool> connected = QtConcurrent::run([c, d, info] { return c->connect(d, info); });
        connected.waitForFinished();
        return connected.result();
    }

    SCameraInfo camera;
    TSharedPtr<IDevice> device;
    TSharedPtr<IController> controller;
    QObject* model = nullptr;
    QString qml;
    bool created = false;
};

} // namespace plugintest
