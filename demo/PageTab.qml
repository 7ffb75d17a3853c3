// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// A page's tab in the toolbar: a glyph and the page's name, underlined while the page shows.
// Space, Enter and Return show its page.
TabButton {
    id: tab

    property string glyph: ""

    width: implicitWidth
    implicitHeight: 40
    leftPadding: 12
    rightPadding: 12
    focusPolicy: Qt.StrongFocus

    Keys.onReturnPressed: tab.checked = true
    Keys.onEnterPressed: tab.checked = true

    contentItem: Row {
        spacing: 8
        Text {
            anchors.verticalCenter: parent.verticalCenter
            font.family: fontAwesome.name // qmllint disable unqualified
            font.pixelSize: 15
            color: tab.checked ? "#E0822B" : "#A8A8B4"
            text: tab.glyph
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            color: tab.checked ? "#E8E8EE" : "#A8A8B4"
            font.bold: tab.checked
            text: tab.text
        }
    }
    background: Rectangle {
        color: tab.hovered ? "#34343D" : "transparent"
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 3
            visible: tab.checked
            color: "#E0822B"
        }
    }
    FocusFrame {
        shown: tab.visualFocus
    }
}
