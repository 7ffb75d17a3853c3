// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/kiv_export.h>

#include <filesystem>

namespace kiv {

// Scope guard: remembers the process's current working folder and goes back to it when it is
// destroyed, whatever the code in between changed.
class KIV_EXPORT CCWDFixer {
public:
    CCWDFixer();
    ~CCWDFixer();
    CCWDFixer(const CCWDFixer&) = delete;
    CCWDFixer& operator=(const CCWDFixer&) = delete;

private:
    std::filesystem::path m_folder;
};

} // namespace kiv
