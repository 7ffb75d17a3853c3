// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivui/kivui_export.h>

// Registers the QML module "kivui" 1.0 (DialogButtonBoxHelper). Call once on the GUI thread
// before loading QML that imports it.
KIVUI_EXPORT void kivuiInitPlugin();
