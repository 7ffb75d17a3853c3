// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// A loadable module for tst_platform that calls a function no library defines: loading it with
// all symbols resolved at once must fail.
extern "C" int kivTestFunctionNobodyDefines();

extern "C" __attribute__((visibility("default"))) int kivTestUnresolved()
{
    return kivTestFunctionNobodyDefines();
}
