// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/CLostReport.h>
#include <kivcam/SDeviceInfo.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// An open connection to one transport device, made by IInterface::createDevice. Its lost
// handler (CLostReport) hears when the open device goes away (unplugged, its port hung up, its
// peer silent); a device that cannot tell never calls it.
class KIVCAM_EXPORT IDevice : public CLostReport {
public:
    virtual ~IDevice();

    // Opens the device the record describes, with the record's parameters. With exclusive the
    // device is not shared with other users. Gives false when the device cannot be opened.
    virtual bool open(SDeviceInfo info, bool exclusive) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    // The record the device was opened with.
    virtual const SDeviceInfo& info() const = 0;
    // Why the last open failed, in full, for people; empty when it succeeded or says nothing.
    virtual CString errorMessage() const;
};

} // namespace kiv::cam
