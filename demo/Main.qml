import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import kivcamui 1.0

ApplicationWindow {
    id: window
    width: 1100
    height: 680
    visible: true
    title: "kivcamui demo"
    color: "#2F2F37"

    palette.window: "#2F2F37"
    palette.base: "#26262C"
    palette.alternateBase: "#34343D"
    palette.text: "#E8E8EE"
    palette.windowText: "#E8E8EE"
    palette.buttonText: "#E8E8EE"
    palette.button: "#3C3C46"
    palette.highlight: "#E0822B"
    palette.highlightedText: "#FFFFFF"
    palette.placeholderText: "#8C8C99"
    palette.disabled.text: "#6C6C78"
    palette.disabled.windowText: "#6C6C78"
    palette.disabled.buttonText: "#6C6C78"

    readonly property var camera: cameraList.currentIndex >= 0 ? finder.cameras.at(cameraList.currentIndex) : null

    FontLoader {
        id: fontAwesome
        source: iconFontUrl
    }

    // Connects the chosen camera; its camera finder lists the cameras.
    StandaloneModel {
        id: standalone
        onConnectedChanged: {
            if (connected)
                panel.setSource(controllerQml, { "cameraModel": cameraModel })
            else
                panel.source = ""
        }
        onConnectingChanged: {
            if (!connecting && screenshotFile !== "" && startPage !== "custom")
                shotTimer.start()
        }
    }
    readonly property CameraFinderModel finder: standalone.cameraFinder

    Component.onCompleted: {
        finder.enableEmulators = true
        finder.scan()
    }

    // With --screenshot: once the first search has ended, connects the first camera that can
    // connect, and saves the window when the connect has ended.
    Connections {
        target: finder
        enabled: screenshotFile !== "" && startPage !== "custom"
        function onScanningChanged() {
            if (finder.scanning)
                return
            for (let i = 0; i < finder.cameras.size; ++i) {
                if (finder.cameras.at(i).canConnect) {
                    cameraList.currentIndex = i
                    standalone.connect(finder.cameras.at(i))
                    return
                }
            }
            cameraList.currentIndex = 0
            shotTimer.start()
        }
    }
    // With --page custom: opens the custom camera dialog on an example and, with --screenshot,
    // saves the window with it.
    Timer {
        running: startPage === "custom"
        interval: 0
        onTriggered: customCamera.openExample()
    }
    Timer {
        id: shotTimer
        interval: 1000
        onTriggered: {
            // The whole window, popups included, for the dialog.
            (startPage === "custom" ? customCamera.Overlay.overlay.parent : page).grabToImage(function (result) {
                result.saveToFile(screenshotFile)
                Qt.quit()
            })
        }
    }

    ColumnLayout {
    id: page
    anchors.fill: parent
    spacing: 0

    ToolBar {
        Layout.fillWidth: true
        background: Rectangle { color: "#26262C" }
        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 12
            anchors.rightMargin: 12
            TabBar {
                id: pages
                currentIndex: startPage === "editors" ? 1 : startPage === "devices" ? 2 : 0
                background: null
                TabButton {
                    text: "Cameras"
                    width: implicitWidth
                    font.bold: true
                }
                TabButton {
                    text: "Sensor window"
                    width: implicitWidth
                    font.bold: true
                }
                TabButton {
                    text: "Devices"
                    width: implicitWidth
                    font.bold: true
                }
            }
            Label {
                text: finder.scanning ? "Scanning..." : finder.cameras.size + " found"
                color: "#A8A8B4"
            }
            Item { Layout.fillWidth: true }
            CheckBox {
                text: "Complete cameras only"
                checked: !finder.commOnly
                onToggled: finder.commOnly = !checked
            }
            Button {
                text: "Scan"
                enabled: !finder.scanning
                onClicked: finder.scan()
            }
            CustomCameraButton {
                id: customCamera
                standalone: standalone
                onExampleShown: {
                    if (screenshotFile !== "")
                        shotTimer.start()
                }
            }
        }
    }

    StackLayout {
    Layout.fillWidth: true
    Layout.fillHeight: true
    Layout.margins: 12
    currentIndex: pages.currentIndex

    RowLayout {
        spacing: 12

        ListView {
            id: cameraList
            Layout.preferredWidth: 420
            Layout.fillHeight: true
            clip: true
            model: finder.cameras
            currentIndex: -1
            spacing: 2
            delegate: ItemDelegate {
                id: row
                required property var model
                required property int index
                width: cameraList.width
                height: 56
                highlighted: ListView.isCurrentItem
                onClicked: cameraList.currentIndex = index
                contentItem: RowLayout {
                    spacing: 10
                    Item {
                        Layout.preferredWidth: 40
                        Layout.preferredHeight: 40
                        Image {
                            anchors.fill: parent
                            visible: row.model.item.iconExists
                            source: row.model.item.iconExists ? row.model.item.icon : ""
                            sourceSize: Qt.size(40, 40)
                        }
                        Label {
                            anchors.centerIn: parent
                            visible: !row.model.item.iconExists
                            font.family: fontAwesome.name
                            font.pixelSize: 28
                            text: "\uf030"
                        }
                    }
                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 2
                        Label {
                            text: row.model.item.displayName + "  \u2022  " + row.model.item.serial
                            font.bold: true
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                        Label {
                            text: row.model.item.canConnect
                                  ? row.model.item.userFriendlyInterfaceName + "  " + row.model.item.comm.deviceName
                                  : row.model.item.errorSummary
                            color: row.model.item.canConnect ? "#A8A8B4" : "#FF6B5E"
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                    }
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
                visible: !window.camera
                text: finder.scanning ? "Scanning..." : "No camera selected"
                color: "#A8A8B4"
            }

            ColumnLayout {
                visible: !!window.camera
                anchors.fill: parent
                anchors.margins: 16
                spacing: 10

                RowLayout {
                    Layout.fillWidth: true
                    spacing: 10
                    Label {
                        text: window.camera ? window.camera.displayName + " (" + window.camera.model + ")" : ""
                        font.pixelSize: 18
                        font.bold: true
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                    Label {
                        text: standalone.connecting ? "Connecting..."
                            : standalone.disconnecting ? "Disconnecting..."
                            : standalone.connected ? "Connected (" + standalone.controllerName + ")"
                            : "Not connected"
                        color: standalone.connected ? "#7FD47F" : "#A8A8B4"
                    }
                    Button {
                        text: "Connect"
                        enabled: !!window.camera && window.camera.canConnect
                                 && !standalone.connecting && !standalone.disconnecting
                        onClicked: standalone.connect(window.camera)
                    }
                    Button {
                        text: "Disconnect"
                        enabled: standalone.connected && !standalone.disconnecting
                        onClicked: standalone.disconnect()
                    }
                }
                Label {
                    visible: !!window.camera && !window.camera.canConnect
                    text: window.camera ? window.camera.errorMessage : ""
                    color: "#FF6B5E"
                    wrapMode: Text.WordWrap
                    Layout.fillWidth: true
                }

                GridLayout {
                    columns: 4
                    columnSpacing: 12
                    rowSpacing: 6
                    Label { text: "Identity" }
                    TextField {
                        text: window.camera ? window.camera.identity : ""
                        placeholderText: "Name this camera"
                        onEditingFinished: if (window.camera) window.camera.identity = text
                        Layout.fillWidth: true
                    }
                    Label { text: "Interface" }
                    Label { text: window.camera ? window.camera.userFriendlyInterfaceName : "" }
                    Label { text: "Width" }
                    SpinBox {
                        from: 1; to: 65535; editable: true
                        value: window.camera ? window.camera.width : 1
                        onValueModified: window.camera.width = value
                    }
                    Label { text: "Height" }
                    SpinBox {
                        from: 1; to: 65535; editable: true
                        value: window.camera ? window.camera.height : 1
                        onValueModified: window.camera.height = value
                    }
                    Label { text: "Pixel type" }
                    ComboBox {
                        model: window.camera ? window.camera.pixelTypeNames : []
                        currentIndex: window.camera ? window.camera.pixelTypeIndex : -1
                        onActivated: (index) => window.camera.pixelTypeIndex = index
                    }
                    Label { text: "Controller" }
                    ComboBox {
                        model: window.camera ? window.camera.controllerNames : []
                        currentIndex: window.camera ? window.camera.controllerIndex : -1
                        onActivated: (index) => window.camera.controllerIndex = index
                    }
                }

                Label {
                    visible: !standalone.connected
                    text: "Control device: " + (window.camera ? window.camera.comm.interfaceName + " / " + window.camera.comm.deviceName : "")
                    font.bold: true
                    Layout.topMargin: 8
                }
                // The controller panel of the connected camera, from its controller UI plugin.
                Loader {
                    id: panel
                    visible: standalone.connected
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Label {
                        anchors.centerIn: parent
                        visible: panel.status !== Loader.Ready
                        text: "No controller panel for " + standalone.controllerName
                        color: "#A8A8B4"
                    }
                }
                ListView {
                    visible: !standalone.connected
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    clip: true
                    model: window.camera ? window.camera.comm.parameters : null
                    delegate: RowLayout {
                        id: parameterRow
                        required property var model
                        width: ListView.view.width
                        height: 40
                        Label {
                            text: parameterRow.model.item.displayName || parameterRow.model.item.name
                            Layout.preferredWidth: 200
                            elide: Text.ElideRight
                        }
                        Label {
                            visible: !parameterRow.model.item.isWritable
                            text: parameterRow.model.item.value
                            textFormat: Text.PlainText
                            color: "#A8A8B4"
                        }
                        TextField {
                            visible: parameterRow.model.item.isWritable && !parameterRow.model.item.hasAllowedValues
                            text: parameterRow.model.item.value
                            selectByMouse: true
                            onEditingFinished: parameterRow.model.item.value = text
                        }
                        ComboBox {
                            visible: parameterRow.model.item.isWritable && parameterRow.model.item.hasAllowedValues
                            model: parameterRow.model.item.allowedValues
                            currentIndex: parameterRow.model.item.valueIndex
                            onActivated: (index) => parameterRow.model.item.valueIndex = index
                        }
                        Item { Layout.fillWidth: true }
                    }
                }
            }
        }
    }

    // The selected camera's sensor window and its place on a display.
    EditorsPage {
        camera: window.camera
    }

    // The devices of chosen transports, with presets for their parameters.
    DevicesPage {
        transports: transportNames
    }
    }
}
}
