// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TArray.h>
#include <kivcamui/plugin/IControllerModelFactory.h>

namespace kiv::cam::ui {

// The registry behind controllerModelFactory(): the creators in registration order. It only
// grows; nothing is ever unregistered.
class KIVCAMUI_EXPORT CControllerModelFactoryImpl : public IControllerModelFactory {
public:
    bool CreateModel(TSharedPtr<IController> controller, QObject* parent, QObject** model,
        QString* qml) override;
    bool RegisterCreator(ControllerModelCreator creator) override;

private:
    TArray<ControllerModelCreator> m_creators;
};

} // namespace kiv::cam::ui
