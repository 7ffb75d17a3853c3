// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/camera/CameraInfo.h>
#include <kivcamui/kivcamui_export.h>
#include <kivui/ObjectListModel.h>

#include <QFutureWatcher>
#include <QObject>
#include <QStringList>

#include <atomic>
#include <memory>

class DeviceWatch;

namespace kiv::cam::ui {

template <typename T> class MadeOnPool;
template <typename T> class PoolSearch;

// Searches for connected cameras on a thread of Qt's global pool and lists what it found as
// CameraInfo objects; also turns a description file, or its XML text, into a CameraInfo.
//
// The search task also makes the CameraInfo objects, over the found records (moved, never
// copied), and moves them to the model's thread, which only adopts them and lists them in one
// insertion.
class KIVCAMUI_EXPORT CameraFinderModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(ObjectListModel* cameras READ cameras CONSTANT)
    Q_PROPERTY(bool scanning READ scanning NOTIFY scanningChanged)
    Q_PROPERTY(bool scanned READ scanned NOTIFY scannedChanged)
    Q_PROPERTY(bool enableEmulators READ enableEmulators WRITE setEnableEmulators)
    Q_PROPERTY(bool emulatorsOnly READ emulatorsOnly WRITE setEmulatorsOnly)
    Q_PROPERTY(QStringList supportedCameras READ supportedCameras WRITE setSupportedCameras NOTIFY
            supportedCamerasChanged)
    Q_PROPERTY(bool commOnly READ commOnly WRITE setCommOnly NOTIFY commOnlyChanged)
    Q_PROPERTY(bool watchDevices READ watchDevices WRITE setWatchDevices NOTIFY watchDevicesChanged)

public:
    explicit CameraFinderModel(QObject* parent = nullptr);
    ~CameraFinderModel() override;

    ObjectListModel* cameras() { return &m_cameras; }
    bool scanning() const { return m_scanning; }
    bool scanned() const { return m_scanned; }
    bool enableEmulators() const { return m_search->enableEmulators; }
    // Takes effect when the next search starts; emits nothing.
    void setEnableEmulators(bool enable);
    bool emulatorsOnly() const { return m_search->emulatorsOnly; }
    void setEmulatorsOnly(bool only);
    QStringList supportedCameras() const { return m_supportedCameras; }
    void setSupportedCameras(const QList<QString>& names);
    bool commOnly() const { return m_search->commOnly; }
    void setCommOnly(bool commOnly);
    // While on, a USB3 Vision camera or USB serial adapter plugged in or out starts a search
    // (bursts of events give one, and none starts while one runs); off at construction.
    bool watchDevices() const;
    void setWatchDevices(bool watch);

    // Starts a search, unless one is running. The list is empty until the search ends.
    Q_INVOKABLE void scan();
    // A new CameraInfo without parent, owned by the caller (by QML when QML calls), or null
    // when the file, given as a URL, or the text is not a camera description.
    Q_INVOKABLE static kiv::cam::ui::CameraInfo* loadCameraInfo(const QString& fname);
    Q_INVOKABLE static kiv::cam::ui::CameraInfo* loadCameraInfoFromString(
        const QString& xmlFragment);

signals:
    void scanningChanged();
    void scannedChanged();
    void supportedCamerasChanged();
    void commOnlyChanged();
    void watchDevicesChanged();

private slots:
    void doneScanning();

private:
    // The switches the search task reads when it starts. Shared with the task, so that a model
    // destroyed while it searches neither waits for the search nor leaves it reading freed memory.
    struct SSearch {
        std::atomic<bool> enableEmulators{false};
        std::atomic<bool> emulatorsOnly{false};
        std::atomic<bool> commOnly{true};
    };

    using Found = std::shared_ptr<MadeOnPool<CameraInfo>>;

    // One object per record, sharing the records, which are freed off the GUI thread once the
    // last of them is gone.
    static QList<CameraInfo*> MakeCameras(TArray<SCameraInfo> records);

    QFutureWatcher<Found> m_watcher;
    std::shared_ptr<SSearch> m_search = std::make_shared<SSearch>();
    // By pointer: its header, which runs the task through QtConcurrent, is the library's own.
    std::unique_ptr<PoolSearch<CameraInfo>> m_task;
    ObjectListModel m_cameras{true};
    bool m_scanning = false;
    bool m_scanned = false;
    QStringList m_supportedCameras;
    DeviceWatch* m_watch; // a child
};

} // namespace kiv::cam::ui
