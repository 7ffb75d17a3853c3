// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/kivcam_export.h>

#include <functional>
#include <mutex>

namespace kiv::cam {

// Tells one handler that a device or a controller lost its camera: the base of IDevice and
// IController. The handler is called with the reason, for people, on whichever thread found the
// loss, and does not call the object that reports. Replacing the handler (an empty one ends the
// calls) waits for a call of the previous one to end; from then on only the new one is called. A
// handler may replace itself from within its call.
class KIVCAM_EXPORT CLostReport {
public:
    using Handler = std::function<void(const CString& reason)>;

    void setLostHandler(Handler handler);

protected:
    CLostReport() = default;
    ~CLostReport() = default;
    // For the device or controller itself: tells the handler.
    void reportLost(const CString& reason) const;

private:
    mutable std::recursive_mutex m_mutex;
    Handler m_handler;
};

} // namespace kiv::cam
