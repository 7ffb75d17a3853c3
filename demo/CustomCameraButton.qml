// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// A toolbar action that opens the library's custom camera dialog over the whole window and asks
// for the camera assembled in it to be connected.
ToolAction {
    id: button

    // The dialog, made once and kept, so that its choices survive closing it.
    property var dialog: null

    // After openExample(), once the example is chosen.
    signal exampleShown()
    // The user accepted the dialog with this camera.
    signal connectRequested(var camera)
    // The user accepted the dialog without having chosen a camera.
    signal nothingChosen()

    glyph: "\uf0ad"
    text: "Custom camera..."
    onClicked: dialog.open()

    // Opens the dialog and, once its search has ended, chooses a Kelvin 640 on the first device
    // entered by hand that it can use.
    function openExample() {
        dialog.cameraSelector.scanningChanged.connect(chooseExample)
        dialog.open()
    }
    function chooseExample() {
        const selector = dialog.cameraSelector
        if (selector.scanning)
            return
        selector.scanningChanged.disconnect(chooseExample)
        for (let i = 0; i < selector.cameras.size; ++i) {
            if (selector.cameras.at(i).name === "Kelvin640")
                selector.selectedCameraIndex = i
        }
        for (let i = 0; selector.selectedCamera && i < selector.devices.size; ++i) {
            const device = selector.devices.at(i)
            if (!device.isFound && selector.selectedCamera.isSupportedBaseDeviceType(device.baseType)) {
                selector.selectedDeviceIndex = i
                break
            }
        }
        exampleShown()
    }

    Component.onCompleted: {
        const component = Qt.createComponent("qrc:/kivcamui/dialogs/CustomCameraSelectorDialog.qml")
        if (component.status !== Component.Ready) {
            console.warn(component.errorString())
            return
        }
        dialog = component.createObject(Overlay.overlay)
        dialog.cameraSelector.enableEmulators = true
        dialog.accepted.connect(() => {
            const camera = dialog.cameraSelector.cameraInfo
            if (camera)
                button.connectRequested(camera)
            else
                button.nothingChosen()
        })
    }
}
