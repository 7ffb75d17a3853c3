// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.12
import QtQuick.Controls 2.5
import QtQuick.Layouts 1.12
import kivcamui 1.0
import kivui 1.0

// The full camera chooser: the cameras found beside the parameters of the selected camera's
// communication device, which the user may edit before connecting. The host reads `camera`
// after accepted(). The camera list has the keyboard focus as the dialog opens: Up and Down move
// the selection, Tab goes on to the parameters and the buttons.
//
// Where the rows and the highlight reach the dialog by its ids, qmllint of Qt 6.4 wants them in
// components bound to this file (pragma ComponentBehavior: Bound), of which Qt 6.4 makes no list
// highlight: those places are marked.
Dialog {
    id: dialog

    property CameraFinderModel cameraFinder: CameraFinderModel {}
    property color hoverColor: "#48484F"
    property color highlightColor: "#22222B"
    property alias camera: cameraList.selectedCamera

    x: 32
    y: 32
    width: parent ? parent.width - 64 : 0
    height: parent ? parent.height - 64 : 0
    padding: 1
    modal: true
    focus: true
    closePolicy: Popup.NoAutoClose

    onAboutToShow: cameraFinder.scan()

    Item {
        anchors.fill: parent
        anchors.margins: 8

        RowLayout {
            anchors.fill: parent
            spacing: 8

            ListView {
                id: cameraList
                objectName: "cameraList"

                readonly property var selectedCamera: dialog.cameraFinder.scanning
                                                      ? null
                                                      : dialog.cameraFinder.cameras.at(currentIndex)

                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                clip: true
                focus: true
                activeFocusOnTab: true
                keyNavigationEnabled: true
                model: dialog.cameraFinder.cameras
                // Enter connects the selected camera, as "Connect" does, when it may.
                function connectSelected() {
                    if (connectButton.enabled)
                        connectButton.clicked()
                }
                Keys.onReturnPressed: connectSelected()
                Keys.onEnterPressed: connectSelected()
                ScrollIndicator.vertical: ScrollIndicator {}
                // Framed while the list has the keyboard focus.
                highlight: Rectangle {
                    color: dialog.highlightColor // qmllint disable unqualified
                    border.width: cameraList.activeFocus ? 2 : 0 // qmllint disable unqualified
                    border.color: "#18AAE2"
                }
                highlightMoveDuration: 0

                delegate: Rectangle {
                    id: cameraRow
                    required property var model
                    required property int index
                    readonly property var camera: model.item

                    objectName: "cameraRow"
                    width: ListView.view.width
                    height: 40
                    // Over the highlight: the current row too takes the hover colour.
                    color: rowMouse.containsMouse ? dialog.hoverColor : "transparent" // qmllint disable unqualified

                    Item {
                        id: iconCell
                        width: 40
                        height: 40
                        Rectangle {
                            width: 4
                            height: parent.height
                            color: "#ff6a00"
                            visible: !cameraRow.camera.canConnect
                        }
                        Image {
                            anchors.centerIn: parent
                            width: 32
                            height: 32
                            fillMode: Image.PreserveAspectFit
                            source: cameraRow.camera.iconExists ? cameraRow.camera.icon : ""
                            visible: cameraRow.camera.iconExists
                        }
                        Text {
                            anchors.centerIn: parent
                            visible: !cameraRow.camera.iconExists
                            // qmllint disable unqualified
                            font.family: fontAwesome.name // the host's icon font, found by its id
                            // qmllint enable unqualified
                            font.pixelSize: 24
                            color: "#E8E8EE"
                            text: "\uf030"
                        }
                    }
                    Label {
                        anchors.left: iconCell.right
                        anchors.right: parent.right
                        height: parent.height
                        leftPadding: 8
                        verticalAlignment: Text.AlignVCenter
                        elide: Text.ElideRight
                        textFormat: Text.PlainText
                        text: cameraRow.camera.identity + " (" + cameraRow.camera.comm.baseType + ")"
                    }
                    MouseArea {
                        id: rowMouse
                        anchors.fill: parent
                        hoverEnabled: true
                        onClicked: cameraRow.ListView.view.currentIndex = cameraRow.index
                    }
                    ToolTip.visible: rowMouse.containsMouse && !camera.canConnect
                    ToolTip.delay: 500
                    ToolTip.text: camera.errorMessage
                }

                Label {
                    objectName: "cameraListMessage"
                    anchors.centerIn: parent
                    visible: dialog.cameraFinder.scanning || dialog.cameraFinder.cameras.size === 0
                    text: dialog.cameraFinder.scanning ? "Scanning..." : "No cameras found"
                }
            }

            ListView {
                id: parameterList
                objectName: "parameterList"
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                clip: true
                visible: !dialog.cameraFinder.scanning
                model: dialog.camera ? dialog.camera.comm.parameters : null
                ScrollIndicator.vertical: ScrollIndicator {}

                delegate: Item {
                    id: parameterRow
                    required property var model
                    readonly property var parameter: model.item

                    objectName: "parameterRow"
                    width: ListView.view.width
                    height: 40

                    Label {
                        width: parent.width / 2
                        height: parent.height
                        verticalAlignment: Text.AlignVCenter
                        elide: Text.ElideRight
                        textFormat: Text.PlainText
                        text: parameterRow.parameter.name
                    }
                    Item {
                        x: parent.width / 2 + 16
                        width: parent.width / 2 - 16
                        height: parent.height

                        Label {
                            objectName: "valueLabel"
                            visible: !parameterRow.parameter.isWritable
                            anchors.fill: parent
                            verticalAlignment: Text.AlignVCenter
                            elide: Text.ElideRight
                            textFormat: Text.PlainText
                            text: parameterRow.parameter.value
                        }
                        TextField {
                            objectName: "valueField"
                            visible: parameterRow.parameter.isWritable
                                     && !parameterRow.parameter.hasAllowedValues
                            anchors.fill: parent
                            selectByMouse: true
                            text: parameterRow.parameter.value
                            onEditingFinished: parameterRow.parameter.value = text
                        }
                        ComboBox {
                            id: valueCombo
                            objectName: "valueCombo"
                            visible: parameterRow.parameter.isWritable
                                     && parameterRow.parameter.hasAllowedValues
                            anchors.fill: parent
                            model: parameterRow.parameter.allowedValues
                            currentIndex: parameterRow.parameter.valueIndex
                            onActivated: index => parameterRow.parameter.valueIndex = index
                            // Names such as "gen<i>cam" are shown as they are, never as markup.
                            contentItem: Text {
                                leftPadding: 8
                                verticalAlignment: Text.AlignVCenter
                                elide: Text.ElideRight
                                textFormat: Text.PlainText
                                color: valueCombo.palette.buttonText
                                text: valueCombo.displayText
                            }
                            delegate: ItemDelegate {
                                id: option
                                required property string modelData
                                required property int index
                                width: valueCombo.width // qmllint disable unqualified
                                highlighted: valueCombo.highlightedIndex === index // qmllint disable unqualified
                                contentItem: Text {
                                    verticalAlignment: Text.AlignVCenter
                                    elide: Text.ElideRight
                                    textFormat: Text.PlainText
                                    color: valueCombo.palette.text // qmllint disable unqualified
                                    text: option.modelData
                                }
                            }
                        }
                    }
                }

                Label {
                    objectName: "parameterListMessage"
                    anchors.centerIn: parent
                    visible: !dialog.camera || dialog.camera.comm.parameters.size === 0
                    text: !dialog.camera ? "No camera selected" : "No properties"
                }
            }
        }
    }

    // The roles are DialogButtonBox's, declared by the platform dialog helper, where the qmllint
    // of Qt 6.4 does not look: hence the directive on each role.
    footer: DialogButtonBox {
        DialogButtonBoxHelper.enabled: true

        Button {
            objectName: "scanButton"
            text: qsTr("Scan")
            DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole // qmllint disable type
            enabled: !dialog.cameraFinder.scanning
            onClicked: dialog.cameraFinder.scan()
        }
        Button {
            id: connectButton
            objectName: "connectButton"
            text: qsTr("Connect")
            DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole // qmllint disable type
            enabled: dialog.camera !== null && dialog.camera.canConnect
            onClicked: dialog.accept()
        }
        Button {
            objectName: "cancelButton"
            text: qsTr("Cancel")
            DialogButtonBox.buttonRole: DialogButtonBox.RejectRole // qmllint disable type
            onClicked: dialog.reject()
        }
    }
}
