// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtQuick.Controls

// Marks the camera that is connected: a green dot and "connected".
Rectangle {
    implicitWidth: row.implicitWidth + 12
    implicitHeight: 22
    radius: 11
    color: "#2D4A33"

    Row {
        id: row
        anchors.centerIn: parent
        spacing: 5
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 8
            height: 8
            radius: 4
            color: "#5FCB6A"
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: "connected"
            font.pixelSize: 12
            color: "#C8F0CD"
        }
    }
}
