// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtQuick.Controls

// A push button of the demo's pages: Space, Enter and Return press it, and it shows the demo's
// focus mark.
Button {
    id: button

    Keys.onReturnPressed: button.clicked()
    Keys.onEnterPressed: button.clicked()

    FocusFrame {
        shown: button.visualFocus
    }
}
