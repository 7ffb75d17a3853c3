// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/CParameters.h>
#include <kivcamui/kivcamui_export.h>

#include <QObject>
#include <QString>
#include <QStringList>

// A live, editable view of one entry of a device's parameters: it holds no copy of the value,
// every read goes to the collection and every write goes straight into it.
class KIVCAMUI_EXPORT DeviceParameter : public QObject {
    Q_OBJECT
    Q_PROPERTY(uint index READ index CONSTANT)
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(QString displayName READ displayName CONSTANT)
    Q_PROPERTY(QString description READ description CONSTANT)
    Q_PROPERTY(QString value READ value WRITE setValue NOTIFY valueChanged)
    Q_PROPERTY(bool hasAllowedValues READ hasAllowedValues CONSTANT)
    Q_PROPERTY(int valueIndex READ valueIndex WRITE setValueIndex NOTIFY valueIndexChanged)
    Q_PROPERTY(QStringList allowedValues READ allowedValues CONSTANT)
    Q_PROPERTY(bool isWritable READ isWritable NOTIFY editLevelChanged)
    Q_PROPERTY(EEDIT_LEVEL editLevel READ editLevel WRITE setEditLevel NOTIFY editLevelChanged)

public:
    // The viewer's permission level: an entry is writable when its own level is at most this.
    enum EEDIT_LEVEL {
        EDIT_ALWAYS = kiv::cam::CParameters::EDIT_ALWAYS,
        EDIT_CUSTOM = kiv::cam::CParameters::EDIT_CUSTOM,
        EDIT_CUSTOM_SELECT = kiv::cam::CParameters::EDIT_CUSTOM_SELECT,
        EDIT_INTERNAL = kiv::cam::CParameters::EDIT_INTERNAL,
        EDIT_NEVER = kiv::cam::CParameters::EDIT_NEVER,
    };
    Q_ENUM(EEDIT_LEVEL)

    // The collection must outlive the object.
    DeviceParameter(kiv::cam::CParameters& parameters, unsigned index,
        kiv::cam::CParameters::EEditLevel editLevel);

    uint index() const { return m_index; }
    QString name() const;
    QString displayName() const;
    QString description() const;
    QString value() const;
    void setValue(const QString& text);
    bool hasAllowedValues() const { return !m_allowedValues.isEmpty(); }
    int valueIndex() const;
    void setValueIndex(int index);
    QStringList allowedValues() const { return m_allowedValues; }
    bool isWritable() const;
    EEDIT_LEVEL editLevel() const { return static_cast<EEDIT_LEVEL>(m_editLevel); }
    void setEditLevel(EEDIT_LEVEL level);

signals:
    void valueChanged();
    void valueIndexChanged();
    void editLevelChanged();

private:
    kiv::cam::CParameters::CEntry& entry() const { return (*m_parameters)[m_index]; }

    kiv::cam::CParameters* m_parameters;
    unsigned m_index;
    kiv::cam::CParameters::EEditLevel m_editLevel;
    QStringList m_allowedValues;
};
