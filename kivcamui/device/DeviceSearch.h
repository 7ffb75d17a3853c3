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
#include <stop_token>

class DeviceInfo;
class QObject;

// The device search of a discovery model: one task at a time on Qt's global pool, and the
// sorted device objects made from what it found. The emulator switch is shared with the task,
// which reads it when it starts, so that a model destroyed while it searches neither waits for
// the search nor leaves it reading freed memory; destroying the search stops a task still
// running.
class DeviceSearch {
public:
    using Result = kiv::TArray<kiv::cam::SDeviceInfo>;

    DeviceSearch() = default;
    ~DeviceSearch();
    DeviceSearch(const DeviceSearch&) = delete;
    DeviceSearch& operator=(const DeviceSearch&) = delete;

    bool enableEmulators() const { return *m_enableEmulators; }
    void setEnableEmulators(bool enable) { *m_enableEmulators = enable; }

    // Starts a task that searches every transport, or with names, keeps only the devices whose
    // base type or transport name is among them.
    QFuture<Result> Start(kiv::TArray<kiv::CString> names);

    // What a finished task found; nothing when it was cancelled before it reported (as it is
    // when there is no thread pool to run it).
    static Result Found(const QFuture<Result>& future);

    // One object, a child of parent, per found record, and a "Custom" placeholder per transport
    // that offers() accepts (emulators only while they are enabled); sorted by transport name,
    // each transport's placeholder ahead of its devices, these by name.
    QList<DeviceInfo*> List(const Result& found,
        const std::function<bool(const kiv::cam::IInterface&)>& offers, QObject* parent) const;

private:
    std::shared_ptr<std::atomic<bool>> m_enableEmulators
        = std::make_shared<std::atomic<bool>>(false);
    std::stop_source m_stop; // of the running task
};
