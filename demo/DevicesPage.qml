// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import kivcamui 1.0

// The devices of the chosen transports, each transport headed by its "Custom" device for a
// user to fill in by hand, with the "Control" and "BaudRate" presets written into all of them.
Item {
    id: page

    // The names of the transports to choose from.
    property var transports: []
    readonly property color dimColor: "#A8A8B4"

    DeviceFinderModel {
        id: deviceFinder
        enableEmulators: true
        supportedDevices: page.transports
        defaultControl: controlField.text
        defaultBaudRate: rateBox.currentIndex > 0 ? Number(rateBox.currentText) : -1
    }
    Component.onCompleted: deviceFinder.scan()

    RowLayout {
        anchors.fill: parent
        spacing: 12

        ColumnLayout {
            Layout.preferredWidth: 260
            Layout.fillWidth: false
            Layout.fillHeight: true
            spacing: 6

            Label {
                text: "Transports"
                font.bold: true
            }
            Repeater {
                model: page.transports
                CheckBox {
                    required property string modelData
                    text: modelData
                    // A string list is an array in QML; the qmllint of Qt 6.4 knows no methods of it.
                    checked: deviceFinder.supportedDevices.indexOf(modelData) >= 0 // qmllint disable type
                    onToggled: {
                        const others = deviceFinder.supportedDevices.filter(name => name !== modelData)
                        deviceFinder.supportedDevices = checked ? others.concat([modelData]) : others
                    }
                }
            }
            Label {
                text: "Control preset"
                font.bold: true
                Layout.topMargin: 8
            }
            TextField {
                id: controlField
                placeholderText: "none"
                selectByMouse: true
                Layout.fillWidth: true
            }
            Label {
                text: "Baud rate preset"
                font.bold: true
            }
            ComboBox {
                id: rateBox
                model: ["none", "9600", "19200", "38400", "57600", "115200", "921600"]
                Layout.fillWidth: true
            }
            Button {
                text: "Scan"
                enabled: !deviceFinder.scanning
                onClicked: deviceFinder.scan()
                Layout.topMargin: 8
            }
            Label {
                text: deviceFinder.scanning ? "Scanning..." : deviceFinder.devices.size + " devices"
                color: page.dimColor
            }
            Item {
                Layout.fillHeight: true
            }
        }

        ListView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: 2
            model: deviceFinder.devices
            ScrollBar.vertical: ScrollBar {}

            delegate: Rectangle {
                id: row
                required property var model
                readonly property var device: model.item

                width: ListView.view.width
                height: 48
                color: device.isFound ? "transparent" : "#26262C"

                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: row.device.isFound ? 32 : 8
                    spacing: 10

                    Image {
                        Layout.preferredWidth: 32
                        Layout.preferredHeight: 32
                        source: row.device.iconExists ? row.device.icon : ""
                        sourceSize.width: 32
                        sourceSize.height: 32
                    }
                    ColumnLayout {
                        Layout.preferredWidth: 260
                        Layout.fillWidth: false
                        spacing: 0
                        Label {
                            text: row.device.interfaceName + " : " + row.device.deviceName
                            textFormat: Text.PlainText
                            font.bold: !row.device.isFound
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                        Label {
                            text: row.device.canConnect ? row.device.baseType : row.device.errorSummary
                            textFormat: Text.PlainText
                            color: row.device.canConnect ? page.dimColor : "#FF6B5E"
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                    }
                    // Every parameter with its value, the presets among them.
                    Label {
                        text: {
                            const values = []
                            const parameters = row.device.parameters
                            for (let i = 0; i < parameters.size; ++i)
                                values.push(parameters.at(i).displayName + " " + parameters.at(i).value)
                            return values.join("   ")
                        }
                        textFormat: Text.PlainText
                        color: page.dimColor
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                }
            }
        }
    }
}
