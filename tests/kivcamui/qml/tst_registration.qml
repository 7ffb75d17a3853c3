// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtTest
import kivcamui 1.0

TestCase {
    name: "Registration"

    function creationError(text) {
        try {
            const object = Qt.createQmlObject("import kivcamui 1.0\n" + text, this, "inline")
            object.destroy()
            return ""
        } catch (error) {
            return error.qmlErrors.map(e => e.message).join("\n")
        }
    }

    function test_uncreatableTypesGiveTheirReasons_data() {
        return [
            { tag: "CameraInfo", text: "CameraInfo {}", reason: "Can only create CameraInfo from CameraFinderModel" },
            { tag: "DeviceInfo", text: "DeviceInfo {}", reason: "Can only create CameraInfo from CameraFinderModel" },
            { tag: "CameraModel", text: "CameraModel {}", reason: "Can only get CameraModel from CustomCameraSelectorModel" },
        ]
    }

    function test_uncreatableTypesGiveTheirReasons(data) {
        const error = creationError(data.text)
        verify(error.indexOf(data.reason) >= 0, error)
    }

    function test_editorsAreCreatable_data() {
        return [
            { tag: "WindowEditor", text: "WindowEditor {}" },
            { tag: "DisplayEditor", text: "DisplayEditor {}" },
        ]
    }

    function test_editorsAreCreatable(data) {
        compare(creationError(data.text), "")
    }

    function test_editLevelsAreKnownToQml() {
        // The enumeration travels with DeviceParameter's meta-object: values read as numbers.
        const camera = fixture.makeCamera()
        compare(camera.comm.editLevel, 1)
        compare(camera.comm.parameters.at(0).editLevel, 1)
    }
}
