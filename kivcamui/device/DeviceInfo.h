// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/SDeviceInfo.h>
#include <kivcamui/device/DeviceParameter.h>
#include <kivcamui/device/InterfaceModel.h>
#include <kivcamui/kivcamui_export.h>
#include <kivui/ObjectListModel.h>

#include <QObject>
#include <QString>

#include <memory>

// The QML face of one device record: its names and icon, its transport and its parameters,
// which QML edits in place. It either holds its own copy of the record, or shares a record with
// its holders, or edits a record held elsewhere (a camera description's control or video
// device), which must then outlive it.
//
// The parameter objects are made when the list is first read, so that a device nobody looks
// into costs one object; an object that nobody has read yet may be made on any thread and moved
// to the thread that shows it.
class KIVCAMUI_EXPORT DeviceInfo : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString interfaceName READ interfaceName CONSTANT)
    Q_PROPERTY(QString deviceName READ deviceName CONSTANT)
    Q_PROPERTY(QString baseType READ baseType CONSTANT)
    Q_PROPERTY(QString icon READ icon CONSTANT)
    Q_PROPERTY(bool iconExists READ iconExists CONSTANT)
    Q_PROPERTY(ObjectListModel* parameters READ parameters CONSTANT)
    Q_PROPERTY(bool isFound READ isFound CONSTANT)
    Q_PROPERTY(InterfaceModel* interface READ interface CONSTANT)
    Q_PROPERTY(DeviceParameter::EEDIT_LEVEL editLevel READ editLevel WRITE setEditLevel NOTIFY
            editLevelChanged)
    Q_PROPERTY(bool canConnect READ canConnect CONSTANT)
    Q_PROPERTY(QString errorSummary READ errorSummary CONSTANT)
    Q_PROPERTY(QString errorMessage READ errorMessage CONSTANT)

public:
    // Copying form: the object keeps a copy of info of its own.
    DeviceInfo(const kiv::cam::SDeviceInfo& info, kiv::cam::CParameters::EEditLevel level);
    // Referring form: edits go straight into info. The tag only selects this form.
    DeviceInfo(int tag, kiv::cam::SDeviceInfo& info, kiv::cam::CParameters::EEditLevel level);
    // Sharing form: edits go straight into info, which the object keeps alive.
    DeviceInfo(
        std::shared_ptr<kiv::cam::SDeviceInfo> info, kiv::cam::CParameters::EEditLevel level);

    QString interfaceName() const;
    // "Custom" for a device template offered to be filled in by hand.
    QString deviceName() const;
    // The record's base type, or its transport's name where it has none.
    QString baseType() const;
    QString icon() const;
    bool iconExists() const;
    // The list, and a DeviceParameter per entry of the record, made on the first read.
    ObjectListModel* parameters();
    bool isFound() const;
    // The device's transport, made on first read; null while the catalogue knows none.
    InterfaceModel* interface();
    DeviceParameter::EEDIT_LEVEL editLevel() const;
    void setEditLevel(DeviceParameter::EEDIT_LEVEL level);
    bool canConnect() const;
    QString errorSummary() const;
    QString errorMessage() const;

    // A new copying object over the shown record, at this level; the caller owns it.
    Q_INVOKABLE DeviceInfo* clone() const;

    kiv::cam::SDeviceInfo& info() { return *m_info; }
    const kiv::cam::SDeviceInfo& info() const { return *m_info; }

    // What baseType shows for a record: its base type, or its transport's name where it has none.
    static QString BaseTypeOf(const kiv::cam::SDeviceInfo& info);

signals:
    void editLevelChanged();

private:
    std::shared_ptr<kiv::cam::SDeviceInfo> m_info; // owns nothing in the referring form
    kiv::cam::CParameters::EEditLevel m_editLevel;
    // Made on the first read; destroyed before the record its parameters show.
    std::unique_ptr<ObjectListModel> m_parameters;
    InterfaceModel* m_interface = nullptr;
};
