#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/kivcam_export.h>

#include <cstdint>

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
    // cameras of the others are kept).
    bool Find(unsigned flags);
    // The same, keeping cameras whose camera type name is in cameraNames.
    bool Find(TArray<CString> cameraNames, unsigned flags);

    std::uint64_t size() const { return static_cast<std::uint64_t>(m_cameras.count()); }
    // The index-th camera found; throws kiv::COutOfRangeException beyond size().
    SCameraInfo at(std::uint64_t index) const;

    // Whether following searches, by any finder, include emulated cameras (off at start).
    static void setEnableEmulators(bool enable);
    static bool enableEmulators();

private:
    TArray<SCameraInfo> m_cameras;
};

} // namespace kiv::cam
