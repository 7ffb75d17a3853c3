#include "DeviceInfo.h"

#include <kivcam/CInterfaces.h>
#include <kivcamui/plugin/Conversions.h>

#include <QJSEngine>

using kiv::cam::CParameters;
using kiv::cam::SDeviceInfo;
using namespace kiv::cam::ui;

DeviceInfo::DeviceInfo(const SDeviceInfo& info, CParameters::EEditLevel level)
    : m_info(&m_ownInfo), m_ownInfo(info), m_editLevel(level)
{
    buildParameters();
}

DeviceInfo::DeviceInfo(int, SDeviceInfo& info, CParameters::EEditLevel level)
    : m_info(&info), m_editLevel(level)
{
    buildParameters();
}

void DeviceInfo::buildParameters()
{
    QJSEngine::setObjectOwnership(&m_parameters, QJSEngine::CppOwnership);
    for (unsigned i = 0; i < m_info->parameters.count(); ++i)
        m_parameters.push_back(new DeviceParameter(m_info->parameters, i, m_editLevel));
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
    return toQString(m_info->baseType.empty() ? m_info->interfaceName : m_info->baseType);
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
    for (int i = 0; i < m_parameters.size(); ++i)
        static_cast<DeviceParameter*>(m_parameters.at(i))->setEditLevel(level);
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
