// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CameraModel.h"

#include <kivcamui/plugin/Conversions.h>

#include <utility>

namespace kiv::cam::ui {

CameraModel::CameraModel(TSharedPtr<ICamera> camera, QObject* parent)
    : QObject(parent), m_camera(std::move(camera))
{
}

CameraModel::~CameraModel() = default;

QString CameraModel::icon() const
{
    // The host's resources carry the custom picture; this library has none.
    return m_camera ? iconUrl(m_camera->iconName) : QStringLiteral("qrc:///data/images/Custom.png");
}

bool CameraModel::iconExists() const
{
    return m_camera && ui::iconExists(m_camera->iconName);
}

QString CameraModel::name() const
{
    return m_camera ? toQString(m_camera->name) : QStringLiteral("Custom");
}

QString CameraModel::displayName() const
{
    return m_camera ? toQString(m_camera->displayName) : QStringLiteral("Custom");
}

QString CameraModel::description() const
{
    return m_camera ? toQString(m_camera->description) : QStringLiteral("Custom camera type.");
}

bool CameraModel::isSupportedBaseDeviceType(const QString& baseType) const
{
    return !m_camera || m_camera->IsSupportedBaseDeviceType(toCString(baseType));
}

} // namespace kiv::cam::ui
