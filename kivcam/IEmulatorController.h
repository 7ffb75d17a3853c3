// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/IController.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// The controllers of the emulated world. Controller UI plugins recognise an emulated controller
// by this type (dynamic_cast from IController) and reach through it what only the emulator
// offers. Its frame source is always there.
class KIVCAM_EXPORT IEmulatorController : public IController {
public:
    ~IEmulatorController() override;

    // Runs a non-uniformity correction (NUC) on the connected camera: the fixed pattern that its
    // sensor lays over every image is measured and taken out of the following images, until it
    // slowly builds up again. False when not connected, or when the camera has no NUC
    // (SCameraInfo::hasNucMask). Quick; any thread.
    virtual bool runNuc() = 0;
};

} // namespace kiv::cam
