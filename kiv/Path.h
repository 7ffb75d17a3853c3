// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CStringW.h>
#include <kiv/kiv_export.h>

namespace kiv::path {

// The folder part of a path: everything before its last separator ("/a/b" for "/a/b/c.so",
// "/" for "/c.so", empty for a bare file name).
KIV_EXPORT CStringW GetDirectory(const CStringW& path);

// Whether the whole text matches a wildcard pattern: "*" stands for any run of characters,
// "?" for one character, letter case is ignored. An empty pattern matches only the empty text.
KIV_EXPORT bool WildcardMatch(const CStringW& pattern, const CStringW& text);

} // namespace kiv::path
