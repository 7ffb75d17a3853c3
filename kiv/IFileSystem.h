// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CStringW.h>
#include <kiv/TArray.h>
#include <kiv/kiv_export.h>

namespace kiv {

class KIV_EXPORT IFileSystem {
public:
    struct SDirectoryEntry {
        CStringW name; // the file's name, without folder
        CStringW path; // the full path by which the file is opened or loaded
    };
    using CDirectoryListing = TArray<SDirectoryEntry>;

    virtual ~IFileSystem();

    // The files (not folders) directly in folder whose names match pattern (see
    // path::WildcardMatch), sorted by name regardless of letter case. An empty folder name, or a
    // folder that cannot be read, lists nothing.
    virtual CDirectoryListing listDirectory(const CStringW& folder, const CStringW& pattern) = 0;
};

} // namespace kiv
