// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtQuick.Controls

// A page of the window: it fills the space there is, and scrolls, with scroll bars, where that is
// less than minimumWidth by minimumHeight.
ScrollView {
    id: view

    property real minimumWidth: 0
    property real minimumHeight: 0

    contentWidth: Math.max(availableWidth, minimumWidth)
    contentHeight: Math.max(availableHeight, minimumHeight)
    // The bars take room beside the page rather than lying over its edge.
    rightPadding: ScrollBar.vertical.visible ? ScrollBar.vertical.width + 2 : 0
    bottomPadding: ScrollBar.horizontal.visible ? ScrollBar.horizontal.height + 2 : 0
    ScrollBar.vertical.policy: minimumHeight > height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
    ScrollBar.horizontal.policy: minimumWidth > width ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
}
