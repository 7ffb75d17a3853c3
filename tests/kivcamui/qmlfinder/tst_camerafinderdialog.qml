// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtQuick.Controls
import QtTest
import kivcamui 1.0

Item {
    id: root
    width: 900
    height: 640

    QtObject {
        id: fontAwesome
        readonly property string name: "DejaVu Sans"
    }


    Component {
        id: spyComponent
        SignalSpy {}
    }

    Component {
        id: richTextComponent
        Text {
            textFormat: Text.RichText
        }
    }

    TestCase {
        name: "CameraFinderDialog"
        when: windowShown

        property var dialogs: []

        // Declared inside an item of the host's window, as a host does.
        function makeDialog() {
            const component = Qt.createComponent("qrc:/kivcamui/dialogs/CameraFinderDialog.qml")
            verify(component.status === Component.Ready, component.errorString())
            const dialog = createTemporaryObject(component, root)
            dialog.cameraFinder.enableEmulators = true
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

        // Opens the dialog and waits until its search has ended and it has been laid out anew,
        // so that clicks land where its rows are.
        function openAndWait(dialog) {
            dialog.open()
            tryCompare(dialog, "opened", true)
            tryCompare(dialog.cameraFinder, "scanning", false, 10000)
            waitForItemPolished(dialog.contentItem.parent)
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

        function button(dialog, name) {
            return findByName(dialog.footer, name)
        }

        function cameraRow(dialog, identity) {
            const list = findByName(dialog.contentItem, "cameraList")
            list.forceLayout()
            for (let i = 0; i < list.count; ++i) {
                const row = list.itemAtIndex(i)
                if (row && row.camera.identity === identity)
                    return row
            }
            return null
        }

        function parameterRow(dialog, name) {
            const list = findByName(dialog.contentItem, "parameterList")
            list.forceLayout()
            for (let i = 0; i < list.count; ++i) {
                const row = list.itemAtIndex(i)
                if (row && row.parameter.name === name)
                    return row
            }
            return null
        }

        function select(dialog, identity) {
            const row = cameraRow(dialog, identity)
            verify(row, identity)
            mouseClick(row)
            compare(dialog.camera.identity, identity)
        }

        function test_placementAndClosePolicy() {
            const dialog = makeDialog()
            openAndWait(dialog)
            compare(dialog.x, 32)
            compare(dialog.y, 32)
            compare(dialog.width, root.width - 64)
            compare(dialog.height, root.height - 64)
            compare(dialog.padding, 1)
            compare(dialog.modal, true)
            compare(dialog.closePolicy, Popup.NoAutoClose)
            compare(dialog.hoverColor, "#48484f")
            compare(dialog.highlightColor, "#22222b")
        }

        function test_rowsTakeTheHoverColourTheCurrentOneToo() {
            const dialog = makeDialog()
            openAndWait(dialog)
            select(dialog, "Bench camera")
            const current = cameraRow(dialog, "Bench camera")
            mouseMove(current, 100, 20)
            compare(current.color, dialog.hoverColor)
            const other = cameraRow(dialog, "Old camera")
            compare(other.color, Qt.rgba(0, 0, 0, 0))
            mouseMove(other, 100, 20)
            compare(other.color, dialog.hoverColor)
            compare(current.color, Qt.rgba(0, 0, 0, 0))
        }

        function test_everyOpeningScans() {
            const dialog = makeDialog()
            const scans = createTemporaryObject(spyComponent, root,
                                                { target: dialog.cameraFinder, signalName: "scanningChanged" })
            dialog.open()
            compare(dialog.cameraFinder.scanning, true)
            tryCompare(dialog.cameraFinder, "scanning", false, 10000)
            dialog.close()
            tryCompare(dialog, "visible", false)
            dialog.open()
            compare(dialog.cameraFinder.scanning, true)
            tryCompare(dialog.cameraFinder, "scanning", false, 10000)
            compare(scans.count, 4)
        }

        function test_cameraIsNullAndParametersHiddenWhileScanning() {
            const dialog = makeDialog()
            const parameters = findByName(dialog.contentItem, "parameterList")
            const message = findByName(dialog.contentItem, "cameraListMessage")
            dialog.open()
            compare(dialog.cameraFinder.scanning, true)
            compare(dialog.camera, null)
            compare(parameters.visible, false)
            compare(message.visible, true)
            compare(message.text, "Scanning...")
            tryCompare(dialog.cameraFinder, "scanning", false, 10000)
            // The view makes its first row current when it applies the new rows.
            tryVerify(() => dialog.camera !== null)
            compare(parameters.visible, true)
            compare(message.visible, false)

            select(dialog, "Bench camera")
            mouseClick(button(dialog, "scanButton"))
            compare(dialog.cameraFinder.scanning, true)
            compare(dialog.camera, null)
            compare(parameters.visible, false)
            compare(dialog.visible, true, "Scan does not close the dialog")
            tryCompare(dialog.cameraFinder, "scanning", false, 10000)
        }

        function test_connectIsDisabledForACameraThatCannotConnect() {
            const dialog = makeDialog()
            openAndWait(dialog)
            const connect = button(dialog, "connectButton")
            select(dialog, "Old camera")
            compare(connect.enabled, false)
            select(dialog, "Bench camera")
            compare(connect.enabled, true)
        }

        function test_connectAcceptsWithTheChosenCamera() {
            const dialog = makeDialog()
            const accepted = createTemporaryObject(spyComponent, root,
                                                   { target: dialog, signalName: "accepted" })
            openAndWait(dialog)
            select(dialog, "Grabber camera")
            mouseClick(button(dialog, "connectButton"))
            compare(accepted.count, 1)
            tryCompare(dialog, "visible", false)
            compare(dialog.camera.identity, "Grabber camera")
        }

        function test_cancelRejects() {
            const dialog = makeDialog()
            const accepted = createTemporaryObject(spyComponent, root,
                                                   { target: dialog, signalName: "accepted" })
            const rejected = createTemporaryObject(spyComponent, root,
                                                   { target: dialog, signalName: "rejected" })
            openAndWait(dialog)
            mouseClick(button(dialog, "cancelButton"))
            compare(rejected.count, 1)
            compare(accepted.count, 0)
            tryCompare(dialog, "visible", false)
        }

        function test_scanIsDisabledWhileScanning() {
            const dialog = makeDialog()
            dialog.open()
            compare(button(dialog, "scanButton").enabled, false)
            tryCompare(dialog.cameraFinder, "scanning", false, 10000)
            compare(button(dialog, "scanButton").enabled, true)
        }

        function test_escapeAndClicksOutsideDoNotClose() {
            const dialog = makeDialog()
            openAndWait(dialog)
            keyClick(Qt.Key_Escape)
            mouseClick(root, 5, 5)
            wait(50)
            compare(dialog.visible, true)
        }

        function test_upAndDownMoveTheSelection() {
            const dialog = makeDialog()
            openAndWait(dialog)
            const list = findByName(dialog.contentItem, "cameraList")
            tryCompare(list, "activeFocus", true)
            list.currentIndex = 0
            const first = dialog.camera.identity
            keyClick(Qt.Key_Down)
            compare(list.currentIndex, 1)
            verify(dialog.camera.identity !== first)
            keyClick(Qt.Key_Up)
            compare(list.currentIndex, 0)
            compare(dialog.camera.identity, first)
        }

        function test_enterConnectsACameraThatCanConnect() {
            const dialog = makeDialog()
            const accepted = createTemporaryObject(spyComponent, root,
                                                   { target: dialog, signalName: "accepted" })
            openAndWait(dialog)
            const list = findByName(dialog.contentItem, "cameraList")
            tryCompare(list, "activeFocus", true)
            select(dialog, "Old camera")
            list.forceActiveFocus()
            keyClick(Qt.Key_Return)
            compare(accepted.count, 0, "a camera that cannot connect is not handed on")
            compare(dialog.visible, true)
            select(dialog, "Bench camera")
            list.forceActiveFocus()
            keyClick(Qt.Key_Return)
            compare(accepted.count, 1)
            compare(dialog.camera.identity, "Bench camera")
            tryCompare(dialog, "visible", false)
        }

        function test_rowsShowIdentityAndBaseType() {
            const dialog = makeDialog()
            openAndWait(dialog)
            const row = cameraRow(dialog, "Grabber camera")
            compare(row.height, 40)
            compare(row.children[1].text, "Grabber camera (CameraLink)")
            compare(row.children[1].leftPadding, 8)
        }

        function test_editorsFollowWritability() {
            const dialog = makeDialog()
            openAndWait(dialog)
            select(dialog, "Bench camera")
            const port = parameterRow(dialog, "Port")
            const label = parameterRow(dialog, "Label")
            const protocol = parameterRow(dialog, "Protocol")
            verify(port && label && protocol)
            compare(port.height, 40)
            compare(findByName(port, "valueLabel").visible, true)
            compare(findByName(port, "valueLabel").text, "COM1")
            compare(findByName(port, "valueField").visible, false)
            compare(findByName(port, "valueCombo").visible, false)
            compare(findByName(label, "valueField").visible, true)
            compare(findByName(label, "valueField").selectByMouse, true)
            compare(findByName(label, "valueCombo").visible, false)
            compare(findByName(protocol, "valueCombo").visible, true)
            compare(findByName(protocol, "valueField").visible, false)
        }

        function test_editsGoIntoTheCamerasDevice() {
            const dialog = makeDialog()
            openAndWait(dialog)
            select(dialog, "Bench camera")
            const field = findByName(parameterRow(dialog, "Label"), "valueField")
            field.forceActiveFocus()
            field.selectAll()
            keySequence("Ctrl+A")
            keyClick(Qt.Key_Delete)
            for (const c of "front")
                keyClick(c)
            keyClick(Qt.Key_Return)
            compare(dialog.camera.comm.parameters.at(1).value, "front")

            const combo = findByName(parameterRow(dialog, "Protocol"), "valueCombo")
            compare(combo.currentIndex, 0)
            combo.forceActiveFocus()
            keyClick(Qt.Key_Down)
            compare(dialog.camera.comm.parameters.at(2).valueIndex, 1)
            compare(dialog.camera.comm.parameters.at(2).value, "gen<i>cam")
        }

        function test_markupInNamesShowsLiterally() {
            const dialog = makeDialog()
            openAndWait(dialog)
            select(dialog, "Bench camera")
            const combo = findByName(parameterRow(dialog, "Protocol"), "valueCombo")
            combo.forceActiveFocus()
            keyClick(Qt.Key_Down)
            compare(combo.displayText, "gen<i>cam")
            compare(combo.contentItem.textFormat, Text.PlainText)
            compare(combo.contentItem.text, "gen<i>cam")
            // As markup the text would lose its brackets and be narrower.
            const rich = createTemporaryObject(richTextComponent, root,
                                               { text: "gen<i>cam", font: combo.contentItem.font })
            verify(combo.contentItem.contentWidth > rich.contentWidth + 1)

            combo.popup.open()
            tryCompare(combo.popup, "opened", true)
            const entry = combo.popup.contentItem.itemAtIndex(1)
            compare(entry.contentItem.textFormat, Text.PlainText)
            compare(entry.contentItem.text, "gen<i>cam")
            combo.popup.close()

            const label = findByName(parameterRow(dialog, "Label"), "valueField")
            compare(label.text, "gen<b>lab")
        }

        function test_messagesOfTheParameterList() {
            const dialog = makeDialog()
            const message = findByName(dialog.contentItem, "parameterListMessage")
            dialog.cameraFinder.supportedCameras = ["NoSuchType"]
            openAndWait(dialog)
            compare(dialog.camera, null)
            compare(findByName(dialog.contentItem, "cameraListMessage").text, "No cameras found")
            compare(findByName(dialog.contentItem, "cameraListMessage").visible, true)
            compare(message.visible, true)
            compare(message.text, "No camera selected")
            compare(button(dialog, "connectButton").enabled, false)

            dialog.cameraFinder.supportedCameras = []
            mouseClick(button(dialog, "scanButton"))
            tryCompare(dialog.cameraFinder, "scanning", false, 10000)
            select(dialog, "Grabber camera")
            compare(message.visible, true)
            compare(message.text, "No properties")
            select(dialog, "Bench camera")
            compare(message.visible, false)
        }

        function test_fullMessageTooltip() {
            const dialog = makeDialog()
            openAndWait(dialog)
            const row = cameraRow(dialog, "Old camera")
            mouseMove(row, 20, 20)
            tryCompare(row.ToolTip, "visible", true, 3000)
            compare(row.ToolTip.text, "The camera runs firmware 1.0; update it to 2.0 and search again.")
            compare(row.ToolTip.delay, 500)
            // The tool tip is shared; left showing, it would take the next test's first click.
            mouseMove(cameraRow(dialog, "Bench camera"), 20, 20)
            tryCompare(row.ToolTip, "visible", false)
        }
    }
}
