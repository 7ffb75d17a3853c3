// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "DeviceInfo.h"

#include <kivcam/CInterfaces.h>
#include <kivcamui/plugin/Conversions.h>

#include <QJSEngine>

using kiv::cam::CParameters;
using kiv::cam::SDeviceInfo;
using namespace kiv::cam::ui;

DeviceInfo::DeviceInfo(const SDeviceInfo& info, CParameters::EEditLevel level)
    : DeviceInfo(std::make_shared<SDeviceInfo>(info), level)
{
}

// The record is shown through a pointer that owns nothing.
DeviceInfo::DeviceInfo(int, SDeviceInfo& info, CParameters::EEditLevel level)
    : DeviceInfo(std::shared_ptr<SDeviceInfo>(std::shared_ptr<void>(), &info), level)
{
}

DeviceInfo::DeviceInfo(std::shared_ptr<SDeviceInfo> info, CParameters::EEditLevel level)
    : m_info(std::move(info)), m_editLevel(level)
{
}

ObjectListModel* DeviceInfo::parameters()
{
    if (!m_parameters) {
        m_parameters = std::make_unique<ObjectListModel>(true);
        QJSEngine::setObjectOwnership(m_parameters.get(), QJSEngine::CppOwnership);
        QList<QObject*> entries;
        for (unsigned i = 0; i < m_info->parameters.count(); ++i)
            entries.append(new DeviceParameter(m_info->parameters, i, m_editLevel));
        m_parameters->append(entries);
    }
    return m_parameters.get();
}

QString DeviceInfo::BaseTypeOf(const SDeviceInfo& info)
{
    return toQString(info.baseType.empty() ? info.interfaceName : info.baseType);
}

QString DeviceInfo::interfaceName() const
{
    return toQString(m_info->interfaceName);
}

QString DeviceInfo::deviceName() const
{
    return m_editLevel == CParameters::EDIT_CUSTOM_SELECT ? QStringLiteral("Custom")
                                                          : toQString(m_info->deviceName);
}

QString DeviceInfo::baseType() const
{
    return BaseTypeOf(*m_info);
}

QString DeviceInfo::icon() const
{
    return iconUrl(m_info->iconName);
}

bool DeviceInfo::iconExists() const
{
    return kiv::cam::ui::iconExists(m_info->iconName);
}

bool DeviceInfo::isFound() const
{
    return m_editLevel != CParameters::EDIT_CUSTOM_SELECT;
}

InterfaceModel* DeviceInfo::interface()
{
    if (!m_interface) {
        if (auto transport = kiv::cam::interfaces()->interfaceByName(m_info->interfaceName))
            m_interface = new InterfaceModel(transport, this);
    }
    return m_interface;
}

DeviceParameter::EEDIT_LEVEL DeviceInfo::editLevel() const
{
    return static_cast<DeviceParameter::EEDIT_LEVEL>(m_editLevel);
}

void DeviceInfo::setEditLevel(DeviceParameter::EEDIT_LEVEL level)
{
    const auto stored = static_cast<CParameters::EEditLevel>(level);
    if (stored == m_editLevel)
        return;
    m_editLevel = stored;
    emit editLevelChanged();
    // Parameters not made yet will be made at the new level.
    for (int i = 0; m_parameters && i < m_parameters->size(); ++i)
        static_cast<DeviceParameter*>(m_parameters->at(i))->setEditLevel(level);
}

bool DeviceInfo::canConnect() const
{
    return m_info->canConnect;
}

QString DeviceInfo::errorSummary() const
{
    return toQString(m_info->errorSummary);
}

QString DeviceInfo::errorMessage() const
{
    return toQString(m_info->errorMessage);
}

DeviceInfo* DeviceInfo::clone() const
{
    return new DeviceInfo(*m_info, m_editLevel);
}
