// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick

// With --pictures: goes through the host's main views as a user would, by the same controls, and
// saves a picture of each in host.picturesDir, then quits: the live panel of a camera picked in
// the popup (demo.png), the popup with that last camera and the found cameras (popup.png), the
// "Can't Connect" dialog of a camera that cannot connect (cant-connect.png), the camera finder
// dialog with a camera's parameters (dialog.png), the cameras page (cameras.png), the sensor
// window page (editors.png), the devices page (devices.png), the custom camera dialog with an
// example camera (custom-camera.png) and the panel of the emulated GenICam camera (genicam.png).
QtObject {
    id: tour

    required property var host
    required property var hostWindow
    required property var standalone
    required property var popup
    required property var dialog
    required property var panel
    required property var pages
    required property var camerasPage
    required property var customAction
    property bool exampleShown: false

    readonly property var finder: standalone.cameraFinder
    readonly property var cantConnect: host.findChild(popup, "cantConnectDialog")
    property int step: 0

    function save(name) {
        const file = host.picturesDir + "/" + name
        if (!host.saveWindow(hostWindow, file)) {
            console.error("Could not save " + file)
            Qt.exit(1)
        }
        host.trace("saved " + file)
    }
    // The popup's row of the first found camera that passes the test.
    function popupRow(test) {
        const list = host.findChild(popup, "cameraList")
        for (const row of Array.from(list.children)) {
            if (row.objectName === "cameraRow" && test(row.camera))
                return row
        }
        return null
    }
    function found() {
        return finder.scanned && !finder.scanning
    }

    // Each step waits for its condition, then acts.
    readonly property var steps: [
        { until: () => true, then: () => popup.open() },
        { until: () => popup.opened && found() && popupRow(c => c.canConnect),
          then: () => popupRow(c => c.canConnect).clicked() },
        { until: () => standalone.connected && panel.status === Loader.Ready
                       && standalone.cameraModel.frameCount > 30,
          then: () => save("demo.png") },
        { until: () => true, then: () => popup.open() },
        { until: () => popup.opened, then: () => save("popup.png") },
        { until: () => true, then: () => popupRow(c => !c.canConnect).clicked() },
        { until: () => cantConnect.opened, then: () => save("cant-connect.png") },
        { until: () => true, then: () => cantConnect.close() },
        { until: () => !cantConnect.visible, then: () => dialog.open() },
        { until: () => dialog.opened && found(), then: () => selectInDialog() },
        { until: () => true, then: () => save("dialog.png") },
        { until: () => true, then: () => dialog.reject() },
        { until: () => !dialog.visible, then: () => { pages.currentIndex = 1 } },
        { until: () => found(), then: () => camerasPage.select(0) },
        { until: () => true, then: () => save("cameras.png") },
        { until: () => true, then: () => { pages.currentIndex = 2 } },
        { until: () => true, then: () => save("editors.png") },
        { until: () => true, then: () => { pages.currentIndex = 3 } },
        { until: () => true, then: () => save("devices.png") },
        { until: () => true, then: () => customAction.openExample() },
        { until: () => tour.exampleShown, then: () => save("custom-camera.png") },
        { until: () => true, then: () => customAction.dialog.reject() },
        { until: () => !customAction.dialog.visible, then: () => popup.open() },
        { until: () => popup.opened && popupRow(isGenICam),
          then: () => { pages.currentIndex = 0; popupRow(isGenICam).clicked() } },
        { until: () => standalone.connected && panel.status === Loader.Ready
                       && standalone.cameraModel.live !== undefined
                       && standalone.cameraModel.live.frameCount > 30,
          then: () => save("genicam.png") },
        { until: () => true, then: () => Qt.quit() },
    ]

    function isGenICam(camera) {
        return camera.name === "Emulated GenICam camera"
    }

    // The dialog's camera: the first that can connect and has the most parameters to show.
    function selectInDialog() {
        const cameras = finder.cameras
        let best = -1
        for (let i = 0; i < cameras.size; ++i) {
            const camera = cameras.at(i)
            if (camera.canConnect
                && (best < 0 || camera.comm.parameters.size > cameras.at(best).comm.parameters.size))
                best = i
        }
        host.findChild(dialog, "cameraList").currentIndex = best
    }

    property Connections example: Connections {
        target: tour.customAction
        function onExampleShown() {
            tour.exampleShown = true
        }
    }

    // Half a second between steps lets each view settle and draw before its picture.
    property Timer timer: Timer {
        interval: 500
        repeat: true
        running: true
        onTriggered: {
            const step = tour.steps[tour.step]
            if (!step.until())
                return
            step.then()
            ++tour.step
        }
    }
    property Timer timeout: Timer {
        interval: 120000
        running: true
        onTriggered: {
            console.error("The pictures stopped at step " + tour.step)
            Qt.exit(1)
        }
    }
}
