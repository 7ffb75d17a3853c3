// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick

// The demo's keyboard focus mark: a frame around its parent while shown, which its owner binds
// to the parent's focus from the keyboard (a control's visualFocus).
Rectangle {
    required property bool shown

    anchors.fill: parent
    visible: shown
    color: "transparent"
    border.width: 2
    border.color: "#18AAE2"
    radius: 2
}
