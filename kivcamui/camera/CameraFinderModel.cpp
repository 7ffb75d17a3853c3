// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CameraFinderModel.h"

#include <kiv/CMemFile.h>
#include <kivcam/CCameraFinder.h>
#include <kivcamui/device/DeviceWatch.h>
#include <kivcamui/plugin/Conversions.h>
#include <kivcamui/plugin/PoolSearch.h>
#include <kivcamui/plugin/ReleasedOnPool.h>

#include <QJSEngine>

namespace kiv::cam::ui {

CameraFinderModel::CameraFinderModel(QObject* parent)
    : QObject(parent),
      m_task(std::make_unique<PoolSearch<CameraInfo>>()),
      m_watch(new DeviceWatch(this))
{
    connect(&m_watcher, &QFutureWatcher<Found>::finished, this, &CameraFinderModel::doneScanning);
    QJSEngine::setObjectOwnership(&m_cameras, QJSEngine::CppOwnership);
    // Any content turns emulators on, "0" included: only the variable's presence counts.
    if (!qEnvironmentVariableIsEmpty("KIVCAM_ENABLE_EMULATORS"))
        m_search->enableEmulators = true;
}

// A search still running is stopped, and ends with its own share of the search state.
CameraFinderModel::~CameraFinderModel() = default;

void CameraFinderModel::setEnableEmulators(bool enable)
{
    m_search->enableEmulators = enable;
}

void CameraFinderModel::setEmulatorsOnly(bool only)
{
    m_search->emulatorsOnly = only;
}

void CameraFinderModel::setSupportedCameras(const QList<QString>& names)
{
    if (names == m_supportedCameras)
        return;
    m_supportedCameras = names;
    emit supportedCamerasChanged();
}

void CameraFinderModel::setCommOnly(bool commOnly)
{
    if (commOnly == m_search->commOnly)
        return;
    m_search->commOnly = commOnly;
    emit commOnlyChanged();
}

bool CameraFinderModel::watchDevices() const
{
    return m_watch->enabled();
}

void CameraFinderModel::setWatchDevices(bool watch)
{
    if (m_watch->setEnabled(watch))
        emit watchDevicesChanged();
}

void CameraFinderModel::scan()
{
    if (m_scanning)
        return;
    m_cameras.removeAll();
    m_scanning = true;
    emit scanningChanged();

    // The emulator switch is set on the pool thread right before the search, which uses the
    // value set on its own thread: another model searching at the same time cannot change it.
    m_watcher.setFuture(m_task->Start(thread(),
        [search = m_search, names = toCStrings(m_supportedCameras)](std::stop_token stop) mutable {
            CCameraFinder::setEnableEmulators(search->enableEmulators);
            const unsigned flags
                = (search->commOnly ? CCameraFinder::FIND_COMM : CCameraFinder::FIND_COMPLETE)
                | (search->emulatorsOnly ? CCameraFinder::FIND_EMULATORS_ONLY : 0u);
            CCameraFinder finder;
            const bool found = names.empty() ? finder.Find(flags, stop)
                                             : finder.Find(std::move(names), flags, stop);
            if (!found || stop.stop_requested())
                return QList<CameraInfo*>();
            return MakeCameras(finder.Take());
        }));
}

QList<CameraInfo*> CameraFinderModel::MakeCameras(TArray<SCameraInfo> found)
{
    QList<CameraInfo*> cameras;
    try {
        const std::shared_ptr<TArray<SCameraInfo>> records = ShareReleasedOnPool(std::move(found));
        cameras.reserve(records->count());
        for (SCameraInfo& record : *records)
            cameras.append(new CameraInfo(std::shared_ptr<SCameraInfo>(records, &record), nullptr));
    } catch (...) {
        // Without the memory for them, the cameras are not listed.
        qDeleteAll(cameras);
        return {};
    }
    return cameras;
}

void CameraFinderModel::doneScanning()
{
    m_cameras.removeAll();
    const QList<CameraInfo*> cameras = PoolSearch<CameraInfo>::Take(m_watcher.future());
    for (CameraInfo* camera : cameras)
        camera->setParent(this);
    m_cameras.append(QList<QObject*>(cameras.cbegin(), cameras.cend()));
    m_scanning = false;
    if (!m_scanned) {
        m_scanned = true;
        emit scannedChanged();
    }
    emit scanningChanged();
}

CameraInfo* CameraFinderModel::loadCameraInfo(const QString& fname)
{
    SCameraInfo record;
    if (!record.Load(toLocalPath(fname)))
        return nullptr;
    return new CameraInfo(record, nullptr);
}

CameraInfo* CameraFinderModel::loadCameraInfoFromString(const QString& xmlFragment)
{
    // Each UTF-16 unit takes a byte or more in UTF-8: a text this long is refused uncopied.
    if (static_cast<std::uint64_t>(xmlFragment.size()) > SCameraInfo::maxFileSize)
        return nullptr;
    // The file reads the bytes in place; they outlive the loading.
    QByteArray bytes = xmlFragment.toUtf8();
    TSharedPtr<CMemFile> file = CMemFile::Create();
    file->Attach(reinterpret_cast<unsigned char*>(bytes.data()),
        static_cast<std::uint64_t>(bytes.size()), false);
    SCameraInfo record;
    if (!record.Load(TSharedPtr<IFile>(file)))
        return nullptr;
    return new CameraInfo(record, nullptr);
}

} // namespace kiv::cam::ui
