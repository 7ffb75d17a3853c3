// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CustomCameraSelectorModel.h"

#include "CustomCameraCheck.h"

#include <kivcam/CCameras.h>
#include <kivcam/CInterfaces.h>
#include <kivcamui/device/DeviceWatch.h>
#include <kivcamui/plugin/Conversions.h>
#include <kivcamui/plugin/PoolSearch.h>

#include <QJSEngine>

#include <algorithm>

namespace kiv::cam::ui {

namespace {

DeviceInfo* deviceAt(const ObjectListModel& list, int index)
{
    return qobject_cast<DeviceInfo*>(list.at(index));
}

bool isPlaceholder(const DeviceInfo* device)
{
    return device && !device->isFound();
}

} // namespace

CustomCameraSelectorModel::CustomCameraSelectorModel(QObject* parent)
    : QObject(parent), m_watch(new DeviceWatch(this))
{
    for (ObjectListModel* list : {&m_cameras, &m_commDevices, &m_videoDevices, &m_devices})
        QJSEngine::setObjectOwnership(list, QJSEngine::CppOwnership);
    CCameras* catalogue = kiv::cam::cameras();
    for (int i = 0; i < catalogue->cameraCount(); ++i)
        m_cameras.push_back(new CameraModel(catalogue->cameraAt(i), nullptr));
    m_cameras.push_back(new CameraModel(TSharedPtr<ICamera>(), nullptr));
    connect(&m_watcher, &QFutureWatcher<DeviceSearch::Found>::finished, this,
        &CustomCameraSelectorModel::doneScanning);
    // Any content turns emulators on, "0" included: only the variable's presence counts.
    if (!qEnvironmentVariableIsEmpty("KIVCAM_ENABLE_EMULATORS"))
        m_search.setEnableEmulators(true);
}

CustomCameraSelectorModel::~CustomCameraSelectorModel()
{
    RemoveDevices();
    delete m_cameraInfo;
}

void CustomCameraSelectorModel::setEnableEmulators(bool enable)
{
    if (enable == m_search.enableEmulators())
        return;
    m_search.setEnableEmulators(enable);
    emit enableEmulatorsChanged();
}

CameraModel* CustomCameraSelectorModel::selectedCamera() const
{
    return qobject_cast<CameraModel*>(m_cameras.at(m_selectedCameraIndex));
}

DeviceInfo* CustomCameraSelectorModel::selectedDevice() const
{
    return deviceAt(m_devices, m_selectedDeviceIndex);
}

DeviceInfo* CustomCameraSelectorModel::selectedCommDevice() const
{
    return deviceAt(m_commDevices, m_selectedCommDeviceIndex);
}

DeviceInfo* CustomCameraSelectorModel::selectedVideoDevice() const
{
    return deviceAt(m_videoDevices, m_selectedVideoDeviceIndex);
}

bool CustomCameraSelectorModel::watchDevices() const
{
    return m_watch->enabled();
}

void CustomCameraSelectorModel::setWatchDevices(bool watch)
{
    if (m_watch->setEnabled(watch))
        emit watchDevicesChanged();
}

void CustomCameraSelectorModel::scan()
{
    if (m_scanning)
        return;
    m_selectedDeviceIndex = -1;
    m_selectedCommDeviceIndex = -1;
    m_selectedVideoDeviceIndex = -1;
    emit selectedDeviceChanged();
    emit selectedCommDeviceChanged();
    emit selectedVideoDeviceChanged();
    if (m_cameraInfo) {
        SCameraInfo record = m_cameraInfo->info();
        record.comm = SDeviceInfo();
        record.video = SDeviceInfo();
        CreateCameraInfo(record);
    }

    RemoveDevices();

    m_scanning = true;
    emit scanningChanged();
    m_watcher.setFuture(m_search.Start({}, thread()));
}

void CustomCameraSelectorModel::RemoveDevices()
{
    // A device in devices is in the other two as well, and goes with devices; one that stands in
    // commDevices or videoDevices alone is deleted here, once the views have seen the lists empty.
    QList<QObject*> both;
    for (int i = 0; i < m_devices.size(); ++i)
        both.append(m_devices.at(i));
    std::sort(both.begin(), both.end());
    QList<QObject*> alone;
    for (const ObjectListModel* list : {&m_commDevices, &m_videoDevices}) {
        for (int i = 0; i < list->size(); ++i) {
            if (!std::binary_search(both.cbegin(), both.cend(), list->at(i)))
                alone.append(list->at(i));
        }
    }
    m_commDevices.detachAll();
    m_videoDevices.detachAll();
    m_devices.removeAll();
    qDeleteAll(alone);
}

void CustomCameraSelectorModel::doneScanning()
{
    const QList<DeviceInfo*> devices = m_search.List(
        PoolSearch<DeviceInfo>::Take(m_watcher.future()), [](const IInterface&) { return true; });
    QList<QObject*> comm;
    QList<QObject*> video;
    QList<QObject*> both;
    CInterfaces* catalogue = kiv::cam::interfaces();
    // The devices of a transport stand together in the sorted list: the transport is looked up
    // once for all of them.
    for (qsizetype begin = 0, end = 0; begin < devices.size(); begin = end) {
        const CString& interfaceName = devices.at(begin)->info().interfaceName;
        while (end < devices.size() && devices.at(end)->info().interfaceName == interfaceName)
            ++end;
        const TSharedPtr<IInterface> transport = catalogue->interfaceByName(interfaceName);
        for (qsizetype i = begin; i < end; ++i) {
            DeviceInfo* device = devices.at(i);
            if (!transport || (!transport->comm && !transport->video)) {
                delete device; // no list would show it
                continue;
            }
            if (transport->comm)
                comm.append(device);
            if (transport->video)
                video.append(device);
            if (transport->comm && transport->video)
                both.append(device);
        }
    }
    m_commDevices.append(comm);
    m_videoDevices.append(video);
    m_devices.append(both);
    if (m_scanning) {
        m_scanning = false;
        emit scanningChanged();
    }
    if (!m_scanned) {
        m_scanned = true;
        emit scannedChanged();
    }
}

void CustomCameraSelectorModel::setSelectedCameraIndex(int index)
{
    if (index == m_selectedCameraIndex || index < 0 || index >= m_cameras.size())
        return;
    m_selectedCameraIndex = index;
    const SCameraInfo old = m_cameraInfo ? m_cameraInfo->info() : SCameraInfo();
    SCameraInfo record;

    // Looked up by name, so that a catalogue type named "Custom" would serve the custom entry.
    const TSharedPtr<ICamera> type = kiv::cam::cameras()->cameraByName(
        toCString(static_cast<CameraModel*>(m_cameras.at(index))->name()));
    if (type)
        record = type->defaultInfo;
    if (m_useSameDevice) {
        record.video = old.comm;
        record.comm = record.video;
    } else {
        record.comm = old.comm;
        record.video = old.video;
    }

    if (!type) {
        record.controller = "Generic";
    } else if (m_useSameDevice) {
        if (!type->IsSupportedBaseDeviceType(record.comm.interfaceName)) {
            record.video = SDeviceInfo();
            record.comm = SDeviceInfo();
            ChangeIndex(
                m_selectedDeviceIndex, -1, &CustomCameraSelectorModel::selectedDeviceChanged);
        }
    } else {
        if (!type->IsSupportedBaseDeviceType(record.comm.interfaceName)) {
            record.comm = SDeviceInfo();
            ChangeIndex(m_selectedCommDeviceIndex, -1,
                &CustomCameraSelectorModel::selectedCommDeviceChanged);
        }
        if (!type->IsSupportedBaseDeviceType(record.video.interfaceName)) {
            record.video = SDeviceInfo();
            ChangeIndex(m_selectedVideoDeviceIndex, -1,
                &CustomCameraSelectorModel::selectedVideoDeviceChanged);
        }
    }

    CreateCameraInfo(record);
    emit selectedCameraChanged();
}

void CustomCameraSelectorModel::setSelectedDeviceIndex(int index)
{
    if (SelectDevice(m_devices, m_selectedDeviceIndex, index, m_useSameDevice,
            [](SCameraInfo& record, const SDeviceInfo& device) {
                record.video = device;
                record.comm = record.video;
            }))
        emit selectedDeviceChanged();
}

void CustomCameraSelectorModel::setSelectedCommDeviceIndex(int index)
{
    if (SelectDevice(m_commDevices, m_selectedCommDeviceIndex, index, !m_useSameDevice,
            [](SCameraInfo& record, const SDeviceInfo& device) { record.comm = device; }))
        emit selectedCommDeviceChanged();
}

void CustomCameraSelectorModel::setSelectedVideoDeviceIndex(int index)
{
    if (SelectDevice(m_videoDevices, m_selectedVideoDeviceIndex, index, !m_useSameDevice,
            [](SCameraInfo& record, const SDeviceInfo& device) { record.video = device; }))
        emit selectedVideoDeviceChanged();
}

bool CustomCameraSelectorModel::SelectDevice(
    const ObjectListModel& list, int& stored, int index, bool inMode, DeviceWriter write)
{
    if (index == stored || index < -1 || index >= list.size())
        return false;
    stored = index;
    if (inMode) {
        // A description comes into being even before a camera type is chosen.
        SCameraInfo record = m_cameraInfo ? m_cameraInfo->info() : SCameraInfo();
        const DeviceInfo* device = deviceAt(list, index);
        write(record, device ? device->info() : SDeviceInfo());
        CreateCameraInfo(record);
    }
    return true;
}

void CustomCameraSelectorModel::setUseSameDevice(bool same)
{
    if (same == m_useSameDevice)
        return;
    m_useSameDevice = same;
    if (m_cameraInfo) {
        SCameraInfo record = m_cameraInfo->info();
        if (same) {
            const int comm = GetDeviceIndex(record.comm.interfaceName, record.comm.deviceName);
            const int video = GetDeviceIndex(record.video.interfaceName, record.video.deviceName);
            int selected = comm;
            if (comm != -1) {
                record.video = record.comm;
            } else if (video == -1) {
                record.comm = SDeviceInfo();
                record.video = SDeviceInfo();
            } else {
                record.comm = record.video;
                selected = video;
            }
            ChangeIndex(
                m_selectedDeviceIndex, selected, &CustomCameraSelectorModel::selectedDeviceChanged);
        } else {
            ChangeIndex(m_selectedCommDeviceIndex,
                GetCommDeviceIndex(record.comm.interfaceName, record.comm.deviceName),
                &CustomCameraSelectorModel::selectedCommDeviceChanged);
            ChangeIndex(m_selectedVideoDeviceIndex,
                GetVideoDeviceIndex(record.video.interfaceName, record.video.deviceName),
                &CustomCameraSelectorModel::selectedVideoDeviceChanged);
        }
        CreateCameraInfo(record);
    }
    emit useSameDeviceChanged();
}

void CustomCameraSelectorModel::ChangeIndex(
    int& stored, int index, void (CustomCameraSelectorModel::*changed)())
{
    if (index == stored)
        return;
    stored = index;
    emit(this->*changed)();
}

void CustomCameraSelectorModel::CreateCameraInfo(const SCameraInfo& record)
{
    // A replaced description waits for the event loop as a child, so that it still goes with
    // the model when no loop turns any more.
    if (m_cameraInfo) {
        m_cameraInfo->setParent(this);
        m_cameraInfo->deleteLater();
    }
    SCameraInfo checked = record;
    checkCustomCamera(checked, m_selectedCameraIndex >= 0, m_useSameDevice);
    m_cameraInfo = new CameraInfo(checked, nullptr);
    QJSEngine::setObjectOwnership(m_cameraInfo, QJSEngine::CppOwnership);
    for (auto changed : {&CameraInfo::widthChanged, &CameraInfo::heightChanged,
             &CameraInfo::cropLeftChanged, &CameraInfo::cropTopChanged,
             &CameraInfo::cropRightChanged, &CameraInfo::cropBottomChanged,
             &CameraInfo::adBitsChanged, &CameraInfo::adBitShiftChanged,
             &CameraInfo::pixelTypeChanged, &CameraInfo::controllerChanged})
        connect(m_cameraInfo, changed, this, &CustomCameraSelectorModel::recheck);

    // The description's devices get the level of a chosen placeholder, which lets the user
    // write the parameters that a device filled in by hand needs.
    const auto level = DeviceParameter::EDIT_CUSTOM_SELECT;
    if (m_useSameDevice) {
        if (isPlaceholder(selectedDevice())) {
            m_cameraInfo->comm()->setEditLevel(level);
            m_cameraInfo->video()->setEditLevel(level);
        }
    } else {
        if (isPlaceholder(selectedCommDevice()))
            m_cameraInfo->comm()->setEditLevel(level);
        if (isPlaceholder(selectedVideoDevice()))
            m_cameraInfo->video()->setEditLevel(level);
    }
    emit cameraInfoChanged();
}

// The description's verdict is constant, as for every camera: an edit that changes it gives a
// new description over the edited record.
void CustomCameraSelectorModel::recheck()
{
    const SCameraInfo& edited = m_cameraInfo->info();
    SCameraInfo checked = edited;
    checkCustomCamera(checked, m_selectedCameraIndex >= 0, m_useSameDevice);
    if (checked.canConnect != edited.canConnect || checked.errorSummary != edited.errorSummary
        || checked.errorMessage != edited.errorMessage)
        CreateCameraInfo(edited);
}

int CustomCameraSelectorModel::GetDeviceIndex(
    const CString& interfaceName, const CString& deviceName) const
{
    return IndexOf(m_devices, interfaceName, deviceName);
}

int CustomCameraSelectorModel::GetCommDeviceIndex(
    const CString& interfaceName, const CString& deviceName) const
{
    return IndexOf(m_commDevices, interfaceName, deviceName);
}

int CustomCameraSelectorModel::GetVideoDeviceIndex(
    const CString& interfaceName, const CString& deviceName) const
{
    return IndexOf(m_videoDevices, interfaceName, deviceName);
}

int CustomCameraSelectorModel::IndexOf(
    const ObjectListModel& list, const CString& interfaceName, const CString& deviceName)
{
    for (int i = 0; i < list.size(); ++i) {
        const SDeviceInfo& record = deviceAt(list, i)->info();
        if (record.interfaceName.compare(interfaceName) == 0
            && record.deviceName.compare(deviceName) == 0)
            return i;
    }
    return -1;
}

} // namespace kiv::cam::ui
