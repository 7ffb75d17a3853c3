// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import kivcamui 1.0

// A camera's sensor window, edited with the mouse on a WindowEditor, and where it lands on a
// video display, placed on a DisplayEditor; each with its settings and its values.
Item {
    id: page

    // The camera whose sensor is edited (a CameraInfo), or null. Without one, or without a size,
    // the sensor is fallbackSize.
    property var camera: null
    property size fallbackSize: Qt.size(640, 512)

    readonly property size sensorSize: camera && camera.width > 0 && camera.height > 0
                                       ? Qt.size(camera.width, camera.height) : fallbackSize
    // The editor announces isWindowValid when the window or the centred mode changes, not when
    // the limits do: read it again then too.
    readonly property bool windowValid: {
        sensorEditor.maxSize
        sensorEditor.minSize
        sensorEditor.increment
        return sensorEditor.isWindowValid
    }
    readonly property color textColor: "#E8E8EE"
    readonly property color dimColor: "#A8A8B4"
    readonly property color errorColor: "#FF6B5E"

    function rectText(r) {
        return "(" + r.x + ", " + r.y + ")  " + r.width + " \u00d7 " + r.height
    }
    function pointText(p) {
        return "(" + p.x + ", " + p.y + ")"
    }
    // A new sensor starts with a window over its middle.
    function resetWindow() {
        sensorEditor.window = Qt.rect(sensorSize.width / 4, sensorSize.height / 4,
                                      sensorSize.width / 2, sensorSize.height / 2)
    }

    onSensorSizeChanged: resetWindow()
    Component.onCompleted: resetWindow()

    RowLayout {
        anchors.fill: parent
        spacing: 12

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            color: "#26262C"
            radius: 4

            ColumnLayout {
                anchors.fill: parent
                anchors.margins: 16
                spacing: 8

                Label {
                    text: "Sensor window"
                    font.pixelSize: 18
                    font.bold: true
                }
                Label {
                    text: (page.camera ? page.camera.displayName + ", " : "") + "sensor "
                          + page.sensorSize.width + " \u00d7 " + page.sensorSize.height
                          + ". Drag the window or its edges and corners."
                    color: page.dimColor
                }
                // The editor keeps the sensor's aspect within the space it has.
                Item {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    WindowEditor {
                        id: sensorEditor
                        readonly property real scale: Math.min(parent.width / page.sensorSize.width,
                                                               parent.height / page.sensorSize.height)
                        anchors.horizontalCenter: parent.horizontalCenter
                        width: page.sensorSize.width * scale
                        height: page.sensorSize.height * scale
                        // QML's sizes and points hold reals, which the engine turns into the
                        // editor's whole pixels; the qmllint of Qt 6.4 takes them for a mismatch.
                        maxSize: page.sensorSize // qmllint disable type
                        minSize: Qt.size(minWidth.value, minHeight.value) // qmllint disable type
                        increment: Qt.point(incrementX.value, incrementY.value) // qmllint disable type
                        centeredOnly: centred.checked
                        hFlip: flipH.checked
                        vFlip: flipV.checked
                    }
                }
                Label {
                    text: "window " + page.rectText(sensorEditor.window)
                          + (page.windowValid ? "   valid" : "   not valid")
                          + (sensorEditor.tracking ? "   dragging" : "")
                    color: page.windowValid ? page.textColor : page.errorColor
                    font.bold: true
                }
                GridLayout {
                    columns: 4
                    columnSpacing: 10
                    rowSpacing: 4
                    Label { text: "Increment x" }
                    NumberField { id: incrementX; from: 1; to: 64; value: 1; onEdited: (typed) => value = typed }
                    Label { text: "Increment y" }
                    NumberField { id: incrementY; from: 1; to: 64; value: 1; onEdited: (typed) => value = typed }
                    Label { text: "Minimum width" }
                    NumberField { id: minWidth; from: 1; to: page.sensorSize.width; value: 16; onEdited: (typed) => value = typed }
                    Label { text: "Minimum height" }
                    NumberField { id: minHeight; from: 1; to: page.sensorSize.height; value: 16; onEdited: (typed) => value = typed }
                    CheckBox { id: centred; text: "Centred only"; Layout.columnSpan: 2 }
                    CheckBox { id: flipH; text: "Flip horizontally"; Layout.columnSpan: 2 }
                    Button { text: "Whole sensor"; Layout.columnSpan: 2
                        onClicked: sensorEditor.window = Qt.rect(0, 0, page.sensorSize.width, page.sensorSize.height)
                    }
                    CheckBox { id: flipV; text: "Flip vertically"; Layout.columnSpan: 2 }
                }
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            color: "#26262C"
            radius: 4

            ColumnLayout {
                anchors.fill: parent
                anchors.margins: 16
                spacing: 8

                Label {
                    text: "On the display"
                    font.pixelSize: 18
                    font.bold: true
                }
                Label {
                    text: "Display " + displayEditor.displaySize.width + " \u00d7 "
                          + displayEditor.displaySize.height
                          + (displayEditor.offsetType === DisplayEditor.OFFSET_CUSTOM
                             ? ". Drag the picture." : ".")
                    color: page.dimColor
                }
                Item {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Rectangle {
                        anchors.fill: displayEditor
                        color: "#101014"
                    }
                    DisplayEditor {
                        id: displayEditor
                        readonly property real scale: Math.min(parent.width / displaySize.width,
                                                               parent.height / displaySize.height)
                        anchors.horizontalCenter: parent.horizontalCenter
                        width: displaySize.width * scale
                        height: displaySize.height * scale
                        window: sensorEditor.window
                        // A size of reals for whole pixels, as the window editor's maxSize.
                        fpaSize: page.sensorSize // qmllint disable type
                        displaySize: displaySizes.model[displaySizes.currentIndex].size
                        zoom: zooms.model[zooms.currentIndex].zoom
                        // The combo box has no choice (-1) until its list is there, and the
                        // editor's offset type is an enumeration: never hand it -1.
                        offsetType: offsetTypes.currentIndex >= 0 ? offsetTypes.currentIndex
                                                                  : DisplayEditor.OFFSET_CENTERED
                        showNtscLines: ntscLines.checked
                        hFlip: flipH.checked
                        vFlip: flipV.checked
                    }
                }
                Label {
                    text: "offset " + page.pointText(displayEditor.offset) + ", from "
                          + page.pointText(displayEditor.offsetMin) + " to "
                          + page.pointText(displayEditor.offsetMax)
                          + (displayEditor.isValid ? "   valid" : "   not valid")
                    color: displayEditor.isValid ? page.textColor : page.errorColor
                    font.bold: true
                }
                GridLayout {
                    columns: 4
                    columnSpacing: 10
                    rowSpacing: 4
                    Label { text: "Display" }
                    ComboBox {
                        id: displaySizes
                        textRole: "text"
                        model: [
                            { text: "640 \u00d7 480", size: Qt.size(640, 480) },
                            { text: "720 \u00d7 576", size: Qt.size(720, 576) },
                            { text: "1280 \u00d7 1024", size: Qt.size(1280, 1024) },
                        ]
                    }
                    Label { text: "Zoom" }
                    ComboBox {
                        id: zooms
                        textRole: "text"
                        model: [
                            { text: "Fit", zoom: 0 },
                            { text: "\u00bd", zoom: 0.5 },
                            { text: "1", zoom: 1 },
                            { text: "2", zoom: 2 },
                        ]
                    }
                    Label { text: "Placement" }
                    ComboBox {
                        id: offsetTypes
                        // In the order of DisplayEditor's offset types.
                        model: ["Same as sensor", "Centred", "Custom"]
                        // Chosen once the list is there.
                        Component.onCompleted: currentIndex = DisplayEditor.OFFSET_CENTERED
                    }
                    CheckBox { id: ntscLines; text: "NTSC lines"; checked: true; Layout.columnSpan: 2 }
                }
            }
        }
    }
}
