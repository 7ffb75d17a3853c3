// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// A library that matches the plugins' file names but has no entry; the scan leaves it loaded.
extern "C" __attribute__((visibility("default"))) int kivTestSomethingElse()
{
    return 1;
}
