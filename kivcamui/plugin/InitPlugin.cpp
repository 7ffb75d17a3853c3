#include "InitPlugin.h"

#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
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

#include <QThreadPool>
#include <QtCore/qresource.h>
#include <QtQml/qqml.h>

#include <mutex>

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

    // The camera library makes its catalogues on their first use, reading the emulated world
    // among other things, which a large world makes long. Made now, on a thread of the pool,
    // they are ready by the time the GUI thread first asks for one. A catalogue that cannot be
    // made now (too little memory) is made, or fails, at its first use, as it would have been.
    static std::once_flag catalogues;
    std::call_once(catalogues, [] {
        QThreadPool::globalInstance()->start([] {
            try {
                kiv::cam::cameras();
                kiv::cam::interfaces();
                kiv::cam::controllerFactory();
            } catch (...) {
            }
        });
    });
}
