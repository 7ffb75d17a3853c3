#include "DeviceSearch.h"

#include <kivcam/CInterfaces.h>
#include <kivcamui/device/DeviceInfo.h>
#include <kivcamui/plugin/Conversions.h>
#include <kivcamui/plugin/MadeOnPool.h>
#include <kivcamui/plugin/ReleasedOnPool.h>

#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <iterator>
#include <tuple>
#include <vector>

using kiv::cam::CInterfaces;
using kiv::cam::CParameters;
using kiv::cam::SDeviceInfo;
using kiv::cam::ui::MadeOnPool;
using kiv::cam::ui::toQString;

// A task still running is stopped: its transports' scans wake up and it ends soon after, with
// its own share of the switch. Nobody waits for it, and its result goes nowhere.
DeviceSearch::~DeviceSearch()
{
    m_stop.request_stop();
}

QFuture<DeviceSearch::Found> DeviceSearch::Start(kiv::TArray<kiv::CString> names, QThread* thread)
{
    m_stop = std::stop_source();
    // The emulator switch is set on the pool thread right before the search, which uses the
    // value set on its own thread: another model searching at the same time cannot change it.
    return QtConcurrent::run(QThreadPool::globalInstance(),
        [enableEmulators = m_enableEmulators, names = std::move(names), stop = m_stop.get_token(),
            thread]() mutable {
            CInterfaces* catalogue = kiv::cam::interfaces();
            catalogue->setEnableEmulators(*enableEmulators);
            kiv::TArray<SDeviceInfo> found;
            if (names.empty())
                catalogue->findDevices(found, CInterfaces::FIND_PRESENT, stop);
            else
                catalogue->findDevicesOf(found, std::move(names), CInterfaces::FIND_PRESENT, stop);
            if (stop.stop_requested())
                return std::make_shared<MadeOnPool<DeviceInfo>>();
            return std::make_shared<MadeOnPool<DeviceInfo>>(MakeSorted(std::move(found)), thread);
        });
}

QList<DeviceInfo*> DeviceSearch::MakeSorted(kiv::TArray<SDeviceInfo> found)
{
    struct SKeyed {
        QString interfaceName;
        QString deviceName;
        DeviceInfo* device;
    };
    std::vector<SKeyed> keyed;
    try {
        const std::shared_ptr<kiv::TArray<SDeviceInfo>> records
            = kiv::cam::ui::ShareReleasedOnPool(std::move(found));
        keyed.reserve(static_cast<std::size_t>(records->count()));
        for (SDeviceInfo& record : *records) {
            keyed.push_back({toQString(record.interfaceName), toQString(record.deviceName),
                new DeviceInfo(
                    std::shared_ptr<SDeviceInfo>(records, &record), CParameters::EDIT_CUSTOM)});
        }
    } catch (...) {
        // Without the memory for them, the devices are not listed.
        for (const SKeyed& device : keyed)
            delete device.device;
        return {};
    }
    // Compared as the views show them: found devices by transport name, then by name.
    std::sort(keyed.begin(), keyed.end(), [](const SKeyed& a, const SKeyed& b) {
        return std::tie(a.interfaceName, a.deviceName) < std::tie(b.interfaceName, b.deviceName);
    });
    QList<DeviceInfo*> devices;
    devices.reserve(static_cast<qsizetype>(keyed.size()));
    for (const SKeyed& device : keyed)
        devices.append(device.device);
    return devices;
}

QList<DeviceInfo*> DeviceSearch::Take(const QFuture<Found>& future)
{
    return future.resultCount() > 0 ? future.result()->Take() : QList<DeviceInfo*>();
}

QList<DeviceInfo*> DeviceSearch::List(
    QList<DeviceInfo*> found, const std::function<bool(const kiv::cam::IInterface&)>& offers) const
{
    QList<DeviceInfo*> placeholders;
    CInterfaces* catalogue = kiv::cam::interfaces();
    for (int i = 0; i < catalogue->interfaceCount(); ++i) {
        const auto transport = catalogue->interfaceAt(i);
        if (transport->isEmulator && !enableEmulators())
            continue;
        if (offers(*transport))
            placeholders.append(
                new DeviceInfo(transport->defaultDevice, CParameters::EDIT_CUSTOM_SELECT));
    }
    std::sort(
        placeholders.begin(), placeholders.end(), [](const DeviceInfo* a, const DeviceInfo* b) {
            return a->interfaceName() < b->interfaceName();
        });

    // Each placeholder goes ahead of the found devices of its transport.
    QList<DeviceInfo*> devices;
    devices.reserve(found.size() + placeholders.size());
    auto next = found.cbegin();
    for (DeviceInfo* placeholder : std::as_const(placeholders)) {
        const auto at = std::lower_bound(next, found.cend(), placeholder->interfaceName(),
            [](const DeviceInfo* device, const QString& interfaceName) {
                return device->interfaceName() < interfaceName;
            });
        std::copy(next, at, std::back_inserter(devices));
        devices.append(placeholder);
        next = at;
    }
    std::copy(next, found.cend(), std::back_inserter(devices));
    return devices;
}
