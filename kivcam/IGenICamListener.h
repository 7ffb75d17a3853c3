// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/SGenICamFeature.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// Hears a GenICam controller (IGenICamController) on the controller's worker thread. Calls must
// return quickly and must not wait for the controller: hand what they carry on to the thread that
// shows it.
class KIVCAM_EXPORT IGenICamListener {
public:
    virtual ~IGenICamListener();

    // The tree was replaced as a whole: read IGenICamController::features() again. Comes after a
    // connect (the camera's tree) and a disconnect (an empty tree).
    virtual void treeChanged() = 0;
    // These rows differ from what they were: after a write (the feature written and what the
    // write invalidated), a command, a sensor window or a refresh.
    virtual void featuresChanged(const TArray<SGenICamFeature>& rows) = 0;
    // The camera was lost while connected (control taken away, no answer, the stream died);
    // message says what happened, for people. The controller stays connected until disconnected.
    virtual void connectionLost(const CString& message) = 0;
};

} // namespace kiv::cam
