// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/kivcamui_export.h>

// The library's one entry point. The host calls it once, on the GUI thread, before it loads QML
// that imports "kivcamui" 1.0: it registers the library's resources and QML types, then the UI
// library's module "kivui" 1.0.
KIVCAMUI_EXPORT void kivcamuiInitPlugin();
