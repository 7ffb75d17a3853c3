// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "InitPlugin.h"

#include "DialogButtonBoxHelper.h"

#include <QtQml/qqml.h>

void kivuiInitPlugin()
{
    qmlRegisterUncreatableType<DialogButtonBoxHelper>("kivui", 1, 0, "DialogButtonBoxHelper",
        "DialogButtonBoxHelper is only available as an attached property");
}
