// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <atomic>
#include <cstdint>

namespace kiv::cam {

// Whether searches include emulators: a value shared by all threads, plus the value the calling
// thread set last, which serves that thread's next search only. So a task that sets the switch
// right before it searches gets its own value whatever other threads set meanwhile, and a thread
// that has set nothing since its last search gets the shared value, the last one set by anybody.
//
// A thread keeps one value per Owner type, so switches of different owners set one after the
// other on one thread both keep theirs; a switch's id tells it from the other switches of its
// Owner.
template <typename Owner> class TEmulatorSwitch {
public:
    TEmulatorSwitch() : m_id(++s_count) { }

    void set(bool enable)
    {
        m_shared = enable;
        s_thread = {m_id, enable};
    }
    // The value the calling thread's next search uses.
    bool get() const { return s_thread.id == m_id ? s_thread.enable : m_shared.load(); }
    // The value for a search starting now on this thread, which uses up the thread's own value.
    bool take()
    {
        const bool enable = get();
        if (s_thread.id == m_id)
            s_thread = {};
        return enable;
    }

private:
    // The value set on this thread since its last search, and the switch it was set on (none: 0).
    struct SThreadValue {
        std::uint64_t id = 0;
        bool enable = false;
    };
    static inline std::atomic<std::uint64_t> s_count{0};
    static inline thread_local SThreadValue s_thread;

    std::atomic<bool> m_shared{false};
    const std::uint64_t m_id;
};

} // namespace kiv::cam
