// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtTest
import kivcamui 1.0

Item {
    id: root
    width: 800
    height: 640

    // A 640 x 512 sensor shown 1:1.
    WindowEditor {
        id: editor
        width: 640
        height: 512
        maxSize: Qt.size(640, 512)
    }

    Text {
        id: validity
        text: editor.isWindowValid ? "valid" : "invalid"
    }

    SignalSpy {
        id: windowSpy
        target: editor
        signalName: "windowChanged"
    }
    SignalSpy {
        id: trackingSpy
        target: editor
        signalName: "trackingChanged"
    }
    SignalSpy {
        id: validSpy
        target: editor
        signalName: "isWindowValidChanged"
    }

    TestCase {
        name: "WindowEditor"
        when: windowShown

        function rect(r) {
            return [r.x, r.y, r.width, r.height]
        }

        function init() {
            editor.centeredOnly = false
            editor.increment = Qt.point(1, 1)
            editor.offsetIncrement = undefined
            editor.minSize = Qt.size(1, 1)
            editor.window = Qt.rect(100, 100, 200, 100)
            windowSpy.clear()
            trackingSpy.clear()
            validSpy.clear()
        }

        function drag(fromX, fromY, toX, toY) {
            mousePress(editor, fromX, fromY)
            mouseMove(editor, toX, toY)
            mouseRelease(editor, toX, toY)
        }

        function test_defaults() {
            const fresh = createTemporaryQmlObject("import kivcamui 1.0; WindowEditor {}", root)
            compare(rect(fresh.window), [0, 0, 320, 256])
            compare(fresh.maxSize.width, 320)
            compare(fresh.maxSize.height, 256)
            compare(fresh.minSize.width, 1)
            compare(fresh.fullSize.width, 320)
            compare(fresh.increment.x, 1)
            compare(fresh.offsetIncrement.x, 0)
            compare(fresh.offsetIncrement.y, 0)
            compare(fresh.subWindowPosition.x, 0)
            verify(!fresh.hFlip && !fresh.vFlip && !fresh.tracking && !fresh.centeredOnly && !fresh.isSubWindow)
            verify(fresh.isWindowValid)
        }

        function test_refusesWhatItCannotTake() {
            editor.window = Qt.rect(-1, 0, 10, 10)
            editor.window = Qt.rect(0, 0, 0, 10)
            editor.increment = Qt.point(0, 2)
            editor.minSize = Qt.size(0, 5)
            compare(rect(editor.window), [100, 100, 200, 100])
            compare(editor.increment.x, 1)
            compare(editor.minSize.width, 1)
            compare(windowSpy.count, 0)
        }

        function test_storesTheWindowAsGiven() {
            editor.increment = Qt.point(4, 4)
            editor.window = Qt.rect(3, 5, 1000, 10)
            compare(rect(editor.window), [3, 5, 1000, 10])
            compare(windowSpy.count, 1)
            compare(validSpy.count, 1)
            compare(validity.text, "invalid")
        }

        function test_dragTheRightEdge() {
            drag(300, 150, 320, 150)
            compare(rect(editor.window), [100, 100, 220, 100])
            compare(windowSpy.count, 1)
            compare(trackingSpy.count, 2)
            verify(!editor.tracking)
        }

        function test_dragTheWindow() {
            drag(150, 130, 170, 140)
            compare(rect(editor.window), [120, 110, 200, 100])
        }

        function test_dragSnapsToTheIncrements() {
            editor.increment = Qt.point(4, 2)
            // Height 103 is 51.5 steps of 2: 104.
            drag(200, 200, 200, 203)
            compare(rect(editor.window), [100, 100, 200, 104])
            verify(editor.isWindowValid)
        }

        function test_dragSnapsTheOffsetToItsIncrement() {
            editor.increment = Qt.point(16, 16)
            editor.offsetIncrement = Qt.point(4, 4)
            editor.window = Qt.rect(100, 100, 208, 96)
            verify(editor.isWindowValid)
            // Left 103 snaps to 104 on the offset steps; the width 204 to 208 on the size steps.
            drag(100, 148, 103, 148)
            compare(rect(editor.window), [104, 100, 208, 96])
            verify(editor.isWindowValid)
            // Unset again, the origin is on neither step of 16.
            editor.offsetIncrement = undefined
            compare(editor.offsetIncrement.x, 0)
            verify(!editor.isWindowValid)
        }

        function test_centredModeGrowsBothSides() {
            editor.window = Qt.rect(220, 206, 200, 100)
            editor.centeredOnly = true
            drag(420, 256, 430, 256)
            compare(rect(editor.window), [210, 206, 220, 100])
            // The middle is no handle in centred mode.
            trackingSpy.clear()
            drag(320, 256, 340, 256)
            compare(trackingSpy.count, 0)
        }

        function test_centredModeKeepsTheWindow() {
            editor.centeredOnly = true
            compare(rect(editor.window), [100, 100, 200, 100])
            compare(validSpy.count, 1)
            compare(validity.text, "invalid")
        }

        function test_pressOffTheWindowStartsNothing() {
            drag(500, 400, 520, 420)
            compare(trackingSpy.count, 0)
            compare(windowSpy.count, 0)
        }
    }
}
