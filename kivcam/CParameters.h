// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/CVariant.h>
#include <kiv/TArray.h>
#include <kivcam/CNameIndex.h>
#include <kivcam/kivcam_export.h>

#include <cstdint>

namespace kiv::cam {

// The named, typed settings of a device (a port's baud rate, a grabber's control channel...).
class KIVCAM_EXPORT CParameters {
public:
    // The lowest edit level of a viewer at which an entry may be changed; a viewer at a higher
    // level may change more entries.
    enum EEditLevel : std::int32_t {
        EDIT_ALWAYS = 0,
        EDIT_CUSTOM = 1,
        EDIT_CUSTOM_SELECT = 2,
        EDIT_INTERNAL = 3,
        EDIT_NEVER = 4,
    };

    class KIVCAM_EXPORT CEntry {
    public:
        CEntry() = default;
        CEntry(CString name, CString displayName, CString description, EEditLevel editLevel,
            CVariant value);

        const CVariant& value() const { return m_value; }
        // Converts value into the entry's own type and stores it; a value that does not fit
        // (text that does not parse, a number out of range, an unknown enumeration name) is
        // refused. Gives the value the entry holds afterwards.
        CVariant setValue(const CVariant& value);

        // The entry's key in its collection, which finds entries by the name they were added
        // under: an entry renamed in place is no longer found by either name.
        CString name;
        CString displayName;
        CString description;
        EEditLevel editLevel = EDIT_ALWAYS;

    private:
        CVariant m_value;
    };

    unsigned count() const { return static_cast<unsigned>(m_entries.count()); }
    // An index beyond count() or an unknown name throws kiv::COutOfRangeException.
    CEntry& operator[](unsigned index);
    const CEntry& operator[](unsigned index) const;
    CEntry& operator[](const CString& name);
    const CEntry& operator[](const CString& name) const;
    bool Exists(const CString& name) const;
    // The value of the entry of that name as text; empty when there is none.
    CString TextOf(const CString& name) const;

    // Appends an entry, or replaces the entry of the same name in its place. Takes constant time
    // (amortised), so a collection of n entries is built in time proportional to n.
    CEntry& Add(CEntry entry);

private:
    // From this many entries on, a collection finds its entries by name through a hash index;
    // below, a look through the few names costs less than the index, and a copy of a small
    // collection (a device record's) copies no index.
    static constexpr int indexedFrom = 16;

    int IndexOf(const CString& name) const;

    TArray<CEntry> m_entries;
    TArray<CString> m_keys; // the name each entry was added under, in the entries' order
    CNameIndex m_index; // the positions of the keys, once there are indexedFrom entries
};

} // namespace kiv::cam
