// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// A toolbar button of the host: an icon-font glyph, then its text, and a caret for a button that
// opens something under it. With glyphOnly, the text is its tooltip instead. Space, Enter and
// Return press it.
ToolButton {
    id: action

    property string glyph: ""
    property bool caret: false
    property bool glyphOnly: false

    implicitHeight: 40
    leftPadding: 10
    rightPadding: 10
    focusPolicy: Qt.StrongFocus
    ToolTip.visible: glyphOnly && text !== "" && (hovered || visualFocus)
    ToolTip.delay: 500
    ToolTip.text: text

    Keys.onReturnPressed: action.clicked()
    Keys.onEnterPressed: action.clicked()

    contentItem: Row {
        spacing: 8
        opacity: action.enabled ? 1 : 0.4

        Text {
            anchors.verticalCenter: parent.verticalCenter
            font.family: fontAwesome.name // qmllint disable unqualified
            font.pixelSize: 18
            color: "#E8E8EE"
            text: action.glyph
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            visible: action.text !== "" && !action.glyphOnly
            text: action.text
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            visible: action.caret
            font.family: fontAwesome.name // qmllint disable unqualified
            font.pixelSize: 12
            color: "#A8A8B4"
            text: "\uf0d7"
        }
    }
    FocusFrame {
        shown: action.visualFocus
    }
}
