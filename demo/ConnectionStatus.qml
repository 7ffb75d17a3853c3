// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The toolbar's status area: which camera is connecting, connected or disconnecting, which one
// failed to connect or was lost, and why; a lost camera that is there again can be reconnected.
RowLayout {
    id: status

    required property var standalone
    // The camera being connected or connected, as the host names it.
    property string cameraName: ""
    // The last connect ended without a connection.
    property bool failed: false
    // Why a connect could not even start, in the host's words: said in full, as a failure.
    property string failure: ""
    // The camera was lost while connected.
    property bool lost: false
    // The lost camera is among the cameras found again.
    property bool canReconnect: false
    readonly property alias reconnectButton: reconnect
    // What the status says.
    readonly property alias text: label.text

    signal reconnectRequested()

    readonly property string typeName: standalone.controllerIndex >= 0
                                       ? standalone.controllerDisplayNames[standalone.controllerIndex]
                                       : ""
    readonly property string phase: standalone.disconnecting ? "disconnecting"
                                    : standalone.connecting ? "connecting"
                                    : failure !== "" ? "failed"
                                    : standalone.connected ? "connected"
                                    : lost ? "lost"
                                    : failed ? "failed"
                                    : "idle"
    // Why, in the model's words.
    readonly property string reason: standalone.errorMessage !== ""
                                     ? ": " + standalone.errorMessage : ""

    spacing: 8

    Rectangle {
        id: light
        implicitWidth: 10
        implicitHeight: 10
        radius: 5
        color: ({ connecting: "#E0A030", disconnecting: "#E0A030", connected: "#5FCB6A",
                  failed: "#FF6B5E", lost: "#FF6B5E", idle: "#6C6C78" })[status.phase]

        SequentialAnimation on opacity {
            running: status.phase === "connecting" || status.phase === "disconnecting"
            loops: Animation.Infinite
            onRunningChanged: if (!running) light.opacity = 1
            NumberAnimation { to: 0.25; duration: 400 }
            NumberAnimation { to: 1; duration: 400 }
        }
    }
    Label {
        id: label
        Layout.fillWidth: true
        elide: Text.ElideRight
        textFormat: Text.PlainText
        color: status.phase === "failed" || status.phase === "lost" ? "#FF6B5E" : "#E8E8EE"
        text: ({
            idle: "No camera connected",
            connecting: "Connecting " + status.cameraName + "...",
            connected: status.cameraName
                       + (status.typeName !== "" ? "  \u00b7  " + status.typeName : ""),
            disconnecting: "Disconnecting " + status.cameraName + "...",
            failed: status.failure !== "" ? status.failure
                    : "Could not connect " + status.cameraName + status.reason,
            lost: "Lost " + status.cameraName + status.reason,
        })[status.phase]
        ToolTip.visible: hover.hovered && truncated
        ToolTip.text: text

        HoverHandler { id: hover }
    }
    DemoButton {
        id: reconnect
        objectName: "reconnect"
        visible: status.phase === "lost" && status.canReconnect
        text: "Reconnect"
        onClicked: status.reconnectRequested()
    }
}
