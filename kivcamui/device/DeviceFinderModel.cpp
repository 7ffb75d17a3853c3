// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "DeviceFinderModel.h"

#include <kivcamui/device/DeviceWatch.h>
#include <kivcamui/plugin/Conversions.h>
#include <kivcamui/plugin/PoolSearch.h>

#include <QJSEngine>

using kiv::CString;
using kiv::CVariant;
using kiv::cam::CParameters;
using kiv::cam::ui::PoolSearch;
using kiv::cam::ui::toCString;
using kiv::cam::ui::toCStrings;
using kiv::cam::ui::toQString;

DeviceFinderModel::DeviceFinderModel(QObject* parent)
    : QObject(parent), m_watch(new DeviceWatch(this))
{
    connect(&m_watcher, &QFutureWatcher<DeviceSearch::Found>::finished, this,
        &DeviceFinderModel::doneScanning);
    QJSEngine::setObjectOwnership(&m_devices, QJSEngine::CppOwnership);
}

DeviceFinderModel::~DeviceFinderModel() = default;

void DeviceFinderModel::setEnableEmulators(bool enable)
{
    if (enable == m_search.enableEmulators())
        return;
    m_search.setEnableEmulators(enable);
    emit enableEmulatorsChanged();
}

void DeviceFinderModel::setSupportedDevices(const QStringList& names)
{
    if (names == m_supportedDevices)
        return;
    m_supportedDevices = names;
    emit supportedDevicesChanged();
}

void DeviceFinderModel::setDefaultControl(const QString& control)
{
    if (control == m_defaultControl)
        return;
    m_defaultControl = control;
    emit defaultControlChanged();
}

void DeviceFinderModel::setDefaultBaudRate(int rate)
{
    if (rate == m_defaultBaudRate)
        return;
    m_defaultBaudRate = rate;
    emit defaultBaudRateChanged();
}

bool DeviceFinderModel::watchDevices() const
{
    return m_watch->enabled();
}

void DeviceFinderModel::setWatchDevices(bool watch)
{
    if (m_watch->setEnabled(watch))
        emit watchDevicesChanged();
}

void DeviceFinderModel::scan()
{
    if (m_scanning)
        return;
    m_devices.removeAll();
    m_scanning = true;
    emit scanningChanged();

    m_watcher.setFuture(m_search.Start(toCStrings(m_supportedDevices), thread()));
}

void DeviceFinderModel::doneScanning()
{
    const QList<DeviceInfo*> devices
        = m_search.List(PoolSearch<DeviceInfo>::Take(m_watcher.future()),
            [this](const kiv::cam::IInterface& transport) {
                return m_supportedDevices.contains(toQString(transport.name));
            });
    m_devices.removeAll();
    if (!m_defaultControl.isEmpty() || m_defaultBaudRate > 0) {
        for (DeviceInfo* device : devices)
            ApplyPresets(*device);
    }
    m_devices.append(QList<QObject*>(devices.cbegin(), devices.cend()));
    if (m_scanning) {
        m_scanning = false;
        emit scanningChanged();
    }
    if (!m_scanned) {
        m_scanned = true;
        emit scannedChanged();
    }
}

void DeviceFinderModel::ApplyPresets(DeviceInfo& device) const
{
    CParameters& parameters = device.info().parameters;
    const CString control("Control", -1);
    if (!m_defaultControl.isEmpty() && parameters.Exists(control))
        parameters[control].setValue(CVariant(toCString(m_defaultControl)));
    const CString baudRate("BaudRate", -1);
    if (m_defaultBaudRate > 0 && parameters.Exists(baudRate)
        && parameters[baudRate].value().IsEnumValueValid(m_defaultBaudRate))
        parameters[baudRate].setValue(CVariant(m_defaultBaudRate));
}
