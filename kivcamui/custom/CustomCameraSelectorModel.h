// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/SCameraInfo.h>
#include <kivcamui/camera/CameraInfo.h>
#include <kivcamui/custom/CameraModel.h>
#include <kivcamui/device/DeviceInfo.h>
#include <kivcamui/device/DeviceSearch.h>
#include <kivcamui/kivcamui_export.h>
#include <kivui/ObjectListModel.h>

#include <QFutureWatcher>
#include <QObject>

class DeviceWatch;

namespace kiv::cam::ui {

// Assembles a camera description by hand: a camera type (or the "Custom" type), then either one
// device that carries both control and video, or a control device and a video device. It lists
// the camera types, searches every transport for devices on a thread of Qt's global pool, and
// rebuilds cameraInfo after every choice; a replaced cameraInfo is deleted at the next turn of
// the event loop, so QML follows cameraInfoChanged.
//
// The description says what keeps it from connecting: its canConnect, errorSummary and
// errorMessage tell of a missing camera type or device, a device that cannot connect, and for
// the custom type a missing controller or pixel type, an impossible frame size or crop, or AD
// bits that the pixel type cannot hold. An edit of the description that changes that verdict
// replaces the description, as a choice does.
//
// A device object may stand in several lists: one whose transport carries both control and video
// is in commDevices, videoDevices and devices. A new search empties the lists and then deletes
// every object they held, each once.
class KIVCAMUI_EXPORT CustomCameraSelectorModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(kiv::cam::ui::CameraInfo* cameraInfo READ cameraInfo NOTIFY cameraInfoChanged)
    Q_PROPERTY(ObjectListModel* cameras READ cameras CONSTANT)
    Q_PROPERTY(ObjectListModel* commDevices READ commDevices CONSTANT)
    Q_PROPERTY(ObjectListModel* videoDevices READ videoDevices CONSTANT)
    Q_PROPERTY(ObjectListModel* devices READ devices CONSTANT)
    Q_PROPERTY(bool scanning READ scanning NOTIFY scanningChanged)
    Q_PROPERTY(bool scanned READ scanned NOTIFY scannedChanged)
    Q_PROPERTY(bool enableEmulators READ enableEmulators WRITE setEnableEmulators NOTIFY
            enableEmulatorsChanged)
    Q_PROPERTY(
        kiv::cam::ui::CameraModel* selectedCamera READ selectedCamera NOTIFY selectedCameraChanged)
    Q_PROPERTY(int selectedCameraIndex READ selectedCameraIndex WRITE setSelectedCameraIndex NOTIFY
            selectedCameraChanged)
    Q_PROPERTY(DeviceInfo* selectedDevice READ selectedDevice NOTIFY selectedDeviceChanged)
    Q_PROPERTY(int selectedDeviceIndex READ selectedDeviceIndex WRITE setSelectedDeviceIndex NOTIFY
            selectedDeviceChanged)
    Q_PROPERTY(
        DeviceInfo* selectedCommDevice READ selectedCommDevice NOTIFY selectedCommDeviceChanged)
    Q_PROPERTY(int selectedCommDeviceIndex READ selectedCommDeviceIndex WRITE
            setSelectedCommDeviceIndex NOTIFY selectedCommDeviceChanged)
    Q_PROPERTY(
        DeviceInfo* selectedVideoDevice READ selectedVideoDevice NOTIFY selectedVideoDeviceChanged)
    Q_PROPERTY(int selectedVideoDeviceIndex READ selectedVideoDeviceIndex WRITE
            setSelectedVideoDeviceIndex NOTIFY selectedVideoDeviceChanged)
    Q_PROPERTY(
        bool useSameDevice READ useSameDevice WRITE setUseSameDevice NOTIFY useSameDeviceChanged)
    Q_PROPERTY(bool watchDevices READ watchDevices WRITE setWatchDevices NOTIFY watchDevicesChanged)

public:
    // Lists every camera type, then the "Custom" type; emulators are enabled when
    // KIVCAM_ENABLE_EMULATORS has any content. Searches nothing yet.
    explicit CustomCameraSelectorModel(QObject* parent = nullptr);
    // Deletes cameraInfo: a host that keeps the description beyond the model keeps a clone.
    ~CustomCameraSelectorModel() override;

