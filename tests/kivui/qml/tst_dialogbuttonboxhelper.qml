// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtQuick.Controls
import QtTest
import kivui 1.0

Item {
    id: root
    width: 400
    height: 300

    Component {
        id: dialogComponent
        Dialog {
            id: dialog
            property int scans: 0
            property alias helper: box
            width: 300
            height: 200
            footer: DialogButtonBox {
                id: box
                DialogButtonBoxHelper.enabled: true
                Button {
                    objectName: "scan"
                    text: "Scan"
                    DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
                    onClicked: dialog.scans++
                }
                Button {
                    objectName: "connect"
                    text: "Connect"
                    DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
                    onClicked: dialog.accept()
                }
                Button {
                    objectName: "cancel"
                    text: "Cancel"
                    DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
                    onClicked: dialog.reject()
                }
            }
        }
    }

    Component {
        id: spyComponent
        SignalSpy {}
    }

    TestCase {
        name: "DialogButtonBoxHelper"
        when: windowShown

        function openDialog() {
            const dialog = createTemporaryObject(dialogComponent, root)
            dialog.open()
            tryCompare(dialog, "opened", true)
            return dialog
        }

        function button(dialog, name) {
            const box = dialog.footer
            for (let i = 0; i < box.contentChildren.length; ++i) {
                if (box.contentChildren[i].objectName === name)
                    return box.contentChildren[i]
            }
            return null
        }

        function test_ownActionDoesNotAccept() {
            const dialog = openDialog()
            const accepted = createTemporaryObject(spyComponent, root, { target: dialog, signalName: "accepted" })
            mouseClick(button(dialog, "scan"))
            compare(dialog.scans, 1)
            wait(0)
            compare(accepted.count, 0)
            verify(dialog.visible)
            mouseClick(button(dialog, "scan"))
            compare(dialog.scans, 2)
            verify(dialog.visible)
        }

        function test_explicitAcceptClosesOnce() {
            const dialog = openDialog()
            const accepted = createTemporaryObject(spyComponent, root, { target: dialog, signalName: "accepted" })
            mouseClick(button(dialog, "connect"))
            compare(accepted.count, 1)
            tryCompare(dialog, "visible", false)
        }

        function test_explicitRejectClosesOnce() {
            const dialog = openDialog()
            const rejected = createTemporaryObject(spyComponent, root, { target: dialog, signalName: "rejected" })
            mouseClick(button(dialog, "cancel"))
            compare(rejected.count, 1)
            tryCompare(dialog, "visible", false)
        }

        function test_disabledHelperLetsTheBoxAccept() {
            const dialog = openDialog()
            dialog.footer.DialogButtonBoxHelper.enabled = false
            const accepted = createTemporaryObject(spyComponent, root, { target: dialog, signalName: "accepted" })
            mouseClick(button(dialog, "scan"))
            compare(dialog.scans, 1)
            compare(accepted.count, 1)
        }

        function test_boxSignalsComeBackAfterTheClick() {
            const dialog = openDialog()
            mouseClick(button(dialog, "scan"))
            wait(0)
            const clicked = createTemporaryObject(spyComponent, root, { target: dialog.footer, signalName: "clicked" })
            mouseClick(button(dialog, "scan"))
            compare(clicked.count, 1)
        }
    }
}
