// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CCWDFixer.h"

#include <system_error>

namespace kiv {

CCWDFixer::CCWDFixer()
{
    std::error_code error;
    m_folder = std::filesystem::current_path(error);
}

CCWDFixer::~CCWDFixer()
{
    // A folder that vanished in the meantime cannot be restored; that is no reason to throw.
    std::error_code error;
    if (!m_folder.empty())
        std::filesystem::current_path(m_folder, error);
}

} // namespace kiv
