// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// A controller UI plugin whose entry registers a creator that accepts every controller. For the
// scan's tests it also counts its initialisations, asks for the factory from inside its entry
// (and from a second thread meanwhile), and changes the working folder, which the scan puts
// back. The test host reads what it saw through the kivTest* functions.

#include <kivcamui/plugin/ControllerModel.h>
#include <kivcamui/plugin/IControllerModelFactory.h>

#include <thread>
#include <unistd.h>

using kiv::cam::ui::IControllerModelFactory;

namespace {

int initCalls = 0;
IControllerModelFactory* factorySeen = nullptr;
IControllerModelFactory* factorySeenFromThread = nullptr;

bool createPanel(
    kiv::TSharedPtr<kiv::cam::IController>, QObject* parent, QObject** model, QString* qml)
{
    *model = new ControllerModel(parent);
    *qml = QStringLiteral("qrc:/kivcamuiTestGood/Panel.qml");
    return true;
}

} // namespace

extern "C" __attribute__((visibility("default"))) bool kivInitPlugin()
{
    ++initCalls;
    factorySeen = kiv::cam::ui::controllerModelFactory();
    // Another thread asking while the scan runs gets the instance without waiting for the scan.
    std::thread other([] { factorySeenFromThread = kiv::cam::ui::controllerModelFactory(); });
    other.join();
    if (chdir("/") != 0)
        return false;
    return factorySeen->RegisterCreator(createPanel);
}

extern "C" __attribute__((visibility("default"))) int kivTestInitCalls()
{
    return initCalls;
}

extern "C" __attribute__((visibility("default"))) void* kivTestFactorySeen()
{
    return factorySeen;
}

extern "C" __attribute__((visibility("default"))) void* kivTestFactorySeenFromThread()
{
    return factorySeenFromThread;
}
