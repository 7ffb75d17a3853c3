// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/kivcam_export.h>

#include <cstdint>

namespace kiv::cam {

// One row of a GenICam camera's feature tree, as it was when last read: a category or a feature
// with what a user interface needs to show and edit it. The rows of a tree are kept in one array,
// depth first: a category is followed by its features, each row names its category's row.
// A feature listed by two categories has a row under each.
struct KIVCAM_EXPORT SGenICamFeature {
    enum EType { CATEGORY, INTEGER, FLOAT, ENUMERATION, BOOLEAN, COMMAND, STRING, OTHER };
    // Who the feature is meant for, from the most common to the never shown.
    enum EVisibility { BEGINNER, EXPERT, GURU, INVISIBLE };
    // What may be done with the feature now: its access mode together with its availability and
    // lock, which may change with other features' values.
    enum EAccess { NOT_AVAILABLE, READ_ONLY, WRITE_ONLY, READ_WRITE };

    int row = 0; // this row's place in the tree
    int parent = -1; // the row of its category; -1 under the root
    int depth = 0; // 0 for the root's children
    CString name;
    CString displayName;
    CString description;
    EType type = OTHER;
    EVisibility visibility = BEGINNER;
    EAccess access = NOT_AVAILABLE;
    // Why the feature cannot be written now, for people; empty when it can.
    CString accessReason;
    // The value as text: decimal for integers, the entry's name for enumerations, "true" or
    // "false", the text of a string; empty for categories, commands and unreadable features.
    CString value;
    std::int64_t intMin = 0;
    std::int64_t intMax = 0;
    std::int64_t intInc = 1;
    double floatMin = 0;
    double floatMax = 0;
    double floatInc = 0; // 0: any value in the range
    CString unit;
    // The entries of an enumeration that can be chosen now, and their display names.
    TArray<CString> entries;
    TArray<CString> entryDisplayNames;
    // Why the value could not be read; empty when it was.
    CString error;

    bool isWritable() const { return access == WRITE_ONLY || access == READ_WRITE; }
    bool isReadable() const { return access == READ_ONLY || access == READ_WRITE; }
};

} // namespace kiv::cam
