// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TSharedPtr.h>
#include <kivcam/IInterface.h>
#include <kivcamui/kivcamui_export.h>

#include <QObject>
#include <QString>

// A read-only view of one transport of the camera library. Every read goes to the transport.
class KIVCAMUI_EXPORT InterfaceModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString icon READ icon CONSTANT)
    Q_PROPERTY(bool iconExists READ iconExists CONSTANT)
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(QString displayName READ displayName CONSTANT)
    Q_PROPERTY(QString description READ description CONSTANT)
    Q_PROPERTY(QString baseType READ baseType CONSTANT)
    Q_PROPERTY(bool comm READ comm CONSTANT)
    Q_PROPERTY(bool video READ video CONSTANT)
    Q_PROPERTY(bool isEmulator READ isEmulator CONSTANT)

public:
    InterfaceModel(kiv::TSharedPtr<kiv::cam::IInterface> transport, QObject* parent);
    ~InterfaceModel() override;

    QString icon() const;
    bool iconExists() const;
    QString name() const;
    QString displayName() const;
    QString description() const;
    QString baseType() const;
    bool comm() const;
    bool video() const;
    bool isEmulator() const;

private:
    kiv::TSharedPtr<kiv::cam::IInterface> m_interface;
};
