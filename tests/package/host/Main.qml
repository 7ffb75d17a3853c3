// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import kivcamui 1.0

// Finds the emulated cameras, then connects each in turn, loads its controller panel with its
// model, reports the panel, unloads it and disconnects.
Window {
    id: window

    property int next: 0

    width: 800
    height: 600
    visible: true

    function report(line) {
        console.info(line)
    }
    function fail(why) {
        report("failed " + why)
        Qt.exit(1)
    }
    function connectNext() {
        const cameras = standalone.cameraFinder.cameras
        if (next === cameras.size) {
            report("done")
            Qt.exit(0)
            return
        }
        standalone.connect(cameras.at(next++))
    }

    StandaloneModel {
        id: standalone

        Component.onCompleted: {
            cameraFinder.enableEmulators = true
            cameraFinder.scan()
        }
        onConnectingChanged: {
            if (!connecting && !connected)
                window.fail("to connect " + standalone.cameraFinder.cameras.at(window.next - 1).identity)
        }
        onConnectedChanged: {
            if (connected)
                panel.setSource(controllerQml, {"cameraModel": cameraModel})
            else
                Qt.callLater(window.connectNext) // once disconnect() has returned
        }
    }

    Connections {
        target: standalone.cameraFinder
        function onScanningChanged() {
            if (standalone.cameraFinder.scanning)
                return
            window.report("cameras " + standalone.cameraFinder.cameras.size)
            if (standalone.cameraFinder.cameras.size === 0)
                window.fail("to find cameras")
            else
                window.connectNext()
        }
    }

    Loader {
        id: panel
        anchors.fill: parent

        function unloadAndDisconnect() {
            source = ""
            standalone.disconnect()
        }
        onStatusChanged: {
            if (status === Loader.Error) {
                window.fail("to load the panel " + source)
            } else if (status === Loader.Ready) {
                const camera = standalone.cameraFinder.cameras.at(window.next - 1)
                const summary = item.summary !== undefined ? item.summary : ""
                window.report(["panel", camera.identity.replace(/ /g, "_"), source, summary]
                              .join(" ").trim())
                Qt.callLater(unloadAndDisconnect)
            }
        }
    }

    Timer {
        interval: 60000
        running: true
        onTriggered: window.fail("to finish within a minute")
    }
}
