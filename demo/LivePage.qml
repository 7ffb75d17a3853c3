// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// The connected camera's controller panel, as its controller UI plugin supplies it: the host
// loads StandaloneModel's controllerQml and gives the loaded item the model's cameraModel. Without
// a connected camera, why the last connect failed or the camera was lost, and how to get one.
Rectangle {
    id: page

    required property var standalone
    readonly property alias panel: panel

    color: "#26262C"
    radius: 4

    Loader {
        id: panel
        anchors.fill: parent
        anchors.margins: 1

        Connections {
            target: page.standalone
            function onConnectedChanged() {
                if (page.standalone.connected)
                    panel.setSource(page.standalone.controllerQml,
                                    { "cameraModel": page.standalone.cameraModel })
                else
                    panel.source = ""
            }
        }
    }

    Column {
        anchors.centerIn: parent
        visible: panel.status !== Loader.Ready
        spacing: 10

        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            font.family: fontAwesome.name // qmllint disable unqualified
            font.pixelSize: 64
            color: "#4A4A55"
            text: "\uf030"
        }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            font.pixelSize: 18
            font.bold: true
            text: page.standalone.connecting ? "Connecting..."
                  : page.standalone.connected ? "No controller panel for "
                                                + page.standalone.controllerName
                  : "No camera connected"
        }
        // Why the last connect failed or the camera was lost, in full.
        Label {
            objectName: "reason"
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(implicitWidth, page.width - 40)
            visible: !page.standalone.connecting && !page.standalone.connected
                     && page.standalone.errorMessage !== ""
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            color: "#FF6B5E"
            text: page.standalone.errorMessage
        }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: !page.standalone.connecting && !page.standalone.connected
            color: "#A8A8B4"
            horizontalAlignment: Text.AlignHCenter
            text: "Pick a camera with the camera button in the toolbar,\n"
                  + "or look at the cameras' settings first with \u201cFind cameras...\u201d."
        }
    }
}
