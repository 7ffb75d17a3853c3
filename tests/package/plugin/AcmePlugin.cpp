// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The test's own controller UI plugin: it serves the controller "Acme" with a panel that names
// the controller of its model, and leaves every other controller to the other plugins.

#include <kivcamui/plugin/ControllerModel.h>
#include <kivcamui/plugin/Conversions.h>
#include <kivcamui/plugin/IControllerModelFactory.h>

#include <QString>

#include <utility>

class AcmeControllerModel : public ControllerModel {
    Q_OBJECT
    Q_PROPERTY(QString controllerName READ controllerName CONSTANT)

public:
    AcmeControllerModel(kiv::TSharedPtr<kiv::cam::IController> controller, QObject* parent)
        : ControllerModel(parent), m_controller(std::move(controller))
    {
    }

    QString controllerName() const { return kiv::cam::ui::toQString(m_controller->name()); }

private:
    kiv::TSharedPtr<kiv::cam::IController> m_controller; // keeps the controller alive
};

namespace {

bool createAcmePanel(kiv::TSharedPtr<kiv::cam::IController> controller, QObject* parent,
    QObject** model, QString* qml)
{
    if (!controller || controller->name().compare("Acme") != 0)
        return false;
    *model = new AcmeControllerModel(controller, parent);
    *qml = QStringLiteral("qrc:/kivcamuiAcme/AcmePanel.qml");
    return true;
}

} // namespace

extern "C" Q_DECL_EXPORT bool kivInitPlugin()
{
    return kiv::cam::ui::controllerModelFactory()->RegisterCreator(createAcmePanel);
}

#include "AcmePlugin.moc"
