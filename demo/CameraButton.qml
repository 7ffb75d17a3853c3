// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import "qrc:/kivcamui/controls" as KivControls

// The toolbar's camera button. It opens the library's camera finder popup under itself, over the
// camera finder and the configuration folder of the host's StandaloneModel: the last camera and
// the cameras found, each connected with one click. Keyboard focus goes into the popup as it
// opens, and comes back to the button when it closes.
ToolAction {
    id: button

    required property var standalone
    readonly property alias popup: popup

    // The user picked a camera that can connect.
    signal connectRequested(var camera)

    glyph: "\uf030"
    caret: true
    checked: popup.visible
    ToolTip.visible: hovered && !popup.visible
    ToolTip.delay: 500
    ToolTip.text: "Connect a camera"
    onClicked: popup.visible ? popup.close() : popup.open()

    KivControls.CameraFinderPopup {
        id: popup
        y: button.height
        // Kept within the window: in a small window its cameras scroll.
        height: Math.min(naturalHeight,
                         button.Window.height - button.mapToItem(null, 0, button.height).y - 8)
        cameraFinder: button.standalone.cameraFinder
        configDir: button.standalone.configDir
        // A press on the button itself closes the popup by its click.
        closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutsideParent
        onConnect: camera => button.connectRequested(camera)
        onClosed: {
            if (!popup.cantConnectDialog.visible)
                button.forceActiveFocus(Qt.PopupFocusReason)
        }
    }
    Connections {
        target: popup.cantConnectDialog
        function onClosed() {
            button.forceActiveFocus(Qt.PopupFocusReason)
        }
    }
}
