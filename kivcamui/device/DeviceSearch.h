// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/IInterface.h>
#include <kivcam/SDeviceInfo.h>

#include <QFuture>
#include <QList>

#include <atomic>
#include <functional>
#include <memory>

class DeviceInfo;
class QThread;

namespace kiv::cam::ui {
template <typename T> class MadeOnPool;
template <typename T> class PoolSearch;
} // namespace kiv::cam::ui

// The device search of a discovery model: one task at a time on Qt's global pool, and the
// sorted device objects made from what it found. The task makes the objects of the found
// devices itself, over the found records (moved, never copied), sorts them and moves them to
// the model's thread, which only adds the "Custom" placeholders. The emulator switch is shared
// with the task, which reads it when it starts, so that a model destroyed while it searches
// neither waits for the search nor leaves it reading freed memory; destroying the search stops a
// task still running.
class DeviceSearch {
public:
    using Found = std::shared_ptr<kiv::cam::ui::MadeOnPool<DeviceInfo>>;

    DeviceSearch();
    ~DeviceSearch();
    DeviceSearch(const DeviceSearch&) = delete;
    DeviceSearch& operator=(const DeviceSearch&) = delete;

    bool enableEmulators() const { return *m_enableEmulators; }
    void setEnableEmulators(bool enable) { *m_enableEmulators = enable; }

    // Starts a task that searches every transport, or with names, keeps only the devices whose
    // base type or transport name is among them. Its objects are made for thread.
    QFuture<Found> Start(kiv::TArray<kiv::CString> names, QThread* thread);

    // The found devices, sorted, and a "Custom" placeholder per transport that offers() accepts
    // (emulators only while they are enabled): sorted by transport name, each transport's
    // placeholder ahead of its devices, these by name. The objects have no parent: the lists
    // that show them own them.
    QList<DeviceInfo*> List(QList<DeviceInfo*> found,
        const std::function<bool(const kiv::cam::IInterface&)>& offers) const;

private:
    // One object per record, sharing the records, which are freed off the GUI thread once the
    // last of them is gone; sorted by transport name, then device name.
    static QList<DeviceInfo*> MakeSorted(kiv::TArray<kiv::cam::SDeviceInfo> found);

    std::shared_ptr<std::atomic<bool>> m_enableEmulators
        = std::make_shared<std::atomic<bool>>(false);
    // By pointer: its header, which runs the task through QtConcurrent, is the library's own.
    std::unique_ptr<kiv::cam::ui::PoolSearch<DeviceInfo>> m_task;
};
