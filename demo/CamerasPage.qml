pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import kivcamui 1.0

// The found cameras and the description of the selected one: its editable fields and the
// parameters of its control device, ready to be connected as they are.
Item {
    id: page

    required property CameraFinderModel finder
    // The selected camera (a CameraInfo), or null.
    readonly property var camera: cameraList.currentIndex >= 0 && !finder.scanning
                                  ? finder.cameras.at(cameraList.currentIndex) : null
    property alias currentIndex: cameraList.currentIndex
    // Whether a connect may start now.
    property bool canConnect: true

    signal connectRequested(var camera)

    // Shown with nothing looked for yet: look for cameras.
    function scanFirstTime() {
        if (visible && !finder.scanning && !finder.scanned)
            finder.scan()
    }
    onVisibleChanged: scanFirstTime()
    // Qt.callLater is a function; the qmllint of Qt 6.4 cannot tell.
    Component.onCompleted: Qt.callLater(scanFirstTime) // qmllint disable type

    ColumnLayout {
        anchors.fill: parent
        spacing: 8

        RowLayout {
            Layout.fillWidth: true
            spacing: 12

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
            Button {
                text: "Scan"
                enabled: !page.finder.scanning
                onClicked: page.finder.scan()
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 12

            ListView {
                id: cameraList
                Layout.preferredWidth: 420
                Layout.fillHeight: true
                clip: true
                model: page.finder.cameras
                currentIndex: -1
                spacing: 2
                ScrollIndicator.vertical: ScrollIndicator {}
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
                    anchors.margins: 16
                    spacing: 10

                    RowLayout {
                        Layout.fillWidth: true
                        spacing: 10
                        Label {
                            text: page.camera ? page.camera.displayName + " (" + page.camera.model + ")" : ""
                            font.pixelSize: 18
                            font.bold: true
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                        Button {
                            text: "Connect"
                            enabled: !!page.camera && page.camera.canConnect && page.canConnect
                            onClicked: page.connectRequested(page.camera)
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
                        columns: 4
                        columnSpacing: 12
                        rowSpacing: 6
                        Label { text: "Identity" }
                        TextField {
                            text: page.camera ? page.camera.identity : ""
                            placeholderText: "Name this camera"
                            onEditingFinished: if (page.camera) page.camera.identity = text
                            Layout.fillWidth: true
                        }
                        Label { text: "Interface" }
                        Label { text: page.camera ? page.camera.userFriendlyInterfaceName : "" }
                        Label { text: "Width" }
                        NumberField {
                            from: 1
                            to: 65535
                            value: page.camera ? page.camera.width : 1
                            onEdited: (width) => page.camera.width = width
                        }
                        Label { text: "Height" }
                        NumberField {
                            from: 1
                            to: 65535
                            value: page.camera ? page.camera.height : 1
                            onEdited: (height) => page.camera.height = height
                        }
                        Label { text: "Pixel type" }
                        ComboBox {
                            model: page.camera ? page.camera.pixelTypeNames : []
                            currentIndex: page.camera ? page.camera.pixelTypeIndex : -1
                            onActivated: (index) => page.camera.pixelTypeIndex = index
                        }
                        Label { text: "Controller" }
                        ComboBox {
                            model: page.camera ? page.camera.controllerNames : []
                            currentIndex: page.camera ? page.camera.controllerIndex : -1
                            onActivated: (index) => page.camera.controllerIndex = index
                        }
                    }

                    Label {
                        text: "Control device: " + (page.camera ? page.camera.comm.interfaceName
                                                                  + " / " + page.camera.comm.deviceName : "")
                        font.bold: true
                        Layout.topMargin: 8
                    }
                    ListView {
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        clip: true
                        model: page.camera ? page.camera.comm.parameters : null
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
    }
}
