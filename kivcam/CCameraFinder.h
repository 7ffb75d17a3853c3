// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/kivcam_export.h>

#include <cstdint>
#include <stop_token>

namespace kiv::cam {

// Searches all transports for connected cameras and keeps what the last search found.
class KIVCAM_EXPORT CCameraFinder {
public:
    enum EFindFlags : unsigned {
        // Cameras reached through their control device; a camera whose video device was not
        // found is listed too. The default when neither this nor FIND_COMPLETE is given.
        FIND_COMM = 1,
        // Complete cameras only: both the control and the video device were found.
        FIND_COMPLETE = 4,
        // Emulated cameras only (emulators must be enabled as well).
        FIND_EMULATORS_ONLY = 8,
    };

    // Replaces the results with the cameras found now. Blocks for as long as the slowest
    // transport takes; call it off the GUI thread. False when a transport's scan failed (the
    // cameras of the others are kept), and when the search itself failed (too little memory).
    bool Find(unsigned flags);
    // The same, keeping cameras whose camera type name is in cameraNames.
    bool Find(TArray<CString> cameraNames, unsigned flags);
    // The same searches, stopped early when stop is requested: every transport's scan is handed
    // stop and wakes on it (see IInterface), so the search ends soon after, with false and
    // incomplete results. A search whose owner is gone, or that a newer one replaces, is stopped
    // this way instead of running to its end for nobody.
    bool Find(unsigned flags, std::stop_token stop);
    bool Find(TArray<CString> cameraNames, unsigned flags, std::stop_token stop);

    std::uint64_t size() const { return static_cast<std::uint64_t>(m_cameras.count()); }
    // The index-th camera found; throws kiv::COutOfRangeException beyond size().
    SCameraInfo at(std::uint64_t index) const;
    // The cameras found, in their order, handed over without a copy; the finder is left empty.
    TArray<SCameraInfo> Take();

    // Whether following searches, by any finder, include emulated cameras (off at start).
    //
    // The switch is process-wide, and also remembered for the thread that sets it, for that
    // thread's next search: a search uses the value its own thread set last, if that thread has
    // set one since its previous search, and the process-wide value otherwise. So
    //  - a task that sets the switch right before it searches, as a thread-pool task does, gets
    //    its own value even while other tasks set another one and search at the same time;
    //  - code that sets the switch on one thread and searches on another gets the process-wide
    //    value, the last one set by anybody;
    //  - a pool thread keeps nothing of one task's switch for the next task, because the value
    //    serves one search only (set it right before each search that needs it).
    static void setEnableEmulators(bool enable);
    // The value the calling thread's next search uses.
    static bool enableEmulators();

private:
    TArray<SCameraInfo> m_cameras;
};

} // namespace kiv::cam
