#include "DeviceSearch.h"

#include <kivcam/CInterfaces.h>
#include <kivcamui/device/DeviceInfo.h>

#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using kiv::cam::CInterfaces;
using kiv::cam::CParameters;

namespace {

// Compared as the views show them: by transport name, then the placeholder, whose name reads
// "Custom", ahead of the found devices, which follow by name.
bool listedBefore(const DeviceInfo* a, const DeviceInfo* b)
{
    const QString aInterface = a->interfaceName();
    const QString bInterface = b->interfaceName();
    if (aInterface != bInterface)
        return aInterface < bInterface;
    if (a->isFound() != b->isFound())
        return !a->isFound();
    return a->deviceName() < b->deviceName();
}

} // namespace

// A task still running is stopped: its transports' scans wake up and it ends soon after, with
// its own share of the switch. Nobody waits for it, and its result goes nowhere.
DeviceSearch::~DeviceSearch()
{
    m_stop.request_stop();
}

QFuture<DeviceSearch::Result> DeviceSearch::Start(kiv::TArray<kiv::CString> names)
{
    m_stop = std::stop_source();
    // The emulator switch is set on the pool thread right before the search, which uses the
    // value set on its own thread: another model searching at the same time cannot change it.
    return QtConcurrent::run(QThreadPool::globalInstance(),
        [enableEmulators = m_enableEmulators, names = std::move(names),
            stop = m_stop.get_token()]() mutable {
            CInterfaces* catalogue = kiv::cam::interfaces();
            catalogue->setEnableEmulators(*enableEmulators);
            Result found;
            if (names.empty())
                catalogue->findDevices(found, CInterfaces::FIND_PRESENT, stop);
            else
                catalogue->findDevicesOf(found, std::move(names), CInterfaces::FIND_PRESENT, stop);
            return found;
        });
}

DeviceSearch::Result DeviceSearch::Found(const QFuture<Result>& future)
{
    return future.resultCount() > 0 ? future.result() : Result();
}

QList<DeviceInfo*> DeviceSearch::List(const Result& found,
    const std::function<bool(const kiv::cam::IInterface&)>& offers, QObject* parent) const
{
    QList<DeviceInfo*> devices;
    CInterfaces* catalogue = kiv::cam::interfaces();
    for (int i = 0; i < catalogue->interfaceCount(); ++i) {
        const auto transport = catalogue->interfaceAt(i);
        if (transport->isEmulator && !enableEmulators())
            continue;
        if (offers(*transport))
            devices.append(
                new DeviceInfo(transport->defaultDevice, CParameters::EDIT_CUSTOM_SELECT));
    }
    for (const kiv::cam::SDeviceInfo& record : found)
        devices.append(new DeviceInfo(record, CParameters::EDIT_CUSTOM));
    for (DeviceInfo* device : std::as_const(devices))
        device->setParent(parent);
    std::sort(devices.begin(), devices.end(), listedBefore);
    return devices;
}
