// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import kivcamui 1.0

// The found cameras and the description of the selected one: its editable fields and the
// parameters of its control device, ready to be connected as they are. The page edits a copy of
// the selected camera, so a new search, which replaces the found cameras, keeps the edits; the
// copy goes when the user selects another camera or loads a description, after confirming when
// it has edits not saved ("Drop changes?"). Save... and Load... write and read the description
// as a camera description file.
Item {
    id: page

    required property CameraFinderModel finder
    // The description shown and edited (a CameraInfo of the page's own), or null.
    property var camera: null
    property alias currentIndex: cameraList.currentIndex
    // Whether the description has edits that are neither saved nor connected.
    property bool changed: false
    // What Save... or Load... did, in a sentence, and whether it failed.
    property string message: ""
    property bool messageIsError: false
    // Whether a connect may start now.
    property bool canConnect: true
    // Where Save... and Load... go without asking (a file URL); empty: they ask with a dialog.
    property string descriptionFile: ""
    // The connected camera by its type and serial (by its identity when it has no serial); empty
    // while none is connected.
    property string connectedName: ""
    property string connectedSerial: ""
    property string connectedIdentity: ""
    // The row of the connected camera, or -1.
    readonly property int connectedIndex: {
        for (let i = 0; connectedName !== "" && i < finder.cameras.size; ++i) {
            if (isConnected(finder.cameras.at(i)))
                return i
        }
        return -1
    }

    signal connectRequested(var camera)

    function isConnected(camera) {
        return connectedName !== "" && camera !== null && camera.name === connectedName
                && (connectedSerial !== "" ? camera.serial === connectedSerial
                                           : camera.identity === connectedIdentity)
    }
    // The row of the found camera with the same type and serial as camera, or -1.
    function rowOf(camera) {
        for (let i = 0; camera && i < finder.cameras.size; ++i) {
            const found = finder.cameras.at(i)
            if (found.name === camera.name && found.serial === camera.serial)
                return i
        }
        return -1
    }

    // Shows next, a description of the page's own, in place of the one shown.
    function show(next) {
        const old = camera
        camera = next
        changed = false
        message = ""
        if (old)
            old.destroy()
    }
    // Runs action now, or once the user agrees to drop the edits not saved.
    function afterDropping(action) {
        if (!changed) {
            action()
            return
        }
        dropDialog.action = action
        dropDialog.open()
    }
    // Selects the found camera at index and shows a copy of it.
    function select(index) {
        if (index < 0 || index >= finder.cameras.size || finder.scanning)
            return
        afterDropping(() => {
            cameraList.currentIndex = index
            page.show(page.finder.cameras.at(index).clone(page))
        })
    }
    function tell(text, isError) {
        message = text
        messageIsError = isError
    }
    function saveTo(url) {
        if (camera.save(url)) {
            changed = false
            tell("Saved the description of " + camera.identity + " in " + localPath(url) + ".", false)
        } else {
            tell("Could not save the description of " + camera.identity + " in " + localPath(url)
                 + ": the file cannot be written. Choose a folder you may write to.", true)
        }
    }
    function loadFrom(url) {
        const loaded = finder.loadCameraInfo(url)
        if (!loaded) {
            tell("Could not load " + localPath(url) + ": it is not a camera description that "
                 + "can be read. Choose a file written with Save...", true)
            return
        }
        afterDropping(() => {
            cameraList.currentIndex = page.rowOf(loaded)
            page.show(loaded)
            page.tell("Loaded " + loaded.identity + " from " + page.localPath(url) + ".", false)
        })
    }
    function localPath(url) {
        return decodeURIComponent(String(url).replace(/^file:\/\//, ""))
    }
    function save() {
        if (page.descriptionFile !== "")
            saveTo(page.descriptionFile)
        else
            saveDialog.open()
    }
    function load() {
        if (page.descriptionFile !== "")
            loadFrom(page.descriptionFile)
        else
            loadDialog.open()
    }

    // Shown with nothing looked for yet: look for cameras.
    function scanFirstTime() {
        if (visible && !finder.scanning && !finder.scanned)
            finder.scan()
    }
    onVisibleChanged: scanFirstTime()
    // Qt.callLater is a function; the qmllint of Qt 6.4 cannot tell.
    Component.onCompleted: Qt.callLater(scanFirstTime) // qmllint disable type
    // A new search replaces the found cameras: select the one shown again, when it is found.
    Connections {
        target: page.finder
        function onScanningChanged() {
            cameraList.currentIndex = page.finder.scanning ? -1 : page.rowOf(page.camera)
        }
    }

    FileDialog {
        id: saveDialog
        title: "Save the camera description"
        fileMode: FileDialog.SaveFile
        defaultSuffix: "xml"
        nameFilters: ["Camera descriptions (*.xml)", "All files (*)"]
        onAccepted: page.saveTo(selectedFile)
    }
    FileDialog {
        id: loadDialog
        title: "Load a camera description"
        fileMode: FileDialog.OpenFile
        nameFilters: ["Camera descriptions (*.xml)", "All files (*)"]
        onAccepted: page.loadFrom(selectedFile)
    }
    Dialog {
        id: dropDialog
        objectName: "dropDialog"
        // What to do once the edits are dropped.
        property var action: null
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: Math.min(480, parent.width - 40)
        modal: true
        focus: true
        title: "Drop changes?"
        standardButtons: Dialog.Discard | Dialog.Cancel
        Label {
            width: dropDialog.availableWidth
            wrapMode: Text.Wrap
            text: page.camera ? "The changes to " + page.camera.identity + " are not saved.\n"
                                + "Drop them, or cancel and save them first." : ""
        }
        onDiscarded: {
            close()
            // A function, kept in the property until the user answers.
            action() // qmllint disable type
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 8

        RowLayout {
            Layout.fillWidth: true
            spacing: 8

            Label {
                text: page.finder.scanning ? "Scanning..." : page.finder.cameras.size + " cameras found"
                color: "#A8A8B4"
            }
            Item { Layout.fillWidth: true }
            CheckBox {
                text: "Complete cameras only"
                checked: !page.finder.commOnly
                onToggled: page.finder.commOnly = !checked
            }
            DemoButton {
                objectName: "load"
                text: "Load..."
                onClicked: page.load()
            }
            DemoButton {
                objectName: "save"
                text: "Save..."
                enabled: !!page.camera
                onClicked: page.save()
            }
            DemoButton {
                objectName: "scan"
                text: "Scan"
                enabled: !page.finder.scanning
                onClicked: page.finder.scan()
            }
        }
        Label {
            objectName: "message"
            visible: page.message !== ""
            text: page.message
            textFormat: Text.PlainText
            color: page.messageIsError ? "#FF6B5E" : "#A8A8B4"
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 12

            // Up and Down select; each row is a click target, the list the one keyboard stop.
            ListView {
                id: cameraList
                objectName: "cameraList"
                Layout.preferredWidth: Math.max(280, Math.min(420, page.width * 0.4))
                Layout.fillHeight: true
                clip: true
                model: page.finder.cameras
                currentIndex: -1
                spacing: 2
                activeFocusOnTab: true
                keyNavigationEnabled: false
                Keys.onUpPressed: page.select(currentIndex - 1)
                Keys.onDownPressed: page.select(Math.min(currentIndex + 1, count - 1))
                ScrollBar.vertical: ScrollBar {}
                delegate: ItemDelegate {
                    id: row
                    required property var model
                    required property int index
                    width: cameraList.width
                    height: 56
                    focusPolicy: Qt.NoFocus
                    highlighted: ListView.isCurrentItem
                    onClicked: {
                        cameraList.forceActiveFocus(Qt.MouseFocusReason)
                        page.select(index)
                    }
                    contentItem: RowLayout {
                        spacing: 10
                        Item {
                            Layout.preferredWidth: 40
                            Layout.preferredHeight: 40
                            Image {
                                anchors.fill: parent
                                visible: row.model.item.iconExists
                                source: row.model.item.iconExists ? row.model.item.icon : ""
                                sourceSize.width: 40
                                sourceSize.height: 40
                            }
                            Text {
                                anchors.centerIn: parent
                                visible: !row.model.item.iconExists
                                font.family: fontAwesome.name // qmllint disable unqualified
                                font.pixelSize: 28
                                color: "#E8E8EE"
                                text: "\uf030"
                            }
                        }
                        ColumnLayout {
                            Layout.fillWidth: true
                            spacing: 2
                            Label {
                                text: (row.model.item.identity !== ""
                                       ? row.model.item.identity + "  \u2022  " : "")
                                      + row.model.item.displayName
                                font.bold: true
                                elide: Text.ElideRight
                                Layout.fillWidth: true
                            }
                            Label {
                                text: row.model.item.canConnect
                                      ? row.model.item.serial + "  \u2022  "
                                        + row.model.item.userFriendlyInterfaceName + " "
                                        + row.model.item.comm.deviceName
                                      : row.model.item.errorSummary
                                color: row.highlighted ? "#FFFFFF" : row.model.item.canConnect ? "#A8A8B4" : "#FF6B5E"
                                elide: Text.ElideRight
                                Layout.fillWidth: true
                            }
                        }
                        ConnectedBadge {
                            visible: row.index === page.connectedIndex
                        }
                    }
                    // The selected row, while the list has the keyboard focus.
                    FocusFrame {
                        shown: row.highlighted && cameraList.activeFocus
                    }
                }
            }

            Rectangle {
                Layout.fillWidth: true
                Layout.fillHeight: true
                color: "#26262C"
                radius: 4

                Label {
                    anchors.centerIn: parent
                    visible: !page.camera
                    text: page.finder.scanning ? "Scanning..." : "No camera selected"
                    color: "#A8A8B4"
                }

                ColumnLayout {
                    visible: !!page.camera
                    anchors.fill: parent
                    anchors.margins: 12
                    spacing: 8

                    RowLayout {
                        Layout.fillWidth: true
                        spacing: 10
                        Label {
                            text: page.camera ? page.camera.displayName + " (" + page.camera.model + ")"
                                                + (page.changed ? " *" : "") : ""
                            font.pixelSize: 18
                            font.bold: true
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                        ConnectedBadge {
                            visible: page.isConnected(page.camera)
                        }
                        DemoButton {
                            objectName: "connect"
                            text: "Connect"
                            enabled: !!page.camera && page.camera.canConnect && page.canConnect
                            onClicked: {
                                page.changed = false
                                page.connectRequested(page.camera)
                            }
                        }
                    }
                    Label {
                        visible: !!page.camera && !page.camera.canConnect
                        text: page.camera ? page.camera.errorMessage : ""
                        color: "#FF6B5E"
                        wrapMode: Text.WordWrap
                        Layout.fillWidth: true
                    }

                    GridLayout {
                        columns: width >= 440 ? 4 : 2
                        columnSpacing: 12
                        rowSpacing: 6
                        Layout.fillWidth: true
                        Label { text: "Identity" }
                        TextField {
                            objectName: "identity"
                            text: page.camera ? page.camera.identity : ""
                            placeholderText: "Name this camera"
                            selectByMouse: true
                            onEditingFinished: {
                                if (page.camera && page.camera.identity !== text) {
                                    page.camera.identity = text
                                    page.changed = true
                                }
                            }
                            Layout.fillWidth: true
                            Layout.minimumWidth: 120
                        }
                        Label { text: "Interface" }
                        Label {
                            text: page.camera ? page.camera.userFriendlyInterfaceName : ""
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                        Label { text: "Width" }
                        NumberField {
                            from: 1
                            to: 65535
                            value: page.camera ? page.camera.width : 1
                            onEdited: (width) => {
                                page.camera.width = width
                                page.changed = true
                            }
                        }
                        Label { text: "Height" }
                        NumberField {
                            from: 1
                            to: 65535
                            value: page.camera ? page.camera.height : 1
                            onEdited: (height) => {
                                page.camera.height = height
                                page.changed = true
                            }
                        }
                        Label { text: "Pixel type" }
                        ComboBox {
                            model: page.camera ? page.camera.pixelTypeNames : []
                            currentIndex: page.camera ? page.camera.pixelTypeIndex : -1
                            onActivated: (index) => {
                                page.camera.pixelTypeIndex = index
                                page.changed = true
                            }
                        }
                        Label { text: "Controller" }
                        ComboBox {
                            model: page.camera ? page.camera.controllerNames : []
                            currentIndex: page.camera ? page.camera.controllerIndex : -1
                            onActivated: (index) => {
                                page.camera.controllerIndex = index
                                page.changed = true
                            }
                        }
                    }

                    Label {
                        text: "Control device: " + (page.camera ? page.camera.comm.interfaceName
                                                                  + " / " + page.camera.comm.deviceName : "")
                        font.bold: true
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                        Layout.topMargin: 4
                    }
                    ListView {
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        Layout.minimumHeight: 80
                        clip: true
                        model: page.camera ? page.camera.comm.parameters : null
                        ScrollBar.vertical: ScrollBar {}
                        delegate: RowLayout {
                            id: parameterRow
                            required property var model
                            width: ListView.view.width
                            height: 40
                            Label {
                                text: parameterRow.model.item.displayName || parameterRow.model.item.name
                                Layout.preferredWidth: Math.min(200, parameterRow.width / 2)
                                elide: Text.ElideRight
                            }
                            Label {
                                visible: !parameterRow.model.item.isWritable
                                text: parameterRow.model.item.value
                                textFormat: Text.PlainText
                                color: "#A8A8B4"
                                elide: Text.ElideRight
                                Layout.fillWidth: true
                            }
                            TextField {
                                visible: parameterRow.model.item.isWritable && !parameterRow.model.item.hasAllowedValues
                                text: parameterRow.model.item.value
                                selectByMouse: true
                                Layout.fillWidth: true
                                onEditingFinished: {
                                    if (parameterRow.model.item.value !== text) {
                                        parameterRow.model.item.value = text
                                        page.changed = true
                                    }
                                }
                            }
                            ComboBox {
                                visible: parameterRow.model.item.isWritable && parameterRow.model.item.hasAllowedValues
                                model: parameterRow.model.item.allowedValues
                                currentIndex: parameterRow.model.item.valueIndex
                                Layout.fillWidth: true
                                onActivated: (index) => {
                                    parameterRow.model.item.valueIndex = index
                                    page.changed = true
                                }
                            }
                        }
                    }
                }
            }
        }
    }
}
