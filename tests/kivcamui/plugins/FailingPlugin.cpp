// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// A controller UI plugin whose entry fails; the scan unloads it. It holds nothing that would
// keep it loaded.
extern "C" __attribute__((visibility("default"))) bool kivInitPlugin()
{
    return false;
}
