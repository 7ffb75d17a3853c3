// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/device/DeviceInfo.h>
#include <kivcamui/device/DeviceSearch.h>
#include <kivcamui/kivcamui_export.h>
#include <kivui/ObjectListModel.h>

#include <QFutureWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

class DeviceWatch;

// Searches the machine for the devices through which cameras are reached, on a thread of Qt's
// global pool, and lists them as DeviceInfo objects, together with a "Custom" device of each
// wanted transport for the user to fill in by hand. The "Control" and "BaudRate" parameters of
// every listed device can be preset.
class KIVCAMUI_EXPORT DeviceFinderModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(ObjectListModel* devices READ devices CONSTANT)
    Q_PROPERTY(bool scanning READ scanning NOTIFY scanningChanged)
    Q_PROPERTY(bool scanned READ scanned NOTIFY scannedChanged)
    Q_PROPERTY(bool enableEmulators READ enableEmulators WRITE setEnableEmulators NOTIFY
            enableEmulatorsChanged)
    Q_PROPERTY(QStringList supportedDevices READ supportedDevices WRITE setSupportedDevices NOTIFY
            supportedDevicesChanged)
    Q_PROPERTY(QString defaultControl READ defaultControl WRITE setDefaultControl NOTIFY
            defaultControlChanged)
    Q_PROPERTY(int defaultBaudRate READ defaultBaudRate WRITE setDefaultBaudRate NOTIFY
            defaultBaudRateChanged)
    Q_PROPERTY(bool watchDevices READ watchDevices WRITE setWatchDevices NOTIFY watchDevicesChanged)

public:
    explicit DeviceFinderModel(QObject* parent = nullptr);
    // A search still running is stopped and left to end by itself.
    ~DeviceFinderModel() override;

    ObjectListModel* devices() { return &m_devices; }
    bool scanning() const { return m_scanning; }
    bool scanned() const { return m_scanned; }
    // Read by the next search when it starts, and for the "Custom" devices when it ends.
    bool enableEmulators() const { return m_search.enableEmulators(); }
    void setEnableEmulators(bool enable);
    // The transports searched, and offered as "Custom" devices; all are searched, and none
    // offered, while it is empty.
    QStringList supportedDevices() const { return m_supportedDevices; }
    void setSupportedDevices(const QStringList& names);
    // Written into the "Control" parameter of every device listed; empty for none.
    QString defaultControl() const { return m_defaultControl; }
    void setDefaultControl(const QString& control);
    // Written into the "BaudRate" parameter of every device that offers that rate; 0 or less
    // for none.
    int defaultBaudRate() const { return m_defaultBaudRate; }
    void setDefaultBaudRate(int rate);
    // While on, a USB3 Vision camera or USB serial adapter plugged in or out starts a search
    // (bursts of events give one, and none starts while one runs); off at construction.
    bool watchDevices() const;
    void setWatchDevices(bool watch);

    // Starts a search, unless one is running. The list is empty until the search ends.
    Q_INVOKABLE void scan();

signals:
    void scanningChanged();
    void scannedChanged();
    void enableEmulatorsChanged();
    void supportedDevicesChanged();
    void defaultControlChanged();
    void defaultBaudRateChanged();
    void watchDevicesChanged();

private slots:
    void doneScanning();

private:
    // Written straight into the record, so the new device's parameters announce nothing.
    void ApplyPresets(DeviceInfo& device) const;

    QFutureWatcher<DeviceSearch::Found> m_watcher{this};
    ObjectListModel m_devices{true};
    bool m_scanning = false;
    bool m_scanned = false;
    DeviceSearch m_search;
    QStringList m_supportedDevices;
    QString m_defaultControl;
    int m_defaultBaudRate = -1;
    DeviceWatch* m_watch; // a child
};
