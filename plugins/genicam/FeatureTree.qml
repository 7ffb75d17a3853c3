// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The feature tree of a GenICam camera: categories that open and close, and for each feature the
// editor its type calls for. A value goes to the camera when it is entered; a refused one shows
// the reason under its row, and the row keeps the value the camera holds.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import kivcamuiGenICam 1.0

TreeView {
    id: tree

    required property GenICamFeatureModel features

    model: features
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: ScrollBar {}

    // Every category open, each time the tree is given anew (a camera's tree, a change of the
    // filters). Once the view has taken the reset in: before, it would close them again.
    Connections {
        target: tree.features
        function onModelReset() { Qt.callLater(tree.expandRecursively) }
    }
    Component.onCompleted: expandRecursively()

    delegate: Item {
        id: entry

        required property TreeView treeView
        required property bool expanded
        required property int hasChildren
        required property int depth
        required property int row
        required property string name
        required property string displayName
        required property string description
        required property int type
        required property bool writable
        required property string accessReason
        required property string value
        required property var minimum
        required property var maximum
        required property var increment
        required property string unit
        required property var entries
        required property string error
        required property bool busy
        required property string readError

        readonly property bool category: type === GenICamFeatureModel.CATEGORY
        readonly property var index: entry.treeView.modelIndex(Qt.point(0, entry.row))

        implicitWidth: entry.treeView.width
        implicitHeight: lines.implicitHeight + 6

        ColumnLayout {
            id: lines
            x: 6 + entry.depth * 16
            width: entry.implicitWidth - x - 6
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2

            RowLayout {
                Layout.fillWidth: true
                spacing: 6

                Label {
                    Layout.preferredWidth: entry.category ? -1 : 150
                    Layout.fillWidth: entry.category
                    elide: Text.ElideRight
                    font.bold: entry.category
                    text: (entry.category ? (entry.expanded ? "\u25be " : "\u25b8 ") : "")
                          + entry.displayName
                    ToolTip.visible: hover.hovered && entry.description !== ""
                    ToolTip.text: entry.name + ": " + entry.description

                    HoverHandler { id: hover }
                    TapHandler {
                        enabled: entry.category
                        onTapped: entry.treeView.toggleExpanded(entry.row)
                    }
                }

                // Numbers and texts: entered, then sent.
                TextField {
                    objectName: "edit_" + entry.name
                    Layout.fillWidth: true
                    visible: !entry.category && entry.writable
                             && (entry.type === GenICamFeatureModel.INTEGER
                                 || entry.type === GenICamFeatureModel.FLOAT
                                 || entry.type === GenICamFeatureModel.STRING)
                    enabled: !entry.busy
                    text: entry.value
                    selectByMouse: true
                    onAccepted: entry.treeView.model.setValue(entry.index, text)
                }
                ComboBox {
                    objectName: "choose_" + entry.name
                    Layout.fillWidth: true
                    visible: !entry.category && entry.writable
                             && entry.type === GenICamFeatureModel.ENUMERATION
                    enabled: !entry.busy
                    model: entry.entries
                    currentIndex: entry.entries ? entry.entries.indexOf(entry.value) : -1
                    onActivated: index => entry.treeView.model.setValue(entry.index, entry.entries[index])
                }
                CheckBox {
                    objectName: "check_" + entry.name
                    visible: !entry.category && entry.writable
                             && entry.type === GenICamFeatureModel.BOOLEAN
                    enabled: !entry.busy
                    checked: entry.value === "true"
                    onToggled: entry.treeView.model.setValue(entry.index, checked ? "true" : "false")
                }
                Button {
                    objectName: "run_" + entry.name
                    visible: !entry.category && entry.writable
                             && entry.type === GenICamFeatureModel.COMMAND
                    enabled: !entry.busy
                    text: qsTr("Execute")
                    onClicked: entry.treeView.model.execute(entry.index)
                }
                // What cannot be written now: the value, and why.
                Label {
                    objectName: "value_" + entry.name
                    Layout.fillWidth: true
                    visible: !entry.category && !entry.writable
                    elide: Text.ElideRight
                    opacity: 0.7
                    text: entry.value + (entry.unit !== "" ? " " + entry.unit : "")
                    ToolTip.visible: readOnlyHover.hovered && entry.accessReason !== ""
                    ToolTip.text: entry.accessReason

                    HoverHandler { id: readOnlyHover }
                }
                Label {
                    visible: !entry.category && entry.writable && entry.unit !== ""
                    opacity: 0.7
                    text: entry.unit
                }
            }
            // The rules of a number, and what went wrong.
            Label {
                Layout.fillWidth: true
                visible: !entry.category && entry.writable
                         && (entry.type === GenICamFeatureModel.INTEGER
                             || entry.type === GenICamFeatureModel.FLOAT)
                font.pixelSize: 11
                opacity: 0.6
                text: qsTr("%1 to %2").arg(entry.minimum).arg(entry.maximum)
                      + (entry.type === GenICamFeatureModel.INTEGER && entry.increment > 1
                         ? qsTr(", step %1").arg(entry.increment) : "")
            }
            Label {
                objectName: "error_" + entry.name
                Layout.fillWidth: true
                visible: entry.error !== "" || entry.readError !== ""
                wrapMode: Text.Wrap
                font.pixelSize: 11
                color: "#D04040"
                text: entry.error !== "" ? entry.error : entry.readError
            }
        }
    }
}
