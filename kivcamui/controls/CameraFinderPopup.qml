// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick 2.15
import QtQuick.Controls 2.15
// Layouts is among the popup's declared imports, though the popup lays nothing out with it.
import QtQuick.Layouts 1.15 // qmllint disable unused-imports
import kivcamui 1.0

// The compact camera chooser shown under a toolbar button of the host: the last camera used and
// the cameras found, each connected with one click. The host passes the cameraFinder and
// configDir of its StandaloneModel and connects `connect` to StandaloneModel.connect.
// From the keyboard: the rows take focus as the popup opens, Up and Down (and Tab) move between
// them, and Enter, Return or Space picks the focused one as a click does.
Popup {
    id: popup

    property var cameraFinder: null
    property string configDir: ""
    property string lastCameraFname: configDir + "/lastCamera.xml"
    property var lastCamera: null
    property string errorMessage: ""
    // The "Can't Connect" dialog, for a host that follows it (to move focus after it closes).
    readonly property alias cantConnectDialog: cantConnectDialog

    signal connect(CameraInfo camera)

    width: 192
    padding: 8
    clip: true
    focus: true
    background: Rectangle {
        color: "#2F2F37"
    }
    // Light text on the popup's own dark background, whatever the host's theme.
    palette.windowText: "#E8E8EE"

    // The height the popup asks for, with every row shown. Computed rather than laid out, so
    // that the host can place the popup before it opens. A host that keeps its popups within the
    // window (margins) may get less, and the found cameras then scroll.
    readonly property real naturalHeight: cameraFinder
            ? cameraFinder.cameras.size * 40
              + (cameraFinder.scanning || cameraFinder.cameras.size === 0 ? 28 : 0)
              + refreshButton.height + 8 + 40 + (lastCamera ? 64 : 0)
            : 0
    height: naturalHeight

    // The last camera is read from its file whenever the finder or the file name changes, and
    // after every pick from the list.
    function reloadLastCamera() {
        lastCamera = cameraFinder ? cameraFinder.loadCameraInfo(lastCameraFname) : null
    }
    onCameraFinderChanged: reloadLastCamera()
    onLastCameraFnameChanged: reloadLastCamera()
    Component.onCompleted: reloadLastCamera()

    onAboutToShow: {
        if (!lastCamera && cameraFinder && cameraFinder.cameras.size === 0)
            cameraFinder.scan()
    }
    onOpened: focusRow(0)

    // The rows that take focus, in order: the last camera's, then the found cameras'.
    function rows() {
        const rows = lastCameraRow.visible ? [lastCameraRow] : []
        for (let i = 0; i < cameraList.children.length; ++i) {
            if (cameraList.children[i].objectName === "cameraRow")
                rows.push(cameraList.children[i])
        }
        return rows
    }
    // Gives the row at index (kept within the rows) the focus; with no rows, the Refresh button.
    function focusRow(index) {
        const all = rows()
        if (all.length === 0)
            refreshButton.forceActiveFocus(Qt.TabFocusReason)
        else
            all[Math.max(0, Math.min(index, all.length - 1))].forceActiveFocus(Qt.TabFocusReason)
    }
    // Rows that come with a search, while the popup is open, take the focus from Refresh.
    Connections {
        target: popup.cameraFinder
        function onScanningChanged() {
            if (popup.opened && !popup.cameraFinder.scanning && refreshButton.activeFocus)
                popup.focusRow(0)
        }
    }

    function showCantConnect(message) {
        popup.close()
        popup.errorMessage = message
        cantConnectDialog.open()
    }

    component SectionHeader: Rectangle {
        property alias text: label.text
        height: 24
        color: "#22222B"
        Label {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            leftPadding: 4
        }
    }

    // One camera: the icon cell (with an orange bar when the camera cannot connect), then its
    // identity and how it is reached.
    component CameraRow: Rectangle {
        id: row
        property var camera: null
        property real textWidth: 0
        signal clicked()

        height: 40
        color: mouseArea.containsMouse ? "#48484F" : "transparent"
        activeFocusOnTab: true

        // A row reached from the keyboard scrolls into view.
        onActiveFocusChanged: {
            if (activeFocus && parent === cameraList)
                cameraScroll.show(row)
        }
        Keys.onReturnPressed: row.clicked()
        Keys.onEnterPressed: row.clicked()
        Keys.onSpacePressed: row.clicked()
        Keys.onUpPressed: popup.focusRow(popup.rows().indexOf(row) - 1)
        Keys.onDownPressed: popup.focusRow(popup.rows().indexOf(row) + 1)

        // The row with the keyboard focus: a frame around it.
        Rectangle {
            anchors.fill: parent
            z: 1
            visible: row.activeFocus
            color: "transparent"
            border.width: 2
            border.color: "#18AAE2"
        }

        Item {
            id: iconCell
            width: 40
            height: 40
            Rectangle {
                width: 4
                height: parent.height
                color: "#ff6a00"
                visible: row.camera !== null && !row.camera.canConnect
            }
            Image {
                anchors.centerIn: parent
                width: 32
                height: 32
                fillMode: Image.PreserveAspectFit
                source: row.camera && row.camera.iconExists ? row.camera.icon : ""
                visible: row.camera !== null && row.camera.iconExists
            }
            Text {
                anchors.centerIn: parent
                visible: row.camera !== null && !row.camera.iconExists
                // qmllint disable unqualified
                font.family: fontAwesome.name // the host's icon font, found by its id
                // qmllint enable unqualified
                font.pixelSize: 24
                color: "#E8E8EE"
                text: "\uf030"
            }
        }
        Column {
            anchors.left: iconCell.right
            width: row.textWidth
            Label {
                width: parent.width
                height: 20
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
                text: row.camera ? row.camera.identity : ""
            }
            Label {
                width: parent.width
                height: 20
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
                text: row.camera ? row.camera.userFriendlyInterfaceName : ""
            }
        }
        MouseArea {
            id: mouseArea
            anchors.fill: parent
            hoverEnabled: true
            onClicked: row.clicked()
        }
        ToolTip.visible: mouseArea.containsMouse && row.camera !== null && !row.camera.canConnect
        ToolTip.delay: 500
        ToolTip.text: row.camera ? row.camera.errorSummary : ""
    }

    // In the popup's own content item: ids in a replaced content item would make its creation
    // immediate instead of deferred.
    Column {
        spacing: 0

        SectionHeader {
            visible: popup.lastCamera !== null
            width: popup.width - 16
            text: "Last Camera"
        }
        CameraRow {
            id: lastCameraRow
            objectName: "lastCameraRow"
            visible: popup.lastCamera !== null
            width: popup.width - 16
            textWidth: popup.width - 56
            camera: popup.lastCamera
            onClicked: {
                if (popup.lastCamera.canConnect) {
                    popup.close()
                    popup.connect(popup.lastCamera)
                } else {
                    // Read the way a list row reads it, through the delegate's model; this row
                    // has none, so the dialog opens without a message. Kept so on purpose.
                    popup.showCantConnect(typeof model !== "undefined" ? model.item.errorMessage : "")
                }
            }
        }

        SectionHeader {
            width: popup.width - 16
            text: "Found Cameras"
        }
        // Every found camera while the popup has the height it asks for; the rows scroll in
        // what is left of a popup kept within a smaller window.
        Flickable {
            id: cameraScroll
            objectName: "cameraScroll"
            width: popup.width - 16
            height: cameraList.height - Math.max(0, popup.naturalHeight - popup.height)
            contentWidth: width
            contentHeight: cameraList.height
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            interactive: contentHeight > height
            ScrollBar.vertical: ScrollBar {
                policy: cameraScroll.interactive ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
            }

            function show(row) {
                if (row.y < contentY)
                    contentY = row.y
                else if (row.y + row.height > contentY + height)
                    contentY = row.y + row.height - height
            }

            Column {
                id: cameraList
                objectName: "cameraList"
                width: popup.width - 16

                Repeater {
                    model: popup.cameraFinder ? popup.cameraFinder.cameras : null
                    delegate: CameraRow {
                        required property var model
                        objectName: "cameraRow"
                        width: cameraList.width
                        textWidth: cameraList.width - 40
                        camera: model.item
                        onClicked: {
                            if (model.item.canConnect) {
                                const camera = model.item
                                popup.close()
                                popup.connect(camera)
                                camera.save(popup.lastCameraFname)
                                popup.reloadLastCamera()
                            } else {
                                popup.showCantConnect(model.item.errorMessage)
                            }
                        }
                    }
                }
            }
        }

        Label {
            objectName: "statusLine"
            visible: popup.cameraFinder !== null
                     && (popup.cameraFinder.scanning || popup.cameraFinder.cameras.size === 0)
            width: popup.width - 16
            height: 20
            verticalAlignment: Text.AlignVCenter
            text: !popup.cameraFinder ? ""
                  : popup.cameraFinder.scanning ? "Scanning..."
                  : popup.cameraFinder.scanned ? "No cameras found."
                  : "Click refresh to scan."
        }
        Item {
            visible: popup.cameraFinder !== null
                     && (popup.cameraFinder.scanning || popup.cameraFinder.cameras.size === 0)
            width: 1
            height: 8
        }

        Button {
            id: refreshButton
            objectName: "refreshButton"
            width: popup.width - 16
            text: qsTr("Refresh")
            enabled: popup.cameraFinder !== null && !popup.cameraFinder.scanning
            onClicked: popup.cameraFinder.scan()
        }
    }

    Dialog {
        id: cantConnectDialog
        objectName: "cantConnectDialog"
        parent: Overlay.overlay
        x: Math.round((parent.width - width) / 2)
        y: Math.round((parent.height - height) / 2)
        // A width of its own: sized by a wrapping label, the dialog would chase its own width.
        width: Math.min(672, parent ? parent.width : 672)
        modal: true
        focus: true
        title: qsTr("Can't Connect")
        standardButtons: Dialog.Ok

        Label {
            objectName: "cantConnectMessage"
            width: Math.min(640, cantConnectDialog.width - 32)
            wrapMode: Text.Wrap
            text: popup.errorMessage
        }
    }
}
