// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/IController.h>
#include <kivcam/IGenICamListener.h>
#include <kivcam/SGenICamFeature.h>
#include <kivcam/kivcam_export.h>

#include <cstdint>
#include <functional>

namespace kiv::cam {

// The outcome of one request to a GenICam controller.
struct KIVCAM_EXPORT SGenICamResult {
    bool ok = false;
    // Why it failed, naming the feature, the value and the rule, for people; empty on success.
    CString message;
};

// A camera's sensor window, in sensor pixels.
struct KIVCAM_EXPORT SSensorWindow {
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
};

// The controller of GenICam cameras (GigE Vision, USB3 Vision, the emulated GenICam camera).
// Controller UI plugins recognise it by this type (dynamic_cast from IController).
//
// One worker thread of the controller owns the camera and runs every request to it in turn;
// nothing here waits for the camera but connect, which is called off the GUI thread anyway.
// Requests made while not connected fail at once with a message. Each request's done, when
// given, is called on the worker thread once the request has been carried out and the rows it
// changed have been announced to the listeners.
class KIVCAM_EXPORT IGenICamController : public IController {
public:
    using Done = std::function<void(const SGenICamResult&)>;

    ~IGenICamController() override;

    // The tree as last read; empty while not connected.
    virtual TArray<SGenICamFeature> features() const = 0;
    // The first row of that name; false when there is none.
    virtual bool feature(const CString& name, SGenICamFeature& out) const = 0;

    // Writes a feature from its text form (see SGenICamFeature::value; "true"/"false" or "1"/"0"
    // for booleans). The value is checked first (access now, range, increment, entry available
    // now), then written; afterwards the feature and what the write invalidated are read again.
    virtual void setFeature(const CString& name, const CString& value, Done done = {}) = 0;
    // Executes a command feature, then reads again what it invalidated.
    virtual void execute(const CString& name, Done done = {}) = 0;
    // Reads the whole tree again, values, access and limits.
    virtual void refresh(Done done = {}) = 0;
    // Sets OffsetX, OffsetY, Width and Height in the order the camera's coupled limits allow,
    // each snapped down to its own increment and clamped to its limits; acquisition is stopped
    // around the change and started again if it ran. The window applied is in the tree after.
    virtual void setSensorWindow(const SSensorWindow& window, Done done = {}) = 0;
    // The sensor window as last read.
    virtual SSensorWindow sensorWindow() const = 0;

    // Acquisition runs from connect on; these stop and start it again, and so do the camera's
    // commands AcquisitionStop and AcquisitionStart through execute(), stream included.
    virtual void startAcquisition(Done done = {}) = 0;
    virtual void stopAcquisition(Done done = {}) = 0;
    virtual bool isAcquiring() const = 0;

    // Whether the controller still holds the camera; false once it was lost (see
    // IGenICamListener::connectionLost), with errorMessage() saying why.
    virtual bool hasControl() const = 0;

    // Listeners come and go from any thread; once unsubscribe has returned no call of the
    // listener is running or will be made (but the caller's own, when called from within it).
    virtual void subscribe(IGenICamListener* listener) = 0;
    virtual void unsubscribe(IGenICamListener* listener) = 0;
};

} // namespace kiv::cam
