#include "CEmulatorBackend.h"

#include "CEmulatorController.h"

#include <QByteArray>
#include <QtGlobal>

namespace kiv::cam {

namespace {

TSharedPtr<const CEmulatorWorld> loadWorld()
{
    const QByteArray file = qgetenv("KIVCAM_EMULATOR_WORLD");
    return CEmulatorWorld::LoadFile(file.isEmpty()
            ? CString(":/kivcam/DefaultWorld.xml")
            : CString(file.constData(), static_cast<int>(file.size())));
}

} // namespace

CEmulatorBackend::CEmulatorBackend() : m_world(loadWorld())
{
}

void CEmulatorBackend::interfaces(TArray<TSharedPtr<IInterface>>& out)
{
    for (const TSharedPtr<CEmulatorInterface>& transport : m_world->interfaces())
        out.add(transport);
}

void CEmulatorBackend::cameraTypes(TArray<TSharedPtr<ICamera>>& out)
{
    for (const TSharedPtr<ICamera>& type : m_world->cameraTypes())
        out.add(type);
}

void CEmulatorBackend::controllerNames(TArray<CString>& out)
{
    for (const CEmulatorWorld::SController& controller : m_world->controllers())
        out.add(controller.name);
}

TSharedPtr<IController> CEmulatorBackend::createController(const CString& name)
{
    const CEmulatorWorld::SController* controller = m_world->controller(name);
    return controller ? TSharedPtr<IController>(new CEmulatorController(*controller, m_world))
                      : TSharedPtr<IController>();
}

KIVCAM_REGISTER_BACKEND(CEmulatorBackend);

} // namespace kiv::cam
