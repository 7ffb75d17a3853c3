// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtQuick.Controls
import QtTest
import kivcamui 1.0

// Over tests/kivcamui/data/devices-world.xml: camera types Kelvin640 (Camera Link), Mistral320
// (serial control, analogue video) and Nova640, then "Custom"; serial ports (control only, COM3
// cannot connect), a frame grabber (both), a capture card (video only), an emulated link (both,
// no parameters).
Item {
    id: root
    width: 1200
    height: 800

    QtObject {
        id: fontAwesome
        readonly property string name: "DejaVu Sans"
    }

    Component {
        id: spyComponent
        SignalSpy {}
    }

    TestCase {
        name: "CustomCameraSelectorDialog"
        when: windowShown

        property var dialogs: []

        readonly property int kelvin: 0
        readonly property int mistral: 1
        readonly property int custom: 3

        function makeDialog() {
            const component = Qt.createComponent("qrc:/kivcamui/dialogs/CustomCameraSelectorDialog.qml")
            verify(component.status === Component.Ready, component.errorString())
            const dialog = createTemporaryObject(component, root)
            dialogs.push(dialog)
            return dialog
        }

        // A modal dialog left open would take the next test's clicks until it is deleted.
        function cleanup() {
            for (const dialog of dialogs) {
                dialog.close()
                tryCompare(dialog, "visible", false)
            }
            dialogs = []
        }

        function openAndWait(dialog) {
            dialog.open()
            tryCompare(dialog, "opened", true)
            tryCompare(dialog.cameraSelector, "scanning", false, 10000)
        }

        function openedDialog() {
            const dialog = makeDialog()
            openAndWait(dialog)
            return dialog
        }

        function findByName(item, name) {
            if (item.objectName === name)
                return item
            const children = item.children || []
            for (let i = 0; i < children.length; ++i) {
                const found = findByName(children[i], name)
                if (found)
                    return found
            }
            return null
        }

        function part(dialog, name) {
            const item = findByName(dialog.contentItem, name)
            verify(item, name)
            return item
        }

        function button(dialog, name) {
            return findByName(dialog.footer, name)
        }

        function rowAt(list, index) {
            list.forceLayout()
            return list.itemAtIndex(index)
        }

        // The row of a list that shows this "transport/device".
        function deviceRow(list, text) {
            list.forceLayout()
            for (let i = 0; i < list.count; ++i) {
                const row = list.itemAtIndex(i)
                if (row && row.device.interfaceName + "/" + row.device.deviceName === text)
                    return row
            }
            return null
        }

        // Through the check box, as a user does; the lists are laid out at the next polish.
        function useTwoDevices(dialog) {
            mouseClick(part(dialog, "useSameDevice"))
            compare(dialog.cameraSelector.useSameDevice, false)
            const comm = part(dialog, "commDeviceList")
            tryVerify(() => comm.width > 0 && (comm.count === 0 || rowAt(comm, 0).width === comm.width))
        }

        function chooseCamera(dialog, index) {
            mouseClick(rowAt(part(dialog, "cameraList"), index))
            compare(dialog.cameraSelector.selectedCameraIndex, index)
        }

        function chooseDevice(dialog, listName, text) {
            const row = deviceRow(part(dialog, listName), text)
            verify(row, text)
            mouseClick(row)
        }

        function parameterRow(list, name) {
            list.forceLayout()
            for (let i = 0; i < list.count; ++i) {
                const row = list.itemAtIndex(i)
                if (row && row.parameter.name === name)
                    return row
            }
            return null
        }

        function typeInto(field, text) {
            field.forceActiveFocus()
            field.selectAll()
            keyClick(Qt.Key_Delete)
            for (const c of text)
                keyClick(c)
            keyClick(Qt.Key_Return)
        }

        function test_placementAndClosePolicy() {
            const dialog = openedDialog()
            compare(dialog.x, 32)
            compare(dialog.y, 32)
            compare(dialog.width, root.width - 64)
            compare(dialog.height, root.height - 64)
            compare(dialog.padding, 1)
            compare(dialog.modal, true)
            compare(dialog.closePolicy, Popup.NoAutoClose)
            compare(dialog.title, "Custom Camera Selector")
        }

        function test_escapeAndClicksOutsideDoNotClose() {
            const dialog = openedDialog()
            keyClick(Qt.Key_Escape)
            mouseClick(root, 5, 5)
            wait(50)
            compare(dialog.visible, true)
        }

        function test_everyOpeningScansAndShowsOnlyTheScanningLine() {
            const dialog = makeDialog()
            const scans = createTemporaryObject(spyComponent, root,
                                                { target: dialog.cameraSelector, signalName: "scanningChanged" })
            const scanning = part(dialog, "scanningLabel")
            const columns = part(dialog, "columns")
            for (let opening = 0; opening < 2; ++opening) {
                dialog.open()
                compare(dialog.cameraSelector.scanning, true)
                compare(scanning.visible, true)
                compare(scanning.text, "Scanning...")
                compare(columns.visible, false)
                tryCompare(dialog.cameraSelector, "scanning", false, 10000)
                compare(scanning.visible, false)
                compare(columns.visible, true)
                dialog.close()
                tryCompare(dialog, "visible", false)
            }
            compare(scans.count, 4)
        }

        function test_footerButtonsInTheirOrder() {
            const dialog = openedDialog()
            const cancel = button(dialog, "cancelButton")
            const scan = button(dialog, "scanButton")
            const connect = button(dialog, "connectButton")
            compare(cancel.text, "Cancel")
            compare(scan.text, "Scan")
            compare(connect.text, "Connect")
            const x = b => b.mapToItem(root, 0, 0).x
            verify(x(cancel) < x(scan), "Cancel before Scan")
            verify(x(scan) < x(connect), "Scan before Connect")
        }

        function test_connectWithNothingChosenAccepts() {
            const dialog = openedDialog()
            const accepted = createTemporaryObject(spyComponent, root, { target: dialog, signalName: "accepted" })
            compare(dialog.cameraSelector.cameraInfo, null)
            compare(button(dialog, "connectButton").enabled, true)
            mouseClick(button(dialog, "connectButton"))
            compare(accepted.count, 1)
            tryCompare(dialog, "visible", false)
        }

        function test_connectHandsOverTheDescription() {
            const dialog = openedDialog()
            chooseCamera(dialog, kelvin)
            chooseDevice(dialog, "deviceList", "Grabber/Port 1")
            let handedOver = null
            dialog.accepted.connect(() => handedOver = dialog.cameraSelector.cameraInfo)
            mouseClick(button(dialog, "connectButton"))
            verify(handedOver !== null)
            compare(handedOver.name, "Kelvin640")
            compare(handedOver.comm.deviceName, "Port 1")
            tryCompare(dialog, "visible", false)
        }

        function test_assembledCameraConnects() {
            const standalone = createTemporaryQmlObject("import kivcamui 1.0; StandaloneModel {}", root)
            const dialog = openedDialog()
            dialog.accepted.connect(() => standalone.connect(dialog.cameraSelector.cameraInfo))
            chooseCamera(dialog, kelvin)
            chooseDevice(dialog, "deviceList", "Grabber/Port 0")
            mouseClick(button(dialog, "connectButton"))
            tryCompare(standalone, "connecting", false, 10000)
            compare(standalone.connected, true)
            compare(standalone.controllerName, "Kelvin640")
            standalone.disconnect()
        }

        function test_cancelClosesWithoutAccepting() {
            const dialog = openedDialog()
            const accepted = createTemporaryObject(spyComponent, root, { target: dialog, signalName: "accepted" })
            mouseClick(button(dialog, "cancelButton"))
            tryCompare(dialog, "visible", false)
            compare(accepted.count, 0)
        }

        function test_scanClearsTheDeviceChoiceAndKeepsTheCameraType() {
            const dialog = openedDialog()
            chooseCamera(dialog, kelvin)
            chooseDevice(dialog, "deviceList", "Grabber/Port 0")
            compare(part(dialog, "deviceList").currentIndex, 1)
            mouseClick(button(dialog, "scanButton"))
            compare(dialog.cameraSelector.scanning, true)
            compare(dialog.visible, true)
            tryCompare(dialog.cameraSelector, "scanning", false, 10000)
            compare(dialog.cameraSelector.selectedDeviceIndex, -1)
            compare(dialog.cameraSelector.selectedCameraIndex, kelvin)
            compare(part(dialog, "cameraList").currentIndex, kelvin)
            part(dialog, "deviceList").forceLayout()
            compare(part(dialog, "deviceList").currentIndex, -1)
        }

        function test_cameraRows() {
            const dialog = openedDialog()
            const list = part(dialog, "cameraList")
            compare(list.count, 4)
            compare(list.width, (part(dialog, "columns").width - 10) / 3)
            compare(list.highlightMoveDuration, 0)
            compare(list.highlightMoveVelocity, -1)
            const kelvinRow = rowAt(list, kelvin)
            compare(kelvinRow.height, 40)
            compare(findByName(kelvinRow, "cameraName").text, "Kelvin 640")
            compare(findByName(kelvinRow, "cameraDescription").text, "Long-wave camera over Camera Link.")
            compare(findByName(kelvinRow, "cameraName").height, 20)
            const customRow = rowAt(list, custom)
            compare(findByName(customRow, "cameraName").text, "Custom")
            compare(findByName(customRow, "cameraDescription").text, "Custom camera type.")

            compare(list.currentIndex, -1)
            chooseCamera(dialog, mistral)
            compare(list.currentIndex, mistral)
            compare(list.highlightItem.color, "#48484f")
            compare(list.highlightItem.children[0].color, "#18aae2")
            compare(list.highlightItem.children[0].width, 4)
        }

        function test_beforeAnyCameraTypeEveryDeviceIsDisabled() {
            const dialog = openedDialog()
            const list = part(dialog, "deviceList")
            compare(list.count, 3)
            for (let i = 0; i < list.count; ++i)
                compare(rowAt(list, i).enabled, false)
            mouseClick(rowAt(list, 1))
            compare(dialog.cameraSelector.selectedDeviceIndex, -1)
            const message = part(dialog, "commParameterMessage")
            compare(message.visible, true)
            compare(message.text, "No camera selected")
        }

        function test_rowsAreEnabledForTheBaseTypesOfTheCameraType() {
            const dialog = openedDialog()
            useTwoDevices(dialog)
            chooseCamera(dialog, mistral)
            const comm = part(dialog, "commDeviceList")
            const video = part(dialog, "videoDeviceList")
            compare(deviceRow(comm, "ComPorts/COM1").enabled, true)
            compare(deviceRow(comm, "ComPorts/Custom").enabled, true)
            compare(deviceRow(comm, "Grabber/Port 0").enabled, false)
            compare(deviceRow(video, "VideoIn/Capture 0").enabled, true)
            compare(deviceRow(video, "Grabber/Port 0").enabled, false)
            // A disabled row takes no click.
            mouseClick(deviceRow(comm, "Grabber/Port 0"))
            compare(dialog.cameraSelector.selectedCommDeviceIndex, -1)

            chooseCamera(dialog, kelvin)
            compare(deviceRow(comm, "ComPorts/COM1").enabled, false)
            compare(deviceRow(comm, "Grabber/Port 0").enabled, true)
            chooseCamera(dialog, custom)
            compare(deviceRow(comm, "ComPorts/COM1").enabled, true)
            compare(deviceRow(video, "VideoIn/Capture 0").enabled, true)
        }

        function test_rowsUnderTheMouse() {
            const dialog = openedDialog()
            chooseCamera(dialog, kelvin)
            const row = deviceRow(part(dialog, "deviceList"), "Grabber/Port 1")
            compare(row.color, "#00000000")
            mouseMove(row, 60, 20)
            tryCompare(row, "color", "#48484f")
            // Disabled under the mouse by another camera type.
            dialog.cameraSelector.selectedCameraIndex = mistral
            compare(row.enabled, false)
            compare(row.color, "#00000000")
            mouseMove(root, 5, 5)
        }

        function test_foundDevicesStandIndentedUnderTheirPlaceholder() {
            const dialog = openedDialog()
            chooseCamera(dialog, kelvin)
            const list = part(dialog, "deviceList")
            const placeholder = rowAt(list, 0)
            const found = rowAt(list, 1)
            compare(placeholder.height, 40)
            compare(findByName(placeholder, "iconCell").x, 0)
            compare(findByName(found, "iconCell").x, 44)
            compare(findByName(placeholder, "placeholderName").visible, true)
            compare(findByName(placeholder, "placeholderName").text, "Frame grabber : Custom")
            compare(findByName(placeholder, "placeholderName").height, 20)
            compare(findByName(placeholder, "placeholderDescription").text,
                    "A Camera Link grabber with a serial channel per port.")
            compare(findByName(placeholder, "deviceName").visible, false)
            const name = findByName(found, "deviceName")
            compare(name.visible, true)
            compare(name.text, "Grabber : Port 0")
            compare(name.height, 40)
            compare(name.x, 88)
            compare(findByName(found, "placeholderName").parent.visible, false)
            // A placeholder shows its transport's picture, a found device its own.
            compare(findByName(placeholder, "iconCell").hasPicture, true)
            compare(findByName(placeholder, "iconCell").picture, "qrc:///data/images/CameraLink.png")
            compare(findByName(found, "iconCell").picture, found.device.icon)
        }

        function test_deviceThatCannotConnectShowsItsBarAndTooltip() {
            const dialog = openedDialog()
            useTwoDevices(dialog)
            chooseCamera(dialog, mistral)
            const comm = part(dialog, "commDeviceList")
            const blocked = deviceRow(comm, "ComPorts/COM3")
            const fine = deviceRow(comm, "ComPorts/COM1")
            compare(findByName(blocked, "cannotConnectBar").visible, true)
            compare(findByName(blocked, "cannotConnectBar").color, "#ff6a00")
            compare(findByName(fine, "cannotConnectBar").visible, false)
            compare(blocked.ToolTip.delay, 500)
            mouseMove(blocked, 60, 20)
            tryCompare(blocked.ToolTip, "visible", true, 3000)
            compare(blocked.ToolTip.text, "Another program holds COM3; close it and search again.")
            mouseMove(fine, 60, 20)
            tryCompare(blocked.ToolTip, "visible", false)
            compare(fine.ToolTip.visible, false)
        }

        function test_useSameDeviceSwitchesTheMiddleColumn() {
            const dialog = openedDialog()
            const box = part(dialog, "useSameDevice")
            compare(box.text, "Use same device for comm and video.")
            compare(box.checked, true)
            compare(part(dialog, "deviceList").visible, true)
            compare(part(dialog, "commDeviceList").visible, false)
            compare(part(dialog, "commParametersHeader").text, "Device Parameters")
            compare(part(dialog, "videoParametersHeader").visible, false)
            mouseClick(box)
            compare(dialog.cameraSelector.useSameDevice, false)
            compare(part(dialog, "deviceList").visible, false)
            compare(part(dialog, "commDeviceList").visible, true)
            compare(part(dialog, "videoDeviceList").visible, true)
            compare(part(dialog, "commParametersHeader").text, "Communications Device Parameters")
            compare(part(dialog, "videoParametersHeader").visible, true)
            compare(part(dialog, "videoParametersHeader").text, "Video Device Parameters")
            // The two lists share the column's height.
            tryVerify(() => part(dialog, "commDeviceList").height > 100)
            compare(part(dialog, "commDeviceList").height, part(dialog, "videoDeviceList").height)
            // The model's value rules the box.
            dialog.cameraSelector.useSameDevice = true
            compare(box.checked, true)
        }

        function test_cameraParametersOnlyForTheCustomType() {
            const dialog = openedDialog()
            const grid = part(dialog, "cameraGrid")
            compare(grid.visible, false)
            chooseCamera(dialog, kelvin)
            compare(grid.visible, false)
            compare(part(dialog, "cameraParametersHeader").visible, false)
            chooseCamera(dialog, custom)
            compare(grid.visible, true)
            compare(part(dialog, "cameraParametersHeader").visible, true)
            compare(part(dialog, "cameraParametersHeader").text, "Camera Parameters")
            compare(grid.children.length, 22)
            compare(grid.children[0].text, "Identity:")
            compare(grid.children[20].text, "AD Bit Shift:")
            compare(grid.children[1].height, 40)
            compare(grid.children[1].width, grid.width / 2)
        }

        function test_cameraParametersEditTheDescription() {
            const dialog = openedDialog()
            chooseCamera(dialog, custom)
            // An edit that changes what the description lacks replaces it: read it anew each time.
            const camera = () => dialog.cameraSelector.cameraInfo
            typeInto(part(dialog, "identityField"), "Bench")
            compare(camera().identity, "Bench")
            typeInto(part(dialog, "widthField"), "800")
            compare(camera().width, 800)
            typeInto(part(dialog, "adBitsField"), "12")
            compare(camera().adBits, 12)
            compare(part(dialog, "heightField").text, String(camera().height))

            const controller = part(dialog, "controllerCombo")
            compare(controller.count, 2)
            compare(controller.currentIndex, camera().controllerIndex)
            controller.forceActiveFocus()
            keyClick(Qt.Key_Down)
            compare(camera().controller, "Thermal")
            const pixelType = part(dialog, "pixelTypeCombo")
            compare(pixelType.count, camera().pixelTypeNames.length)
            pixelType.forceActiveFocus()
            keyClick(Qt.Key_Down)
            compare(camera().pixelTypeIndex, pixelType.currentIndex)
            compare(camera().pixelTypeName, camera().pixelTypeNames[pixelType.currentIndex])
        }

        function test_messagesOfTheParameterLists() {
            const dialog = openedDialog()
            dialog.cameraSelector.enableEmulators = true
            mouseClick(button(dialog, "scanButton"))
            tryCompare(dialog.cameraSelector, "scanning", false, 10000)
            const message = part(dialog, "commParameterMessage")
            compare(message.text, "No camera selected")
            compare(message.height, 40)
            chooseCamera(dialog, kelvin)
            compare(message.visible, true)
            compare(message.text, "No Device Selected")
            chooseDevice(dialog, "deviceList", "EmuLink/Emu 0")
            compare(message.visible, true)
            compare(message.text, "No Parameters")
            chooseDevice(dialog, "deviceList", "Grabber/Port 0")
            compare(message.visible, false)
            compare(part(dialog, "commParameterList").count, 2)

            useTwoDevices(dialog)
            const videoMessage = part(dialog, "videoParameterMessage")
            // Both lists now hold the grabber port.
            compare(message.visible, false)
            compare(videoMessage.visible, false)
            chooseCamera(dialog, mistral)
            compare(message.text, "No Device Selected")
            compare(videoMessage.visible, true)
            compare(videoMessage.text, "No Device Selected")
            chooseDevice(dialog, "videoDeviceList", "VideoIn/Capture 0")
            compare(videoMessage.visible, false)
            compare(message.visible, true)
        }

        function test_editorsFollowWritability() {
            const dialog = openedDialog()
            chooseCamera(dialog, mistral)
            useTwoDevices(dialog)
            chooseDevice(dialog, "commDeviceList", "ComPorts/COM1")
            const list = part(dialog, "commParameterList")
            const port = parameterRow(list, "Control")
            const rate = parameterRow(list, "BaudRate")
            compare(port.height, 40)
            // A found port: its name is fixed, its rate chosen from its list.
            compare(findByName(port, "valueLabel").visible, true)
            compare(findByName(port, "valueLabel").text, "COM1")
            compare(findByName(port, "valueField").visible, false)
            compare(findByName(rate, "valueCombo").visible, true)
            compare(findByName(rate, "valueCombo").currentIndex, 0)
            // The placeholder lets every parameter up to its own level be written.
            chooseDevice(dialog, "commDeviceList", "ComPorts/Custom")
            compare(dialog.cameraSelector.cameraInfo.comm.editLevel, 2)
            const customPort = parameterRow(list, "Control")
            compare(findByName(customPort, "valueField").visible, true)
            compare(findByName(customPort, "valueField").selectByMouse, true)
            compare(findByName(customPort, "valueField").text, "COM1")
        }

        function test_namesShowAsTheyAre() {
            const dialog = openedDialog()
            chooseCamera(dialog, custom)
            chooseDevice(dialog, "deviceList", "Grabber/Custom")
            const combo = findByName(parameterRow(part(dialog, "commParameterList"), "Control"), "valueCombo")
            compare(combo.contentItem.textFormat, Text.PlainText)
            compare(combo.contentItem.text, "Port 0")
            combo.popup.open()
            tryCompare(combo.popup, "opened", true)
            const entry = combo.popup.contentItem.itemAtIndex(1)
            compare(entry.contentItem.textFormat, Text.PlainText)
            compare(entry.contentItem.text, "Port 1")
            compare(entry.width, combo.popup.contentItem.width)
            combo.popup.close()
            const controller = part(dialog, "controllerCombo")
            compare(controller.contentItem.text, "Generic")
            controller.popup.open()
            tryCompare(controller.popup, "opened", true)
            compare(controller.popup.contentItem.itemAtIndex(1).contentItem.text, "Thermal")
            controller.popup.close()
        }

        function test_oneDeviceEditsAreMirroredToTheVideoDevice() {
            const dialog = openedDialog()
            chooseCamera(dialog, custom)
            chooseDevice(dialog, "deviceList", "Grabber/Custom")
            const camera = dialog.cameraSelector.cameraInfo
            const list = part(dialog, "commParameterList")
            typeInto(findByName(parameterRow(list, "Timeout"), "valueField"), "4000")
            compare(camera.comm.parameters.at(1).value, "4000")
            compare(camera.video.parameters.at(1).value, "4000")
            const channel = findByName(parameterRow(list, "Control"), "valueCombo")
            channel.forceActiveFocus()
            keyClick(Qt.Key_Down)
            compare(camera.comm.parameters.at(0).valueIndex, 1)
            compare(camera.video.parameters.at(0).valueIndex, 1)
            compare(camera.video.parameters.at(0).value, "Port 1")
        }

        function test_twoDeviceEditsAreNotMirrored() {
            const dialog = openedDialog()
            chooseCamera(dialog, custom)
            useTwoDevices(dialog)
            chooseDevice(dialog, "commDeviceList", "Grabber/Custom")
            chooseDevice(dialog, "videoDeviceList", "Grabber/Custom")
            const camera = dialog.cameraSelector.cameraInfo
            typeInto(findByName(parameterRow(part(dialog, "commParameterList"), "Timeout"), "valueField"), "4000")
            compare(camera.comm.parameters.at(1).value, "4000")
            compare(camera.video.parameters.at(1).value, "1000")
            typeInto(findByName(parameterRow(part(dialog, "videoParameterList"), "Timeout"), "valueField"), "3000")
            compare(camera.video.parameters.at(1).value, "3000")
            compare(camera.comm.parameters.at(1).value, "4000")
        }

        function test_currentRowsFollowTheModel() {
            const dialog = openedDialog()
            chooseCamera(dialog, kelvin)
            const list = part(dialog, "deviceList")
            chooseDevice(dialog, "deviceList", "Grabber/Port 1")
            compare(list.currentIndex, 2)
            // The model drops the device the new type cannot use; the highlight goes with it.
            chooseCamera(dialog, mistral)
            compare(dialog.cameraSelector.selectedDeviceIndex, -1)
            compare(list.currentIndex, -1)
        }

        // Fills in the custom type's camera parameters as a user does: the controller and the
        // pixel type from their lists, the numbers typed in.
        function describeCustomCamera(dialog, controller, pixelType, width, height, adBits) {
            const camera = () => dialog.cameraSelector.cameraInfo
            const controllers = part(dialog, "controllerCombo")
            const controllerIndex = camera().controllerNames.indexOf(controller)
            controllers.currentIndex = controllerIndex
            controllers.activated(controllerIndex)
            const pixelTypes = part(dialog, "pixelTypeCombo")
            const pixelTypeIndex = camera().pixelTypeNames.indexOf(pixelType)
            pixelTypes.currentIndex = pixelTypeIndex
            pixelTypes.activated(pixelTypeIndex)
            typeInto(part(dialog, "widthField"), String(width))
            typeInto(part(dialog, "heightField"), String(height))
            typeInto(part(dialog, "adBitsField"), String(adBits))
            compare(camera().controller, controller)
            compare(camera().pixelTypeName, pixelType)
            compare(camera().width, width)
            compare(camera().height, height)
            compare(camera().adBits, adBits)
        }

        // Connects what the dialog holds through the model, as the host does on accepted().
        function connectThrough(dialog, standalone) {
            const connect = () => standalone.connect(dialog.cameraSelector.cameraInfo)
            dialog.accepted.connect(connect)
            mouseClick(button(dialog, "connectButton"))
            dialog.accepted.disconnect(connect)
            tryCompare(standalone, "connecting", false, 10000)
        }

        function makeStandalone() {
            return createTemporaryQmlObject("import kivcamui 1.0; StandaloneModel {}", root)
        }

        function test_aCustomCameraSaysWhatIsMissingUntilItIsRight() {
            const dialog = openedDialog()
            const message = part(dialog, "cannotConnectMessage")
            compare(message.visible, false)
            chooseCamera(dialog, custom)
            compare(message.visible, true)
            compare(part(dialog, "cannotConnectText").text,
                    "No device\nChoose the device that the camera is connected to. Choose the "
                    + "Pixel Type of the camera's pictures. Width and Height must be at least 1 "
                    + "pixel; they are 0 and 0.")
            chooseDevice(dialog, "deviceList", "Grabber/Port 0")
            verify(part(dialog, "cannotConnectText").text.startsWith("No Pixel Type\n"))
            describeCustomCamera(dialog, "Thermal", "Mono16", 640, 480, 0)
            compare(dialog.cameraSelector.cameraInfo.canConnect, false)
            compare(part(dialog, "cannotConnectText").text,
                    "AD Bits out of range\nAD Bits must be 1 to 16 for Mono16; it is 0.")
            typeInto(part(dialog, "adBitsField"), "14")
            compare(dialog.cameraSelector.cameraInfo.canConnect, true)
            compare(message.visible, false)
        }

        function test_aCustomCameraThatCannotConnectIsRefusedWithItsReason() {
            const standalone = makeStandalone()
            const dialog = openedDialog()
            chooseCamera(dialog, custom)
            chooseDevice(dialog, "deviceList", "Grabber/Port 0")
            describeCustomCamera(dialog, "Thermal", "Mono16", 0, 480, 16)
            const reason = dialog.cameraSelector.cameraInfo.errorMessage
            compare(reason, "Width and Height must be at least 1 pixel; they are 0 and 480.")
            connectThrough(dialog, standalone)
            compare(standalone.connected, false)
            compare(standalone.errorMessage, reason)
            // Nothing was tried: no controller was chosen.
            compare(standalone.controllerName, "")
            compare(standalone.cameraModel, null)
        }

        function test_aCustomCameraConnectsInAFreshSession() {
            const standalone = makeStandalone()
            const dialog = openedDialog()
            chooseCamera(dialog, custom)
            chooseDevice(dialog, "deviceList", "Grabber/Port 0")
            describeCustomCamera(dialog, "Thermal", "Mono16", 640, 480, 16)
            connectThrough(dialog, standalone)
            compare(standalone.errorMessage, "")
            compare(standalone.connected, true)
            // The controller the description names, as the controller of no camera type.
            compare(standalone.controllerName, "")
            compare(standalone.controllerIndex, -1)
            verify(standalone.cameraModel)
            compare(standalone.cameraModel.live.imageFormat, "640 x 480, Mono16, 16 bits")
            tryVerify(() => standalone.cameraModel.live.frameCount > 0, 10000)
            standalone.disconnect()
        }

        function test_theCameraBeforeDoesNotDecide() {
            const standalone = makeStandalone()
            const dialog = openedDialog()
            // A camera type whose controller ("Generic") has no panel here.
            chooseCamera(dialog, mistral)
            useTwoDevices(dialog)
            chooseDevice(dialog, "commDeviceList", "ComPorts/COM1")
            connectThrough(dialog, standalone)
            compare(standalone.connected, true)
            compare(standalone.controllerName, "Mistral320")
            compare(standalone.cameraModel, null)

            // Then a custom camera with the "Thermal" controller: its own controller and panel.
            openAndWait(dialog)
            chooseCamera(dialog, custom)
            chooseDevice(dialog, "commDeviceList", "Grabber/Port 0")
            describeCustomCamera(dialog, "Thermal", "Mono16", 640, 480, 16)
            connectThrough(dialog, standalone)
            compare(standalone.connected, true)
            compare(standalone.controllerName, "")
            const customPanel = standalone.cameraModel
            verify(customPanel)
            compare(customPanel.live.imageFormat, "640 x 480, Mono16, 16 bits")
            tryVerify(() => customPanel.live.frameCount > 0, 10000)

            // Then a camera type of the same controller: the type's own controller and panel.
            openAndWait(dialog)
            chooseCamera(dialog, kelvin)
            chooseDevice(dialog, "commDeviceList", "Grabber/Port 1")
            connectThrough(dialog, standalone)
            compare(standalone.connected, true)
            compare(standalone.controllerName, "Kelvin640")
            verify(standalone.cameraModel)
            verify(standalone.cameraModel !== customPanel)
            compare(standalone.cameraModel.live.imageFormat, "640 x 512, Mono14, 14 bits")
            standalone.disconnect()
        }

        function test_theSameControllerTwiceWithDifferentFrameSizes() {
            const standalone = makeStandalone()
            const dialog = openedDialog()
            chooseCamera(dialog, custom)
            chooseDevice(dialog, "deviceList", "Grabber/Port 0")
            describeCustomCamera(dialog, "Thermal", "Mono16", 640, 480, 16)
            connectThrough(dialog, standalone)
            compare(standalone.connected, true)
            const panel = standalone.cameraModel
            tryVerify(() => panel.live.frameCount > 0, 10000)

            openAndWait(dialog)
            chooseDevice(dialog, "deviceList", "Grabber/Port 0")
            describeCustomCamera(dialog, "Thermal", "Mono8", 320, 240, 8)
            connectThrough(dialog, standalone)
            compare(standalone.connected, true)
            // The same controller and panel, streaming the new size.
            compare(standalone.cameraModel, panel)
            compare(panel.live.imageFormat, "320 x 240, Mono8, 8 bits")
            tryVerify(() => panel.live.frameCount > 0, 10000)
            standalone.disconnect()
        }
    }
}
