// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.12
import QtQuick.Controls 2.5
import QtQuick.Layouts 1.12
import kivcamui 1.0
import kivui 1.0

// Assembles a camera by hand, in three columns: a camera type; the device that carries both
// control and video, or a control device and a video device; then the parameters of a custom
// camera and of its devices. Every opening searches for devices anew. The host reads
// cameraSelector.cameraInfo after accepted().
//
// Where the rows and the inline components reach the dialog by its id, qmllint of Qt 6.4 wants
// them in components bound to this file (pragma ComponentBehavior: Bound), of which Qt 6.4 makes
// no list highlight: those places are marked.
Dialog {
    id: cameraSelectorDlg

    property CustomCameraSelectorModel cameraSelector: CustomCameraSelectorModel {}

    x: 32
    y: 32
    width: parent ? parent.width - 64 : 0
    height: parent ? parent.height - 64 : 0
    padding: 1
    modal: true
    closePolicy: Popup.NoAutoClose
    title: qsTr("Custom Camera Selector")

    onAboutToShow: cameraSelector.scan()

    // The current row of a list: a bar at its left edge.
    component RowHighlight: Rectangle {
        color: "#48484F"
        Rectangle {
            width: 4
            height: parent.height
            color: "#18AAE2"
        }
    }

    // A 40-pixel square with a picture, or the icon font's glyph where there is none, and an
    // orange bar at its left edge for something that cannot connect.
    component IconCell: Item {
        property bool cannotConnect: false
        property bool hasPicture: false
        property string picture: ""
        property string glyph: ""

        width: 40
        height: 40
        Rectangle {
            objectName: "cannotConnectBar"
            width: 4
            height: parent.height
            color: "#ff6a00"
            visible: parent.cannotConnect
        }
        Image {
            anchors.centerIn: parent
            width: 32
            height: 32
            fillMode: Image.PreserveAspectFit
            source: parent.hasPicture ? parent.picture : ""
            visible: parent.hasPicture
        }
        Label {
            anchors.centerIn: parent
            visible: !parent.hasPicture
            // qmllint disable unqualified
            font.family: fontAwesome.name // the host's icon font, found by its id
            // qmllint enable unqualified
            font.pixelSize: 24
            text: parent.glyph
        }
    }

    // One line of text, shown as it is even where a name looks like markup.
    component LineLabel: Label {
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
        textFormat: Text.PlainText
    }

    // A list of devices whose current row follows the model's index; a click asks the model
    // to choose the row, and a row the camera type cannot use takes no click.
    component DeviceList: ListView {
        property int selectedIndex: -1
        signal chosen(int index)

        Layout.fillWidth: true
        Layout.fillHeight: true
        clip: true
        currentIndex: selectedIndex
        // Written out as components: inside an inline component they are not made implicitly.
        // Their rows reach their own view through ListView.view: the view's id would name the
        // first view made from this component.
        highlight: Component {
            RowHighlight {}
        }
        highlightMoveDuration: 0
        highlightMoveVelocity: -1

        delegate: Component {
            Rectangle {
                id: deviceRow
                required property var model
                required property int index
                readonly property var device: model.item
                readonly property var transport: device.interface
                readonly property var cameraInfo: cameraSelectorDlg.cameraSelector.cameraInfo // qmllint disable unqualified
                // A row disabled under the mouse may still say that it contains it.
                readonly property bool hovered: enabled && deviceMouse.containsMouse

                objectName: "deviceRow"
                width: ListView.view.width
                height: 40
                enabled: cameraInfo !== null && cameraInfo.camera.isSupportedBaseDeviceType(device.baseType)
                color: hovered && !ListView.isCurrentItem ? "#48484F" : "transparent"

                // Found devices stand indented under their transport's placeholder.
                IconCell {
                    objectName: "iconCell"
                    x: deviceRow.device.isFound ? 44 : 0
                    cannotConnect: !deviceRow.device.canConnect
                    hasPicture: deviceRow.device.isFound ? deviceRow.device.iconExists
                                                         : deviceRow.transport !== null && deviceRow.transport.iconExists
                    picture: deviceRow.device.isFound ? deviceRow.device.icon
                                                      : deviceRow.transport !== null ? deviceRow.transport.icon : ""
                    glyph: "\uf29c"
                }
                Column {
                    visible: !deviceRow.device.isFound
                    anchors.left: parent.left
                    anchors.leftMargin: 40
                    anchors.right: parent.right
                    LineLabel {
                        objectName: "placeholderName"
                        width: parent.width
                        height: 20
                        text: (deviceRow.transport !== null ? deviceRow.transport.displayName : "")
                              + " : " + deviceRow.device.deviceName
                    }
                    LineLabel {
                        objectName: "placeholderDescription"
                        width: parent.width
                        height: 20
                        text: deviceRow.transport !== null ? deviceRow.transport.description : ""
                    }
                }
                LineLabel {
                    objectName: "deviceName"
                    visible: deviceRow.device.isFound
                    anchors.left: parent.left
                    anchors.leftMargin: 88
                    anchors.right: parent.right
                    height: 40
                    text: deviceRow.device.interfaceName + " : " + deviceRow.device.deviceName
                }
                MouseArea {
                    id: deviceMouse
                    anchors.fill: parent
                    hoverEnabled: true
                    // The view is a DeviceList, which qmllint cannot tell from ListView.view.
                    onClicked: deviceRow.ListView.view.chosen(deviceRow.index) // qmllint disable type
                }
                ToolTip.visible: hovered && !device.canConnect
                ToolTip.delay: 500
                ToolTip.text: device.errorMessage
            }
        }
    }

    // A combo box that shows its names as they are, in the box and in its list. Its text finds
    // the box through its parent, not through an id (see DeviceList).
    component NameComboBox: ComboBox {
        contentItem: LineLabel {
            leftPadding: 8
            color: parent ? parent.palette.buttonText : "black"
            text: parent ? (parent as ComboBox).displayText : ""
        }
        delegate: Component {
            ItemDelegate {
                id: option
                required property string modelData
                width: ListView.view.width
                highlighted: ListView.isCurrentItem
                contentItem: LineLabel {
                    text: option.modelData
                }
            }
        }
    }

    component SectionHeader: Rectangle {
        property alias text: headerLabel.text
        width: parent.width
        height: 40
        color: "#48484F"
        LineLabel {
            id: headerLabel
            height: parent.height
            padding: 8
        }
    }

    // A device's parameters, each with the editor its writability and values call for. Where
    // mirrored, an edit is also made to the video device's parameter of the same index.
    component ParameterList: ListView {
        property bool mirrored: false

        function write(parameter, key, value) {
            parameter[key] = value
            const camera = cameraSelectorDlg.cameraSelector.cameraInfo // qmllint disable unqualified
            const twin = mirrored && camera ? camera.video.parameters.at(parameter.index) : null
            if (twin)
                twin[key] = value
        }

        width: parent.width
        height: contentHeight
        interactive: false

        // Written out, as in DeviceList. The view is a ParameterList, which qmllint cannot tell
        // from ListView.view.
        delegate: Component {
            Item {
                id: parameterRow
                required property var model
                readonly property var parameter: model.item

                objectName: "parameterRow"
                width: ListView.view.width
                height: 40

                LineLabel {
                    width: parent.width / 2
                    height: parent.height
                    leftPadding: 8
                    text: parameterRow.parameter.displayName
                }
                Item {
                    x: parent.width / 2
                    width: parent.width / 2
                    height: parent.height

                    LineLabel {
                        objectName: "valueLabel"
                        visible: !parameterRow.parameter.isWritable
                        anchors.fill: parent
                        text: parameterRow.parameter.value
                    }
                    TextField {
                        objectName: "valueField"
                        visible: parameterRow.parameter.isWritable && !parameterRow.parameter.hasAllowedValues
                        anchors.fill: parent
                        selectByMouse: true
                        text: parameterRow.parameter.value
                        onEditingFinished: parameterRow.ListView.view.write(parameterRow.parameter, "value", text) // qmllint disable type
                    }
                    NameComboBox {
                        objectName: "valueCombo"
                        visible: parameterRow.parameter.isWritable && parameterRow.parameter.hasAllowedValues
                        anchors.fill: parent
                        model: parameterRow.parameter.allowedValues
                        currentIndex: parameterRow.parameter.valueIndex
                        onActivated: index => parameterRow.ListView.view.write(parameterRow.parameter, "valueIndex", index) // qmllint disable type
                    }
                }
            }
        }
    }

    // Says why a parameter list is empty: no description, no device, or a device without
    // parameters.
    component ParameterMessage: LineLabel {
        property bool noDevice: false
        property int count: 0
        readonly property var cameraInfo: cameraSelectorDlg.cameraSelector.cameraInfo // qmllint disable unqualified

        width: parent.width
        height: 40
        horizontalAlignment: Text.AlignHCenter
        visible: noDevice || cameraInfo === null || count === 0
        text: cameraInfo === null ? "No camera selected" : noDevice ? "No Device Selected" : "No Parameters"
    }

    // A camera property edited as text; numbers are converted by QML on the way back.
    component CameraField: TextField {
        property string key: ""
        readonly property var cameraInfo: cameraSelectorDlg.cameraSelector.cameraInfo // qmllint disable unqualified

        width: parent.width / 2
        height: 40
        selectByMouse: true
        text: cameraInfo !== null ? cameraInfo[key] : ""
        onEditingFinished: {
            if (cameraInfo !== null)
                cameraInfo[key] = text
        }
    }

    // A camera property chosen by index from a list of names.
    component CameraCombo: NameComboBox {
        property string names: ""
        property string key: ""
        readonly property var cameraInfo: cameraSelectorDlg.cameraSelector.cameraInfo // qmllint disable unqualified

        width: parent.width / 2
        height: 40
        model: cameraInfo !== null ? cameraInfo[names] : null
        currentIndex: cameraInfo !== null ? cameraInfo[key] : -1
        onActivated: index => {
            if (cameraInfo !== null)
                cameraInfo[key] = index
        }
    }

    component GridLabel: LineLabel {
        width: parent.width / 2
        height: 40
        leftPadding: 8
    }

    Item {
        anchors.fill: parent
        anchors.margins: 8

        Label {
            objectName: "scanningLabel"
            anchors.centerIn: parent
            visible: cameraSelectorDlg.cameraSelector.scanning
            text: "Scanning..."
        }

        Item {
            objectName: "columns"
            anchors.fill: parent
            visible: !cameraSelectorDlg.cameraSelector.scanning

            ListView {
                id: cameraList
                objectName: "cameraList"
                anchors.left: parent.left
                anchors.top: parent.top
                anchors.bottom: parent.bottom
                width: (parent.width - 10) / 3
                clip: true
                model: cameraSelectorDlg.cameraSelector.cameras
                currentIndex: cameraSelectorDlg.cameraSelector.selectedCameraIndex
                highlight: RowHighlight {}
                highlightMoveDuration: 0
                highlightMoveVelocity: -1
                ScrollBar.vertical: ScrollBar {}

                delegate: Rectangle {
                    id: cameraRow
                    required property var model
                    required property int index
                    readonly property var camera: model.item

                    objectName: "cameraRow"
                    width: ListView.view.width
                    height: 40
                    color: cameraMouse.containsMouse && !ListView.isCurrentItem ? "#48484F" : "transparent"

                    IconCell {
                        hasPicture: cameraRow.camera.iconExists
                        picture: cameraRow.camera.icon
                        glyph: "\uf030"
                    }
                    Column {
                        anchors.left: parent.left
                        anchors.leftMargin: 40
                        anchors.right: parent.right
                        LineLabel {
                            objectName: "cameraName"
                            width: parent.width
                            height: 20
                            text: cameraRow.camera.displayName
                        }
                        LineLabel {
                            objectName: "cameraDescription"
                            width: parent.width
                            height: 20
                            text: cameraRow.camera.description
                        }
                    }
                    MouseArea {
                        id: cameraMouse
                        anchors.fill: parent
                        hoverEnabled: true
                        onClicked: cameraSelectorDlg.cameraSelector.selectedCameraIndex = cameraRow.index // qmllint disable unqualified
                    }
                }
            }

            ColumnLayout {
                objectName: "deviceColumn"
                anchors.left: cameraList.right
                anchors.leftMargin: 5
                anchors.right: parameterView.left
                anchors.rightMargin: 5
                anchors.top: parent.top
                anchors.bottom: parent.bottom

                DeviceList {
                    objectName: "deviceList"
                    visible: cameraSelectorDlg.cameraSelector.useSameDevice
                    model: cameraSelectorDlg.cameraSelector.devices
                    selectedIndex: cameraSelectorDlg.cameraSelector.selectedDeviceIndex
                    onChosen: index => cameraSelectorDlg.cameraSelector.selectedDeviceIndex = index
                    ScrollIndicator.vertical: ScrollIndicator {}
                }
                Label {
                    visible: !cameraSelectorDlg.cameraSelector.useSameDevice
                    text: qsTr("Communications Device")
                }
                DeviceList {
                    objectName: "commDeviceList"
                    visible: !cameraSelectorDlg.cameraSelector.useSameDevice
                    model: cameraSelectorDlg.cameraSelector.commDevices
                    selectedIndex: cameraSelectorDlg.cameraSelector.selectedCommDeviceIndex
                    onChosen: index => cameraSelectorDlg.cameraSelector.selectedCommDeviceIndex = index
                    ScrollBar.vertical: ScrollBar {}
                }
                Label {
                    visible: !cameraSelectorDlg.cameraSelector.useSameDevice
                    text: qsTr("Video Device")
                }
                DeviceList {
                    objectName: "videoDeviceList"
                    visible: !cameraSelectorDlg.cameraSelector.useSameDevice
                    model: cameraSelectorDlg.cameraSelector.videoDevices
                    selectedIndex: cameraSelectorDlg.cameraSelector.selectedVideoDeviceIndex
                    onChosen: index => cameraSelectorDlg.cameraSelector.selectedVideoDeviceIndex = index
                    ScrollBar.vertical: ScrollBar {}
                }
                CheckBox {
                    objectName: "useSameDevice"
                    text: qsTr("Use same device for comm and video.")
                    checked: cameraSelectorDlg.cameraSelector.useSameDevice
                    onToggled: cameraSelectorDlg.cameraSelector.useSameDevice = checked
                }
            }

            ScrollView {
                id: parameterView
                objectName: "parameterView"
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.bottom: parent.bottom
                width: (parent.width - 10) / 3
                clip: true

                Column {
                    id: parameterColumn
                    readonly property var selector: cameraSelectorDlg.cameraSelector
                    readonly property var cameraInfo: selector.cameraInfo

                    width: parameterView.availableWidth

                    // What keeps the description from connecting, said before Connect is
                    // pressed; the description is replaced whenever that changes.
                    Item {
                        objectName: "cannotConnectMessage"
                        visible: parent.cameraInfo !== null && !parent.cameraInfo.canConnect
                        width: parent.width
                        height: visible ? cannotConnectText.implicitHeight + 16 : 0
                        Rectangle {
                            width: 4
                            height: parent.height
                            color: "#ff6a00"
                        }
                        Label {
                            id: cannotConnectText
                            objectName: "cannotConnectText"
                            x: 12
                            y: 8
                            width: parent.width - 20
                            wrapMode: Text.Wrap
                            textFormat: Text.PlainText
                            text: parameterColumn.cameraInfo !== null
                                  ? parameterColumn.cameraInfo.errorSummary + "\n"
                                    + parameterColumn.cameraInfo.errorMessage
                                  : ""
                        }
                    }

                    SectionHeader {
                        objectName: "cameraParametersHeader"
                        visible: cameraGrid.visible
                        text: qsTr("Camera Parameters")
                    }
                    Grid {
                        id: cameraGrid
                        objectName: "cameraGrid"
                        visible: parent.selector.selectedCamera !== null && parent.selector.selectedCamera.isCustom
                        width: parent.width
                        columns: 2
                        spacing: 0

                        GridLabel { text: qsTr("Identity:") }
                        CameraField { objectName: "identityField"; key: "identity" }
                        GridLabel { text: qsTr("Controller:") }
                        CameraCombo { objectName: "controllerCombo"; names: "controllerNames"; key: "controllerIndex" }
                        GridLabel { text: qsTr("Pixel Type:") }
                        CameraCombo { objectName: "pixelTypeCombo"; names: "pixelTypeNames"; key: "pixelTypeIndex" }
                        GridLabel { text: qsTr("Width:") }
                        CameraField { objectName: "widthField"; key: "width" }
                        GridLabel { text: qsTr("Height:") }
                        CameraField { objectName: "heightField"; key: "height" }
                        GridLabel { text: qsTr("Crop Left:") }
                        CameraField { objectName: "cropLeftField"; key: "cropLeft" }
                        GridLabel { text: qsTr("Crop Top:") }
                        CameraField { objectName: "cropTopField"; key: "cropTop" }
                        GridLabel { text: qsTr("Crop Right:") }
                        CameraField { objectName: "cropRightField"; key: "cropRight" }
                        GridLabel { text: qsTr("Crop Bottom:") }
                        CameraField { objectName: "cropBottomField"; key: "cropBottom" }
                        GridLabel { text: qsTr("AD Bits:") }
                        CameraField { objectName: "adBitsField"; key: "adBits" }
                        GridLabel { text: qsTr("AD Bit Shift:") }
                        CameraField { objectName: "adBitShiftField"; key: "adBitShift" }
                    }

                    SectionHeader {
                        objectName: "commParametersHeader"
                        text: parent.selector.useSameDevice ? qsTr("Device Parameters")
                                                            : qsTr("Communications Device Parameters")
                    }
                    ParameterList {
                        objectName: "commParameterList"
                        model: parent.cameraInfo !== null ? parent.cameraInfo.comm.parameters : null
                        mirrored: parent.selector.useSameDevice
                    }
                    ParameterMessage {
                        objectName: "commParameterMessage"
                        noDevice: parent.selector.useSameDevice ? parent.selector.selectedDevice === null
                                                                : parent.selector.selectedCommDevice === null
                        count: parent.cameraInfo !== null ? parent.cameraInfo.comm.parameters.size : 0
                    }

                    SectionHeader {
                        objectName: "videoParametersHeader"
                        visible: !parent.selector.useSameDevice
                        text: qsTr("Video Device Parameters")
                    }
                    ParameterList {
                        objectName: "videoParameterList"
                        visible: !parent.selector.useSameDevice
                        model: parent.cameraInfo !== null ? parent.cameraInfo.video.parameters : null
                    }
                    ParameterMessage {
                        objectName: "videoParameterMessage"
                        visible: !parent.selector.useSameDevice && (noDevice || cameraInfo === null || count === 0)
                        noDevice: parent.selector.selectedVideoDevice === null
                        count: parent.cameraInfo !== null ? parent.cameraInfo.video.parameters.size : 0
                    }
                }
            }
        }
    }

    footer: DialogButtonBox {
        // Each button acts through its own handler alone, and one role for all keeps them in
        // this order whatever the platform's button layout. The roles are DialogButtonBox's,
        // declared by the platform dialog helper, where the qmllint of Qt 6.4 does not look:
        // hence the directive on each role.
        DialogButtonBoxHelper.enabled: true

        Button {
            objectName: "cancelButton"
            text: qsTr("Cancel")
            DialogButtonBox.buttonRole: DialogButtonBox.ActionRole // qmllint disable type
            onClicked: cameraSelectorDlg.close()
        }
        Button {
            objectName: "scanButton"
            text: qsTr("Scan")
            DialogButtonBox.buttonRole: DialogButtonBox.ActionRole // qmllint disable type
            onClicked: cameraSelectorDlg.cameraSelector.scan()
        }
        Button {
            objectName: "connectButton"
            text: qsTr("Connect")
            DialogButtonBox.buttonRole: DialogButtonBox.ActionRole // qmllint disable type
            onClicked: {
                cameraSelectorDlg.accepted()
                cameraSelectorDlg.close()
            }
        }
    }
}
