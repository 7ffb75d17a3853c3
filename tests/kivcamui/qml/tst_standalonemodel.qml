// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtTest
import kivcamui 1.0

Item {
    id: root
    width: 300
    height: 200

    Component {
        id: modelComponent
        StandaloneModel {}
    }

    // The host's part: the panel of the selected controller, given its model, once connected.
    Component {
        id: hostComponent
        Item {
            property alias standalone: model
            property alias panel: loader
            StandaloneModel {
                id: model
            }
            Loader {
                id: loader
                source: model.connected ? model.controllerQml : ""
                onLoaded: item.cameraModel = Qt.binding(() => model.cameraModel)
            }
        }
    }

    TestCase {
        name: "StandaloneModel"
        when: windowShown

        function test_startsWithoutController() {
            const model = createTemporaryObject(modelComponent, root)
            verify(model)
            compare(model.controllerIndex, -1)
            compare(model.controllerName, "")
            compare(model.cameraModel, null)
            compare(model.controllerQml, "")
            compare(model.connected, false)
            compare(model.connecting, false)
            compare(model.disconnecting, false)
            compare(model.canSelectController, false)
            compare(model.controllerNames, ["Kelvin640", "Mistral320"])
            compare(model.controllerDisplayNames, ["Kelvin 640", "Mistral 320"])
            verify(model.cameraFinder)
            compare(model.cameraFinder.scanning, false)
        }

        function test_configDirIsAFileUrl() {
            const model = createTemporaryObject(modelComponent, root)
            verify(model.configDir.startsWith("file:///"), model.configDir)
            // The application's local data folder, written as a URL.
            compare(decodeURIComponent(model.configDir.substring("file://".length)),
                    fixture.appLocalDataDir())
        }

        function test_controllerFromQml() {
            const model = createTemporaryObject(modelComponent, root)
            const changed = createTemporaryObject(spyComponent, root,
                                                  { target: model, signalName: "controllerChanged" })
            model.controllerIndex = 1
            compare(changed.count, 1)
            compare(model.controllerName, "Mistral320")
            // The test's creator makes panels for the "Thermal" controller only.
            compare(model.cameraModel, null)
            model.controllerName = "Kelvin640"
            compare(changed.count, 2)
            compare(model.controllerIndex, 0)
            verify(model.cameraModel)
            compare(model.cameraModel.hasNucMask, 0)
            verify(!model.cameraModel.hasNucMask)
            model.controllerName = "NoSuchType"
            compare(changed.count, 2)
            compare(model.cameraModel, null)
            compare(model.controllerName, "Kelvin640")
            model.controllerIndex = -1
            model.controllerIndex = 2
            compare(changed.count, 2)
        }

        function test_connectShowsThePanel() {
            const host = createTemporaryObject(hostComponent, root)
            const model = host.standalone
            const camera = fixture.makeCamera()
            // Within the sensor of the emulated camera on COM1.
            camera.width = 320
            camera.height = 256
            model.connect(camera)
            compare(model.connecting, true)
            compare(host.panel.status, Loader.Null)
            tryCompare(model, "connecting", false, 10000)
            compare(model.errorMessage, "")
            compare(model.connected, true)
            compare(model.connecting, false)
            compare(model.controllerName, "Kelvin640")
            compare(host.panel.status, Loader.Ready)
            compare(host.panel.item.cameraModel, model.cameraModel)
            compare(host.panel.item.text, "mask 0")

            model.disconnect()
            compare(model.connected, false)
            compare(host.panel.status, Loader.Null)
            // The controller and its model stay for the next connect.
            verify(model.cameraModel)
        }

        Component {
            id: spyComponent
            SignalSpy {}
        }
    }
}
