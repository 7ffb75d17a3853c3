// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CControllerModelFactoryImpl.h"

#include <utility>

namespace kiv::cam::ui {

bool CControllerModelFactoryImpl::CreateModel(
    TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
{
    // Each creator gets a reference of its own; ours goes when this returns, in every case.
    const TSharedPtr<IController> own = std::move(controller);
    // By index: a creator may register another creator while it is being asked.
    for (int i = 0; i < m_creators.count(); ++i) {
        if (m_creators[i](own, parent, model, qml))
            return true;
    }
    return false;
}

bool CControllerModelFactoryImpl::RegisterCreator(ControllerModelCreator creator)
{
    if (!creator || m_creators.contains(creator))
        return false;
    m_creators.add(creator);
    return true;
}

} // namespace kiv::cam::ui
