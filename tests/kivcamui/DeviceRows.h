// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/device/DeviceInfo.h>
#include <kivui/ObjectListModel.h>

#include <QStringList>

// A device list as "transport/device" lines; a placeholder's device reads "Custom".
inline QStringList deviceRows(const ObjectListModel& list)
{
    QStringList rows;
    for (int i = 0; i < list.size(); ++i) {
        const auto* device = qobject_cast<const DeviceInfo*>(list.at(i));
        rows << (device ? device->interfaceName() + "/" + device->deviceName() : "not a device");
    }
    return rows;
}