    // The description under edit; null until something is chosen.
    CameraInfo* cameraInfo() const { return m_cameraInfo; }
    ObjectListModel* cameras() { return &m_cameras; }
    // The devices whose transport carries control, video, or both.
    ObjectListModel* commDevices() { return &m_commDevices; }
    ObjectListModel* videoDevices() { return &m_videoDevices; }
    ObjectListModel* devices() { return &m_devices; }
    bool scanning() const { return m_scanning; }
    bool scanned() const { return m_scanned; }
    // Read by the next search when it starts, and for the placeholders when it ends.
    bool enableEmulators() const { return m_search.enableEmulators(); }
    void setEnableEmulators(bool enable);

    CameraModel* selectedCamera() const;
    int selectedCameraIndex() const { return m_selectedCameraIndex; }
    // Starts a new description from the type's template, keeping the chosen devices that the
    // type supports. A selection cannot be cleared: -1 is refused.
    void setSelectedCameraIndex(int index);
    DeviceInfo* selectedDevice() const;
    int selectedDeviceIndex() const { return m_selectedDeviceIndex; }
    // Each of the three device choices changes the description only in its own mode: the shared
    // device while useSameDevice is on, the other two while it is off.
    void setSelectedDeviceIndex(int index);
    DeviceInfo* selectedCommDevice() const;
    int selectedCommDeviceIndex() const { return m_selectedCommDeviceIndex; }
    void setSelectedCommDeviceIndex(int index);
    DeviceInfo* selectedVideoDevice() const;
    int selectedVideoDeviceIndex() const { return m_selectedVideoDeviceIndex; }
    void setSelectedVideoDeviceIndex(int index);
    bool useSameDevice() const { return m_useSameDevice; }
    // Carries the description's devices over into the other mode, choosing them in its lists.
    void setUseSameDevice(bool same);
    // While on, a USB3 Vision camera or USB serial adapter plugged in or out starts a search
    // (bursts of events give one, and none starts while one runs); off at construction.
    bool watchDevices() const;
    void setWatchDevices(bool watch);

    // Starts a search, unless one is running: clears the device choices and the description's
    // devices, and empties the device lists until the search ends.
    Q_INVOKABLE void scan();

signals:
    void cameraInfoChanged();
    void scanningChanged();
    void scannedChanged();
    void enableEmulatorsChanged();
    void selectedCameraChanged();
    void selectedDeviceChanged();
    void selectedCommDeviceChanged();
    void selectedVideoDeviceChanged();
    void useSameDeviceChanged();
    void watchDevicesChanged();

private slots:
    void doneScanning();
    void recheck();

private:
    using DeviceWriter = void (*)(SCameraInfo& record, const SDeviceInfo& device);

    // Replaces cameraInfo by a new description over record, its devices at the level of the
    // chosen ones and with what keeps it from connecting, and announces it.
    void CreateCameraInfo(const SCameraInfo& record);
    // The first device of a list with these names, or -1.
    int GetDeviceIndex(const CString& interfaceName, const CString& deviceName) const;
    int GetCommDeviceIndex(const CString& interfaceName, const CString& deviceName) const;
    int GetVideoDeviceIndex(const CString& interfaceName, const CString& deviceName) const;
    static int IndexOf(
        const ObjectListModel& list, const CString& interfaceName, const CString& deviceName);
    // The common part of the three device choices; false when index is refused.
    bool SelectDevice(
        const ObjectListModel& list, int& stored, int index, bool inMode, DeviceWriter write);
    void ChangeIndex(int& stored, int index, void (CustomCameraSelectorModel::*changed)());
    // Empties the device lists, announcing it, and deletes their objects, each once.
    void RemoveDevices();

    CameraInfo* m_cameraInfo = nullptr;
    ObjectListModel m_cameras{true};
    ObjectListModel m_commDevices{true};
    ObjectListModel m_videoDevices{true};
    ObjectListModel m_devices{true};
    bool m_scanning = false;
    bool m_scanned = false;
    DeviceSearch m_search;
    QFutureWatcher<DeviceSearch::Found> m_watcher{this};
    int m_selectedCameraIndex = -1;
    int m_selectedDeviceIndex = -1;
    int m_selectedCommDeviceIndex = -1;
    int m_selectedVideoDeviceIndex = -1;
    bool m_useSameDevice = true;
    DeviceWatch* m_watch; // a child
};

} // namespace kiv::cam::ui
