// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtTest
import kivcamui 1.0

Item {
    id: root
    width: 800
    height: 600

    // A 640 x 480 display shown 1:1.
    DisplayEditor {
        id: editor
        width: 640
        height: 480
    }

    SignalSpy {
        id: offsetSpy
        target: editor
        signalName: "offsetChanged"
    }
    SignalSpy {
        id: validSpy
        target: editor
        signalName: "isValidChanged"
    }
    SignalSpy {
        id: trackingSpy
        target: editor
        signalName: "trackingChanged"
    }
    SignalSpy {
        id: offsetMinSpy
        target: editor
        signalName: "offsetMinChanged"
    }

    TestCase {
        name: "DisplayEditor"
        when: windowShown

        function init() {
            editor.offsetType = DisplayEditor.OFFSET_CENTERED
            editor.offset = Qt.point(0, 0)
            editor.increment = Qt.point(1, 1)
            editor.zoom = 1
            offsetSpy.clear()
            validSpy.clear()
            trackingSpy.clear()
            offsetMinSpy.clear()
        }

        function test_defaults() {
            const fresh = createTemporaryQmlObject("import kivcamui 1.0; DisplayEditor {}", root)
            compare([fresh.window.x, fresh.window.y, fresh.window.width, fresh.window.height], [0, 0, 640, 512])
            compare(fresh.fpaSize.width, 640)
            compare(fresh.displaySize.height, 480)
            compare(fresh.offsetType, DisplayEditor.OFFSET_CENTERED)
            compare(fresh.zoom, 1)
            compare(fresh.offsetMin.x, -640)
            compare(fresh.offsetMax.y, 480)
            verify(fresh.isValid && !fresh.showNtscLines && !fresh.tracking)
        }

        function test_offsetTypesAreNamed() {
            compare(DisplayEditor.OFFSET_SAME_AS_FPA, 0)
            compare(DisplayEditor.OFFSET_CENTERED, 1)
            compare(DisplayEditor.OFFSET_CUSTOM, 2)
        }

        function test_dragInCustomPlacement() {
            editor.offsetType = DisplayEditor.OFFSET_CUSTOM
            editor.increment = Qt.point(4, 4)
            validSpy.clear()
            mousePress(editor, 100, 100)
            verify(editor.tracking)
            mouseMove(editor, 130, 90)
            mouseRelease(editor, 130, 90)
            // 7.5 and -2.5 steps round away from zero.
            compare(editor.offset.x, 32)
            compare(editor.offset.y, -12)
            compare(offsetSpy.count, 1)
            compare(validSpy.count, 1)
            compare(trackingSpy.count, 2)
        }

        function test_pressDoesNothingElsewise() {
            for (const type of [DisplayEditor.OFFSET_CENTERED, DisplayEditor.OFFSET_SAME_AS_FPA]) {
                editor.offsetType = type
                mousePress(editor, 100, 100)
                mouseMove(editor, 150, 150)
                mouseRelease(editor, 150, 150)
            }
            compare(trackingSpy.count, 0)
            compare(offsetSpy.count, 0)
        }

        function test_unconditionalSignals() {
            editor.increment = Qt.point(2, 2)
            compare(validSpy.count, 1)
            verify(editor.isValid)
            editor.zoom = 0.5
            compare(offsetMinSpy.count, 1)
            compare(validSpy.count, 2)
            compare(editor.offsetMin.x, -320)
            compare(editor.offsetMin.y, -256)
        }

        function test_offsetOutOfRangeIsStored() {
            editor.offset = Qt.point(-5000, 10)
            compare(editor.offset.x, -5000)
            verify(!editor.isValid)
        }
    }
}
