// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TSharedPtr.h>
#include <kivcam/ICamera.h>
#include <kivcamui/kivcamui_export.h>

#include <QObject>
#include <QString>

namespace kiv::cam::ui {

// The QML face of one camera type, or, over an empty pointer, of the "Custom" type that stands
// for a camera assembled by hand. Immutable.
class KIVCAMUI_EXPORT CameraModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString icon READ icon CONSTANT)
    Q_PROPERTY(bool iconExists READ iconExists CONSTANT)
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(QString displayName READ displayName CONSTANT)
    Q_PROPERTY(QString description READ description CONSTANT)
    Q_PROPERTY(bool isCustom READ isCustom CONSTANT)

public:
    CameraModel(TSharedPtr<ICamera> camera, QObject* parent);
    ~CameraModel() override;

    QString icon() const;
    bool iconExists() const;
    QString name() const;
    QString displayName() const;
    QString description() const;
    bool isCustom() const { return !m_camera; }

    // Whether a device of that base type can serve the type; any device serves "Custom".
    Q_INVOKABLE bool isSupportedBaseDeviceType(const QString& baseType) const;

    const TSharedPtr<ICamera>& camera() const { return m_camera; }

private:
    TSharedPtr<ICamera> m_camera;
};

} // namespace kiv::cam::ui
