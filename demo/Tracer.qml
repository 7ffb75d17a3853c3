// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// With --trace: reports on standard output, one line per event, what the host and the library's
// components do ("scanning", "cameras 3", "popup opened", "connecting Bench camera",
// "connected Thermal64", "frames 120", "cant-connect <message>", "custom accepted <identity>",
// "error <why a connect failed or a camera was lost>", "disconnected", "status <what the status
// says>", "focus <what has the keyboard focus>", ...), and where the things to click are:
// "at <x> <y> <width> <height> <what>", in window coordinates.
Item {
    id: tracer

    required property var host
    required property var standalone
    required property var popup
    required property var dialog
    // The custom camera dialog; null until it is made.
    required property var customDialog
    required property var panel
    // The status's Reconnect button, shown when a lost camera is found again.
    required property var reconnect
    // The toolbar's controls by name.
    required property var controls
    required property string cameraName
    // The toolbar's status area.
    required property var status
    // The Cameras page.
    required property var camerasPage

    readonly property var finder: standalone.cameraFinder
    readonly property var cantConnect: host.findChild(popup, "cantConnectDialog")

    function trace(line) {
        host.trace(line)
    }
    function at(item, what) {
        trace(place(item, 0, 0, item.width, item.height, what))
    }
    // The "at" line of a box of item, in the item's own coordinates.
    function place(item, x, y, width, height, what) {
        const corner = item.mapToItem(null, x, y)
        return "at " + Math.round(corner.x) + " " + Math.round(corner.y) + " "
                + Math.round(width) + " " + Math.round(height) + " " + what
    }
    // The rows of a camera list, or null while the list has none laid out yet. The popup lays its
    // rows out in a column, the dialog in a view.
    function rowsOf(list) {
        if (list.itemAtIndex === undefined) {
            list.forceLayout()
            return Array.from(list.children).filter(item => item.objectName === "cameraRow")
        }
        // A view makes the rows it shows; in a small window, not all of them.
        list.forceLayout()
        const rows = []
        for (let i = 0; i < list.count; ++i) {
            const row = list.itemAtIndex(i)
            if (row)
                rows.push(row)
        }
        return list.count > 0 && rows.length === 0 ? null : rows
    }
    // Where the rows of the popup ("last <identity>", "row <identity>") and of the dialog
    // ("dialog row <identity>", then its "dialog connect" button) are, once they are laid out.
    function traceOpenLists() {
        if (finder.scanning)
            return
        const popupRows = popup.opened ? rowsOf(host.findChild(popup, "cameraList")) : []
        const dialogRows = dialog.opened ? rowsOf(host.findChild(dialog, "cameraList")) : []
        if (!popupRows || !dialogRows) {
            rowTimer.restart()
            return
        }
        if (popup.opened && popup.lastCamera)
            at(host.findChild(popup, "lastCameraRow"), "last " + popup.lastCamera.identity)
        for (const row of popupRows)
            at(row, "row " + row.camera.identity)
        for (const row of dialogRows)
            at(row, "dialog row " + row.camera.identity)
        if (dialog.opened)
            at(host.findChild(dialog, "connectButton"), "dialog connect")
    }

    // Where the custom camera dialog's camera types ("custom type <name>"), devices ("custom device
    // <interface> : <device>"), identity field ("custom identity") and Connect button ("custom
    // connect") are, once the dialog has found its devices.
    function traceCustomDialog() {
        const selector = customDialog.cameraSelector
        if (!customDialog.opened || selector.scanning)
            return
        const types = rowsOf(host.findChild(customDialog, "cameraList"))
        const devices = rowsOf(host.findChild(customDialog, "deviceList"))
        if (!types || !devices) {
            customTimer.restart()
            return
        }
        for (const row of types)
            at(row, "custom type " + row.camera.name)
        for (const row of devices)
            at(row, "custom device " + row.device.interfaceName + " : " + row.device.deviceName)
        const identity = host.findChild(customDialog, "identityField")
        if (identity.visible)
            at(identity, "custom identity")
        const connect = host.findChild(customDialog, "connectButton")
        at(connect, "custom connect")
        trace("custom connect " + (connect.enabled ? "enabled" : "disabled"))
    }
    Timer {
        id: customTimer
        interval: 100
        onTriggered: tracer.traceCustomDialog()
    }
    Connections {
        target: tracer.customDialog
        function onOpened() {
            tracer.trace("custom opened")
            customTimer.restart()
        }
        function onAccepted() {
            const camera = tracer.customDialog.cameraSelector.cameraInfo
            tracer.trace("custom accepted " + (camera ? camera.identity : ""))
        }
    }
    Connections {
        target: tracer.customDialog ? tracer.customDialog.cameraSelector : null
        function onScanningChanged() {
            if (!tracer.customDialog.cameraSelector.scanning)
                customTimer.restart()
        }
        function onCameraInfoChanged() {
            const camera = tracer.customDialog.cameraSelector.cameraInfo
            tracer.trace("custom camera " + (camera ? camera.identity : ""))
            customTimer.restart()
        }
    }

    // Once the window's first frame is out, where the toolbar's controls are, and "ready".
    Connections {
        id: firstFrame
        target: tracer.Window.window
        function onFrameSwapped() {
            firstFrame.enabled = false
            for (const name in tracer.controls)
                tracer.at(tracer.controls[name], name)
            tracer.trace("ready")
        }
    }

    // What has the keyboard focus: a toolbar control by its name, a row of the popup ("row
    // <identity>", "last <identity>"), a button by its text, or else its name or kind of item.
    function focusName(item) {
        if (!item)
            return "none"
        for (const name in controls) {
            if (controls[name] === item)
                return name
        }
        if (item.objectName === "cameraRow" || item.objectName === "lastCameraRow")
            return (within(item, dialog) ? "dialog row "
                    : item.objectName === "cameraRow" ? "row " : "last ") + item.camera.identity
        if (item instanceof AbstractButton)
            return "button " + item.text
        return item.objectName !== "" ? item.objectName : String(item).replace(/[_(].*/, "")
    }
    function within(item, popup) {
        for (let parent = item; parent; parent = parent.parent) {
            if (parent === popup.contentItem)
                return true
        }
        return false
    }
    Connections {
        target: tracer.Window.window
        function onActiveFocusItemChanged() {
            tracer.trace("focus " + tracer.focusName(tracer.Window.window.activeFocusItem))
        }
    }
    Connections {
        target: tracer.status
        function onTextChanged() {
            tracer.trace("status " + tracer.status.text)
        }
    }

    // The Cameras page: the description it shows ("page camera <identity>"), what Save... or
    // Load... did ("page message <sentence>"), the row marked connected ("page mark <identity>"),
    // and, while it shows, where its rows ("page row <identity>") and its identity field and
    // buttons ("page identity", "page load", "page save", "page scan", "page connect") are.
    function tracePageCamera() {
        trace("page camera " + (camerasPage.camera ? camerasPage.camera.identity : ""))
        pageTimer.restart()
    }
    function traceCamerasPage() {
        if (!camerasPage.visible || finder.scanning)
            return
        const list = host.findChild(camerasPage, "cameraList")
        list.forceLayout()
        for (let i = 0; i < list.count; ++i) {
            const row = list.itemAtIndex(i)
            if (row && row.y + row.height <= list.contentY + list.height)
                at(row, "page row " + finder.cameras.at(i).identity)
        }
        for (const name of ["identity", "load", "save", "scan", "connect"]) {
            const item = host.findChild(camerasPage, name)
            if (item.visible)
                at(item, "page " + name)
        }
    }
    Timer {
        id: pageTimer
        interval: 150
        onTriggered: tracer.traceCamerasPage()
    }
    Connections {
        target: tracer.camerasPage
        function onCameraChanged() {
            tracer.tracePageCamera()
        }
        function onVisibleChanged() {
            pageTimer.restart()
        }
        function onMessageChanged() {
            if (tracer.camerasPage.message !== "")
                tracer.trace("page message " + tracer.camerasPage.message)
        }
        function onConnectedIndexChanged() {
            const index = tracer.camerasPage.connectedIndex
            tracer.trace("page mark " + (index >= 0 ? tracer.finder.cameras.at(index).identity : ""))
        }
    }
    Connections {
        target: tracer.camerasPage.camera
        function onIdentityChanged() {
            tracer.tracePageCamera()
        }
    }

    // A search may have started before the trace did.
    Component.onCompleted: {
        if (finder.scanning)
            trace("scanning")
    }
    Connections {
        target: tracer.finder
        function onScanningChanged() {
            if (tracer.finder.scanning) {
                tracer.trace("scanning")
            } else {
                tracer.trace("cameras " + tracer.finder.cameras.size)
                rowTimer.restart()
                if (tracer.camerasPage.visible)
                    tracer.tracePageCamera()
            }
        }
    }

    Connections {
        target: tracer.popup
        function onOpened() {
            tracer.trace("popup opened")
            rowTimer.restart()
        }
        function onClosed() {
            tracer.trace("popup closed")
        }
    }
    // The rows are laid out after their list changes.
    Timer {
        id: rowTimer
        interval: 100
        onTriggered: tracer.traceOpenLists()
    }

    Connections {
        target: tracer.cantConnect
        function onOpened() {
            tracer.trace("cant-connect " + tracer.popup.errorMessage)
            tracer.at(tracer.cantConnect.standardButton(Dialog.Ok), "ok")
        }
        function onClosed() {
            tracer.trace("cant-connect closed")
        }
    }

    Connections {
        target: tracer.dialog
        function onOpened() {
            tracer.trace("dialog opened")
            rowTimer.restart()
        }
        function onAccepted() {
            tracer.trace("dialog accepted " + (tracer.dialog.camera ? tracer.dialog.camera.identity : ""))
        }
        function onRejected() {
            tracer.trace("dialog rejected")
        }
    }

    Connections {
        target: tracer.standalone
        function onConnectingChanged() {
            if (tracer.standalone.connecting)
                tracer.trace("connecting " + tracer.cameraName)
            else if (!tracer.standalone.connected)
                tracer.trace("connect-failed " + tracer.cameraName)
        }
        function onConnectedChanged() {
            tracer.trace(tracer.standalone.connected ? "connected " + tracer.standalone.controllerName
                                                     : "disconnected")
        }
        function onDisconnectingChanged() {
            if (tracer.standalone.disconnecting)
                tracer.trace("disconnecting")
        }
        function onErrorMessageChanged() {
            tracer.trace("error " + tracer.standalone.errorMessage)
        }
    }
    Connections {
        target: tracer.reconnect
        function onVisibleChanged() {
            if (tracer.reconnect.visible)
                reconnectTimer.restart()
        }
    }
    // Laid out after it shows.
    Timer {
        id: reconnectTimer
        interval: 100
        onTriggered: tracer.at(tracer.reconnect, "reconnect")
    }

    Connections {
        target: tracer.panel
        function onStatusChanged() {
            if (tracer.panel.status === Loader.Ready)
                tracer.trace("panel loaded")
            else if (tracer.panel.status === Loader.Error)
                tracer.trace("panel failed")
        }
    }
    // The panel's frame counter, where its model has one, itself or in its live picture.
    Timer {
        interval: 1000
        repeat: true
        running: tracer.standalone.connected && tracer.panel.status === Loader.Ready
        onTriggered: {
            const model = tracer.standalone.cameraModel
            const counter = model && model.live ? model.live : model
            if (counter && counter.frameCount !== undefined)
                tracer.trace("frames " + counter.frameCount)
        }
    }

    // The GenICam panel, when it is the one loaded: its picture's format ("picture 512 x 512,
    // Mono8, 8 bits"), the camera's sensor window ("sensor 0 0 512 512"), the features shown and
    // hidden ("features 20 hidden 8"), the value of each feature row on screen ("feature
    // ExposureTime 10000"), and where its visibility level ("visibility"), its filter ("filter"),
    // the editors of the rows on screen ("edit ExposureTime") and the bottom right handle of the
    // sensor window ("sensor corner") are. Each is said again only when it changed.
    readonly property var genicam: {
        const model = standalone.cameraModel
        return model && model.features !== undefined && panel.status === Loader.Ready ? model
                                                                                     : null
    }
    property var said: ({})
    function sayOnce(key, line) {
        if (said[key] === line)
            return
        said[key] = line
        trace(line)
    }
    onGenicamChanged: {
        said = {}
        if (genicam) {
            tracePicture()
            traceSensor()
        }
    }
    function tracePicture() {
        if (genicam.live.imageFormat !== "")
            sayOnce("picture", "picture " + genicam.live.imageFormat)
    }
    function traceSensor() {
        const sensor = genicam.sensorWindow
        sayOnce("sensor", "sensor " + [sensor.x, sensor.y, sensor.width, sensor.height].join(" "))
        genicamTimer.restart()
    }
    // The items under item that pass test, in the order they are drawn.
    function itemsUnder(item, test, found) {
        // A list property, which Qt 6.4 cannot iterate with for...of.
        for (let i = 0; i < item.children.length; ++i) {
            const child = item.children[i]
            if (test(child))
                found.push(child)
            itemsUnder(child, test, found)
        }
        return found
    }
    function traceGenICamPanel() {
        if (!genicam)
            return
        const item = panel.item
        sayOnce("features", "features " + genicam.features.featureCount + " hidden "
                + genicam.features.hiddenCount)
        for (const name of ["visibility", "filter"]) {
            const control = host.findChild(item, name)
            sayOnce("at " + name, place(control, 0, 0, control.width, control.height, name))
        }
        // Rows of the tree that are on screen: its delegates that are shown and inside it.
        const tree = host.findChild(item, "featureTree")
        const rows = itemsUnder(tree.contentItem, child => child.visible
                                && child.treeView !== undefined && child.name !== undefined, [])
        for (const row of rows) {
            const top = row.mapToItem(tree, 0, 0).y
            if (top < 0 || top + row.height > tree.height || row.category)
                continue
            sayOnce("feature " + row.name, "feature " + row.name + " " + row.value)
            const edit = host.findChild(row, "edit_" + row.name)
            if (edit && edit.visible)
                sayOnce("at edit " + row.name,
                        place(edit, 0, 0, edit.width, edit.height, "edit " + row.name))
        }
        // The handle at the window's bottom right corner, in the editor's scale.
        const editor = host.findChild(item, "sensorWindow")
        const sensor = genicam.sensorWindow
        if (editor.visible && genicam.sensorSize.width > 0) {
            const x = (sensor.x + sensor.width) * editor.width / genicam.sensorSize.width
            const y = (sensor.y + sensor.height) * editor.height / genicam.sensorSize.height
            sayOnce("at sensor corner", place(editor, x - 2, y - 2, 4, 4, "sensor corner"))
        }
    }
    // Rows are laid out after the model changes.
    Timer {
        id: genicamTimer
        interval: 150
        onTriggered: tracer.traceGenICamPanel()
    }
    Connections {
        target: tracer.genicam ? tracer.genicam.live : null
        function onCameraChanged() {
            tracer.tracePicture()
        }
    }
    Connections {
        target: tracer.genicam
        function onSensorChanged() {
            tracer.traceSensor()
        }
    }
    Connections {
        target: tracer.genicam ? tracer.genicam.features : null
        function onCountsChanged() {
            genicamTimer.restart()
        }
        function onModelReset() {
            genicamTimer.restart()
        }
        function onDataChanged() {
            genicamTimer.restart()
        }
    }
}
