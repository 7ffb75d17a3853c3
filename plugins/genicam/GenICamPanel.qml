// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The controller panel of GenICam cameras. The host loads it with the controller model: it sets
// cameraModel (StandaloneModel.cameraModel) on the loaded item.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import kivcamui 1.0
import kivcamuiGenICam 1.0

Pane {
    id: panel

    property GenICamControllerModel cameraModel: null

    implicitWidth: 900
    implicitHeight: 520

    Loader {
        anchors.fill: parent
        active: panel.cameraModel !== null
        sourceComponent: content
    }

    Component {
        id: content

        ColumnLayout {
            id: layout

            // The panel's id, from the loaded component: qmllint of Qt 6.4 wants it bound to
            // this file (pragma ComponentBehavior: Bound), which Qt 6.4 cannot load.
            readonly property GenICamControllerModel camera: panel.cameraModel // qmllint disable unqualified
            readonly property LivePicture live: camera.live
            readonly property GenICamFeatureModel features: camera.features

            spacing: 8

            // The camera was lost: said at once, above everything.
            Rectangle {
                objectName: "lostBanner"
                Layout.fillWidth: true
                implicitHeight: lostText.implicitHeight + 12
                visible: layout.camera.lost
                color: "#8E1B1B"
                radius: 3

                Label {
                    id: lostText
                    anchors.fill: parent
                    anchors.margins: 6
                    wrapMode: Text.Wrap
                    color: "white"
                    text: qsTr("The camera is lost: %1 Disconnect, then connect again.")
                          .arg(layout.camera.errorMessage)
                }
            }

            RowLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                spacing: 12

                ColumnLayout {
                    Layout.fillWidth: true
                    Layout.fillHeight: true

                    Label {
                        text: layout.camera.cameraName !== "" ? layout.camera.cameraName
                                                              : qsTr("GenICam camera")
                        font.bold: true
                        font.pixelSize: 18
                    }
                    Rectangle {
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        Layout.minimumWidth: 320
                        Layout.minimumHeight: 200
                        color: "black"

                        FrameView {
                            objectName: "picture"
                            anchors.fill: parent
                            image: layout.live.image
                        }
                        Label {
                            anchors.centerIn: parent
                            visible: !layout.camera.acquiring
                            color: "white"
                            text: layout.camera.connected ? qsTr("Acquisition stopped")
                                                          : qsTr("The camera is not connected")
                        }
                    }
                    Label {
                        objectName: "frameInfo"
                        Layout.fillWidth: true
                        wrapMode: Text.Wrap
                        text: qsTr("%1 \u00b7 frame %2 \u00b7 %3 frames/s \u00b7 %4 not shown")
                              .arg(layout.live.imageFormat)
                              .arg(layout.live.frameCount)
                              .arg(layout.live.measuredFrameRate.toFixed(1))
                              .arg(layout.live.droppedFrames)
                    }
                    Label {
                        objectName: "streamInfo"
                        Layout.fillWidth: true
                        wrapMode: Text.Wrap
                        opacity: 0.75
                        text: qsTr("Stream: %1 complete, %2 incomplete frames; %3 packets missing, %4 resent")
                              .arg(layout.camera.completeFrames)
                              .arg(layout.camera.incompleteFrames)
                              .arg(layout.camera.missingPackets)
                              .arg(layout.camera.resentPackets)
                    }
                    RowLayout {
                        Button {
                            objectName: "acquisition"
                            text: layout.camera.acquiring ? qsTr("Stop") : qsTr("Start")
                            enabled: layout.camera.connected && !layout.camera.lost
                            onClicked: layout.camera.acquiring ? layout.camera.stopAcquisition()
                                                               : layout.camera.startAcquisition()
                        }
                        CheckBox {
                            objectName: "autoRange"
                            visible: layout.live.hasRange
                            text: qsTr("Automatic range")
                            checked: layout.live.autoRange
                            onToggled: layout.live.autoRange = checked
                        }
                        RangeSlider {
                            objectName: "range"
                            Layout.fillWidth: true
                            visible: layout.live.hasRange && !layout.live.autoRange
                            from: 0
                            to: layout.live.rangeMaximum
                            stepSize: 1
                            first.value: layout.live.rangeLow
                            second.value: layout.live.rangeHigh
                            first.onMoved: layout.live.rangeLow = first.value
                            second.onMoved: layout.live.rangeHigh = second.value
                        }
                    }
                    Label {
                        objectName: "requestMessage"
                        Layout.fillWidth: true
                        visible: text !== ""
                        wrapMode: Text.Wrap
                        color: "#D04040"
                        text: layout.camera.requestMessage
                    }
                }

                ColumnLayout {
                    Layout.preferredWidth: 420
                    Layout.fillHeight: true

                    Label {
                        text: qsTr("Sensor window")
                        font.bold: true
                    }
                    // Where the pictures come from on the sensor: dragged, then applied on release.
                    WindowEditor {
                        id: sensor
                        objectName: "sensorWindow"
                        Layout.preferredWidth: 200
                        Layout.preferredHeight: layout.camera.sensorSize.width > 0
                            ? 200 * layout.camera.sensorSize.height / layout.camera.sensorSize.width
                            : 150
                        visible: layout.camera.hasSensorWindow
                        enabled: layout.camera.connected && !layout.camera.lost
                        maxSize: layout.camera.sensorSize
                        minSize: layout.camera.minSize
                        increment: layout.camera.sizeIncrement
                        offsetIncrement: layout.camera.offsetIncrement
                        window: layout.camera.sensorWindow
                        onTrackingChanged: {
                            if (!tracking)
                                layout.camera.setSensorWindow(window)
                        }

                        Connections {
                            target: layout.camera
                            function onSensorChanged() { sensor.window = layout.camera.sensorWindow }
                        }
                    }
                    Label {
                        objectName: "sensorText"
                        visible: layout.camera.hasSensorWindow
                        opacity: 0.75
                        text: qsTr("%1 x %2 at %3, %4 of %5 x %6")
                              .arg(layout.camera.sensorWindow.width)
                              .arg(layout.camera.sensorWindow.height)
                              .arg(layout.camera.sensorWindow.x)
                              .arg(layout.camera.sensorWindow.y)
                              .arg(layout.camera.sensorSize.width)
                              .arg(layout.camera.sensorSize.height)
                    }

                    RowLayout {
                        Layout.fillWidth: true
                        Layout.topMargin: 6

                        ComboBox {
                            objectName: "visibility"
                            model: [qsTr("Beginner"), qsTr("Expert"), qsTr("Guru")]
                            currentIndex: layout.features.visibility
                            onActivated: index => layout.features.visibility = index
                        }
                        TextField {
                            objectName: "filter"
                            Layout.fillWidth: true
                            placeholderText: qsTr("Find a feature")
                            onTextEdited: layout.features.filterText = text
                        }
                    }
                    Label {
                        objectName: "hiddenFeatures"
                        visible: layout.features.hiddenCount > 0
                        opacity: 0.7
                        text: qsTr("%n more feature(s) at a higher visibility level", "",
                                   layout.features.hiddenCount)
                    }

                    FeatureTree {
                        objectName: "featureTree"
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        features: layout.features
                    }
                }
            }
        }
    }
}
