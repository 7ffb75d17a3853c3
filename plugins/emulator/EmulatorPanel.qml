// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The controller panel of the emulated cameras. The host loads it with the controller model:
// it sets cameraModel (StandaloneModel.cameraModel) on the loaded item.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import kivcamuiEmulator 1.0

Pane {
    id: panel

    property EmulatorControllerModel cameraModel: null

    implicitWidth: 760
    implicitHeight: 460

    Loader {
        anchors.fill: parent
        active: panel.cameraModel !== null
        sourceComponent: content
    }

    Component {
        id: content

        RowLayout {
            id: layout

            // The panel's id, from the loaded component: qmllint of Qt 6.4 wants it bound to
            // this file (pragma ComponentBehavior: Bound), which Qt 6.4 cannot load.
            readonly property EmulatorControllerModel camera: panel.cameraModel // qmllint disable unqualified
            readonly property bool live: camera.connected

            spacing: 12

            ColumnLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true

                Rectangle {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.minimumWidth: 320
                    Layout.minimumHeight: 240
                    color: "black"

                    FrameView {
                        id: picture
                        objectName: "picture"
                        anchors.fill: parent
                        image: layout.camera.image
                    }
                    Label {
                        anchors.centerIn: parent
                        visible: !layout.live
                        color: "white"
                        text: qsTr("No picture: the camera is not connected")
                    }
                }
                Label {
                    objectName: "frameInfo"
                    Layout.fillWidth: true
                    text: qsTr("Frame %1 \u00b7 %2 frames/s measured \u00b7 %3 missed")
                          .arg(layout.camera.frameCount)
                          .arg(layout.camera.measuredFrameRate.toFixed(1))
                          .arg(layout.camera.droppedFrames)
                }
            }

            ColumnLayout {
                Layout.preferredWidth: 300
                Layout.fillHeight: true

                Label {
                    text: layout.camera.cameraType !== "" ? layout.camera.cameraType
                                                         : qsTr("Emulated camera")
                    font.bold: true
                    font.pixelSize: 18
                }
                Label {
                    objectName: "connectionState"
                    text: layout.live ? qsTr("Connected") : qsTr("Not connected")
                    color: layout.live ? "forestgreen" : "firebrick"
                }

                GridLayout {
                    columns: 2
                    columnSpacing: 10
                    Layout.topMargin: 8

                    Label { text: qsTr("Identity"); opacity: 0.7 }
                    Label { text: layout.camera.identity || "\u2013" }
                    Label { text: qsTr("Model"); opacity: 0.7 }
                    Label { text: layout.camera.model || "\u2013" }
                    Label { text: qsTr("Serial"); opacity: 0.7 }
                    Label { text: layout.camera.serial || "\u2013" }
                    Label { text: qsTr("Controller"); opacity: 0.7 }
                    Label { text: layout.camera.controllerName }
                    Label { text: qsTr("Control device"); opacity: 0.7 }
                    Label { text: layout.camera.commDevice || "\u2013" }
                    Label { text: qsTr("Video device"); opacity: 0.7 }
                    Label { text: layout.camera.videoDevice || qsTr("none") }
                    Label { text: qsTr("Image"); opacity: 0.7 }
                    Label { text: layout.camera.imageFormat || "\u2013" }
                }

                GridLayout {
                    columns: 2
                    columnSpacing: 10
                    Layout.topMargin: 12

                    Label { text: qsTr("Frame rate") }
                    RowLayout {
                        Slider {
                            objectName: "frameRate"
                            Layout.preferredWidth: 150
                            from: 1
                            to: Math.min(240, layout.camera.maxFrameRate)
                            stepSize: 1
                            enabled: layout.live
                            value: layout.camera.frameRate
                            onMoved: layout.camera.frameRate = value
                        }
                        Label {
                            text: qsTr("%1/s").arg(Math.round(layout.camera.frameRate))
                        }
                    }
                    Label {
                        text: qsTr("Correction")
                        visible: layout.camera.hasNucMask
                    }
                    Button {
                        objectName: "nuc"
                        text: qsTr("NUC")
                        visible: layout.camera.hasNucMask
                        enabled: layout.live
                        onClicked: layout.camera.nuc()
                    }
                }

                // The display range of cameras of more than 8 bits: automatic, or the samples
                // shown as black and as white. (A Switch and a RangeSlider: the style draws
                // them without images, which Qt 6.4 leaks.)
                ColumnLayout {
                    Layout.topMargin: 12
                    visible: layout.camera.hasRange

                    Switch {
                        objectName: "autoRange"
                        text: qsTr("Automatic range")
                        checked: layout.camera.autoRange
                        onToggled: layout.camera.autoRange = checked
                    }
                    RangeSlider {
                        objectName: "range"
                        Layout.fillWidth: true
                        enabled: !layout.camera.autoRange
                        from: 0
                        to: layout.camera.rangeMaximum
                        stepSize: 1
                        first.value: layout.camera.rangeLow
                        second.value: layout.camera.rangeHigh
                        first.onMoved: layout.camera.rangeLow = Math.round(first.value)
                        second.onMoved: layout.camera.rangeHigh = Math.round(second.value)
                    }
                    Label {
                        text: qsTr("Black %1 \u00b7 white %2")
                              .arg(layout.camera.rangeLow).arg(layout.camera.rangeHigh)
                        opacity: layout.camera.autoRange ? 0.5 : 1
                    }
                }

                Item { Layout.fillHeight: true }
            }
        }
    }
}
