// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtTest
import kivcamui 1.0

Item {
    id: root

    Component {
        id: spyComponent
        SignalSpy {}
    }

    // What a form would show, bound to the camera's properties.
    Component {
        id: formComponent
        QtObject {
            property var camera
            readonly property string title: camera.displayName + " (" + camera.userFriendlyInterfaceName + ")"
            readonly property int pixels: camera.width * camera.height
            readonly property string pixelType: camera.pixelTypeName
            readonly property int pixelIndex: camera.pixelTypeIndex
            readonly property string controller: camera.controller
            readonly property bool custom: camera.camera.isCustom
            readonly property string baud: camera.comm.parameters.at(1).value
            readonly property bool baudWritable: camera.comm.parameters.at(1).isWritable
        }
    }

    TestCase {
        name: "CameraInfo"

        function test_bindingsFollowEdits() {
            const camera = fixture.makeCamera()
            const form = createTemporaryObject(formComponent, root, { camera: camera })
            compare(form.title, "Kelvin 640 (Serial)")
            compare(form.pixels, 640 * 512)
            camera.width = 320
            compare(form.pixels, 320 * 512)
            compare(fixture.recordWidth(camera), 320)

            const mono16 = camera.pixelTypeNames.indexOf("Mono16")
            camera.pixelTypeIndex = mono16
            compare(form.pixelType, "Mono16")
            compare(form.pixelIndex, mono16)

            camera.controllerIndex = camera.controllerNames.indexOf("Generic")
            compare(form.controller, "Generic")
            verify(!form.custom)
        }

        function test_signalsFireOnlyOnChange() {
            const camera = fixture.makeCamera()
            const widthSpy = createTemporaryObject(spyComponent, root, { target: camera, signalName: "widthChanged" })
            const bitsSpy = createTemporaryObject(spyComponent, root, { target: camera, signalName: "adBitsChanged" })
            camera.width = camera.width
            compare(widthSpy.count, 0)
            camera.adBits = 12
            camera.adBits = 12
            compare(bitsSpy.count, 1)
        }

        function test_parametersEditTheRecord() {
            const camera = fixture.makeCamera()
            const form = createTemporaryObject(formComponent, root, { camera: camera })
            const baud = camera.comm.parameters.at(1)
            compare(baud.allowedValues, ["9600", "115200"])
            compare(form.baud, "9600")
            verify(form.baudWritable) // level 1 entry, viewed at level 1
            baud.valueIndex = 1
            compare(form.baud, "115200")
            compare(fixture.recordParameter(camera, "BaudRate"), "115200")
            camera.comm.editLevel = 0 // DeviceParameter.EDIT_ALWAYS
            verify(!form.baudWritable)
        }

        function test_cloneIsOwnedByQml() {
            const camera = fixture.makeCamera()
            const copy = camera.clone()
            copy.identity = "Copy"
            compare(camera.identity, "")
            compare(copy.identity, "Copy")
        }

        function test_typeIsMadeOnce() {
            const camera = fixture.makeCamera()
            compare(camera.camera, camera.camera)
            compare(camera.camera.name, "Kelvin640")
            verify(camera.camera.isSupportedBaseDeviceType("Serial"))
        }
    }
}
