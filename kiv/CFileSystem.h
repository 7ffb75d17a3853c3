// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/IFileSystem.h>
#include <kiv/kiv_export.h>

namespace kiv {

// The process's real file system.
class KIV_EXPORT CFileSystem : public IFileSystem {
public:
    CDirectoryListing listDirectory(const CStringW& folder, const CStringW& pattern) override;
};

KIV_EXPORT CFileSystem* fileSystem();

} // namespace kiv
