// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtTest
import kivcamui 1.0

Item {
    id: root
    width: 300
    height: 400

    CameraFinderModel {
        id: finder
        enableEmulators: true
    }

    ListView {
        id: list
        anchors.fill: parent
        model: finder.cameras
        delegate: Text {
            required property var model
            width: 300
            height: 20
            text: model.item.serial + " " + model.item.userFriendlyInterfaceName
        }
    }

    Text {
        id: status
        text: finder.scanning ? "Scanning..." : finder.cameras.size + " cameras"
    }

    SignalSpy {
        id: scannedSpy
        target: finder
        signalName: "scannedChanged"
    }

    TestCase {
        name: "CameraFinderModel"
        when: windowShown

        function test_1_scanFromQmlFillsTheList() {
            compare(finder.scanned, false)
            finder.scan()
            compare(finder.scanning, true)
            compare(status.text, "Scanning...")
            tryCompare(finder, "scanning", false, 20000)
            compare(scannedSpy.count, 1)
            compare(finder.cameras.size, 3)
            compare(list.count, 3)
            compare(status.text, "3 cameras")
            list.forceLayout()
            compare(list.itemAtIndex(0).text, "MS320-00871 Serial")
            compare(finder.cameras.at(2).serial, "KV640-50212")
            compare(finder.cameras.at(finder.cameras.size), null)
        }

        function test_2_filtersFromQml() {
            finder.supportedCameras = ["Kelvin640"]
            finder.commOnly = false
            finder.scan()
            tryCompare(finder, "scanning", false, 20000)
            compare(list.count, 1)
            compare(finder.cameras.at(0).name, "Kelvin640")
            compare(scannedSpy.count, 1)
        }

        function test_3_loadFromString() {
            const camera = finder.loadCameraInfoFromString("<camera><name>Mistral320</name><serial>X</serial></camera>")
            verify(camera)
            compare(camera.serial, "X")
            compare(finder.loadCameraInfoFromString(""), null)
            compare(finder.loadCameraInfo("file:///no/such/camera.xml"), null)
        }
    }
}
