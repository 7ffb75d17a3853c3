// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "DeviceSearch.h"

#include <kivcam/CInterfaces.h>
#include <kivcamui/device/DeviceInfo.h>
#include <kivcamui/plugin/Conversions.h>
#include <kivcamui/plugin/PoolSearch.h>
#include <kivcamui/plugin/ReleasedOnPool.h>

#include <algorithm>
#include <iterator>
#include <tuple>
#include <vector>

using kiv::cam::CInterfaces;
using kiv::cam::CParameters;
using kiv::cam::SDeviceInfo;
using kiv::cam::ui::PoolSearch;
using kiv::cam::ui::toQString;

DeviceSearch::DeviceSearch() : m_task(std::make_unique<PoolSearch<DeviceInfo>>())
{
}

// A task still running is stopped, and ends with its own share of the switch.
DeviceSearch::~DeviceSearch() = default;

QFuture<DeviceSearch::Found> DeviceSearch::Start(kiv::TArray<kiv::CString> names, QThread* thread)
{
    // The emulator switch is set on the pool thread right before the search, which uses the
    // value set on its own thread: another model searching at the same time cannot change it.
    return m_task->Start(thread,
        [enableEmulators = m_enableEmulators, names = std::move(names)](
            std::stop_token stop) mutable {
            CInterfaces* catalogue = kiv::cam::interfaces();
            catalogue->setEnableEmulators(*enableEmulators);
            kiv::TArray<SDeviceInfo> found;
            if (names.empty())
                catalogue->findDevices(found, CInterfaces::FIND_PRESENT, stop);
            else
                catalogue->findDevicesOf(found, std::move(names), CInterfaces::FIND_PRESENT, stop);
            if (stop.stop_requested())
                return QList<DeviceInfo*>();
            return MakeSorted(std::move(found));
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
