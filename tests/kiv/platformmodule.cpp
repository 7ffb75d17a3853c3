// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// A tiny loadable module for tst_platform: one exported function with a known answer.
extern "C" __attribute__((visibility("default"))) int kivTestAnswer()
{
    return 42;
}
