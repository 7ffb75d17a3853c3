pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The toolbar's status area: which camera is connecting, connected or disconnecting, or which
// one failed to connect.
RowLayout {
    id: status

    required property var standalone
    // The camera being connected or connected, as the host names it.
    property string cameraName: ""
    // The last connect ended without a connection.
    property bool failed: false

    readonly property string typeName: standalone.controllerIndex >= 0
                                       ? standalone.controllerDisplayNames[standalone.controllerIndex]
                                       : ""
    readonly property string phase: standalone.disconnecting ? "disconnecting"
                                    : standalone.connecting ? "connecting"
                                    : standalone.connected ? "connected"
                                    : failed ? "failed"
                                    : "idle"

    spacing: 8

    Rectangle {
        id: light
        implicitWidth: 10
        implicitHeight: 10
        radius: 5
        color: ({ connecting: "#E0A030", disconnecting: "#E0A030", connected: "#5FCB6A",
                  failed: "#FF6B5E", idle: "#6C6C78" })[status.phase]

        SequentialAnimation on opacity {
            running: status.phase === "connecting" || status.phase === "disconnecting"
            loops: Animation.Infinite
            onRunningChanged: if (!running) light.opacity = 1
            NumberAnimation { to: 0.25; duration: 400 }
            NumberAnimation { to: 1; duration: 400 }
        }
    }
    Label {
        Layout.fillWidth: true
        elide: Text.ElideRight
        textFormat: Text.PlainText
        color: status.phase === "failed" ? "#FF6B5E" : "#E8E8EE"
        text: ({
            idle: "No camera connected",
            connecting: "Connecting " + status.cameraName + "...",
            connected: status.cameraName
                       + (status.typeName !== "" ? "  \u00b7  " + status.typeName : ""),
            disconnecting: "Disconnecting " + status.cameraName + "...",
            failed: "Could not connect " + status.cameraName,
        })[status.phase]
    }
}
