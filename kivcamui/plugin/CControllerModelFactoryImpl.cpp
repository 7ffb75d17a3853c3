#include "CControllerModelFactoryImpl.h"

#include <utility>

namespace kiv::cam::ui {

bool CControllerModelFactoryImpl::CreateModel(
    TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
{
    // Each creator gets a reference of its own; ours goes when this returns, in every case.
    const TSharedPtr<IController> own = std::move(controller);
    for (const ControllerModelCreator creator : m_creators) {
        if (creator(own, parent, model, qml))
            return true;
    }
    return false;
}

bool CControllerModelFactoryImpl::RegisterCreator(ControllerModelCreator creator)
{
    if (m_creators.contains(creator))
        return false;
    m_creators.add(creator);
    return true;
}

} // namespace kiv::cam::ui
