// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtQuick.Controls
import QtTest
import kivcamui 1.0

Item {
    id: root
    width: 800
    height: 600

    // The host's icon font, as the popup expects to find it.
    QtObject {
        id: fontAwesome
        readonly property string name: "DejaVu Sans"
    }

    Component {
        id: finderComponent
        CameraFinderModel {
            enableEmulators: true
        }
    }

    Component {
        id: popupComponent
        Loader {
            property var finder
            property string dir
            property var picked: []
            source: "qrc:/kivcamui/controls/CameraFinderPopup.qml"
            onLoaded: {
                item.cameraFinder = finder
                item.configDir = dir
                item.connect.connect(camera => picked.push(camera.identity))
            }
        }
    }

    Component {
        id: spyComponent
        SignalSpy {}
    }

    TestCase {
        name: "CameraFinderPopup"
        when: windowShown

        property var loaders: []

        function makePopup(finder, dir) {
            const loader = createTemporaryObject(popupComponent, root,
                                                 { finder: finder, dir: dir || fixture.tempDirUrl() })
            verify(loader.status === Loader.Ready, "the popup loads")
            loaders.push(loader)
            return loader
        }

        // The finders go before the popups that show them; let go of them first. A modal dialog
        // left open would take the next test's clicks until it is deleted.
        function cleanup() {
            for (const loader of loaders) {
                if (!loader.item)
                    continue
                loader.item.close()
                cantConnect(loader.item).close()
                tryCompare(cantConnect(loader.item), "visible", false)
                loader.item.cameraFinder = null
            }
            loaders = []
        }

        function makeFinder(properties) {
            return createTemporaryObject(finderComponent, root, properties || {})
        }

        // Opens the popup and waits until its search has ended and it has been laid out anew,
        // so that clicks land where its rows are.
        function openAndWait(popup) {
            popup.open()
            tryCompare(popup, "opened", true)
            tryCompare(popup.cameraFinder, "scanning", false, 10000)
            waitForItemPolished(popup.contentItem.parent)
            waitForItemPolished(findByName(popup.contentItem, "cameraList"))
        }

        function findByName(item, name) {
            if (item.objectName === name)
                return item
            for (let i = 0; i < item.children.length; ++i) {
                const found = findByName(item.children[i], name)
                if (found)
                    return found
            }
            return null
        }

        function rowOf(popup, identity) {
            const list = findByName(popup.contentItem, "cameraList")
            for (let i = 0; i < list.children.length; ++i) {
                const row = list.children[i]
                if (row.objectName === "cameraRow" && row.camera.identity === identity)
                    return row
            }
            return null
        }

        function test_heightWithoutAFinderIsZero() {
            const popup = makePopup(null).item
            compare(popup.height, 0)
            compare(popup.lastCamera, null)
        }

        function test_openingAnEmptyPopupScansOnceAndAgainWhileStillEmpty() {
            const finder = makeFinder({ supportedCameras: ["NoSuchType"] })
            const scans = createTemporaryObject(spyComponent, root,
                                                { target: finder, signalName: "scanningChanged" })
            const popup = makePopup(finder).item
            popup.open()
            compare(finder.scanning, true)
            compare(scans.count, 1)
            tryCompare(finder, "scanning", false, 10000)
            compare(finder.cameras.size, 0)
            compare(findByName(popup.contentItem, "statusLine").text, "No cameras found.")
            popup.close()
            tryCompare(popup, "visible", false)
            popup.open()
            compare(finder.scanning, true, "reopened while empty: another scan")
            compare(scans.count, 3)
            tryCompare(finder, "scanning", false, 10000)
        }

        function test_reopeningWithCamerasDoesNotScan() {
            const finder = makeFinder()
            const popup = makePopup(finder).item
            openAndWait(popup)
            compare(finder.cameras.size, 3)
            popup.close()
            tryCompare(popup, "visible", false)
            popup.open()
            compare(finder.scanning, false)
        }

        function test_statusLineBeforeAnyScan() {
            const finder = makeFinder()
            const popup = makePopup(finder).item
            compare(findByName(popup.contentItem, "statusLine").text, "Click refresh to scan.")
            finder.scan()
            compare(findByName(popup.contentItem, "statusLine").text, "Scanning...")
            tryCompare(finder, "scanning", false, 10000)
        }

        function test_heightFollowsTheFoundCameras() {
            const finder = makeFinder()
            const popup = makePopup(finder).item
            const refresh = findByName(popup.contentItem, "refreshButton")
            verify(refresh.height > 0)
            compare(popup.height, 28 + refresh.height + 8 + 40)
            popup.open()
            compare(popup.height, 28 + refresh.height + 8 + 40, "scanning, nothing listed")
            tryCompare(finder, "scanning", false, 10000)
            compare(finder.cameras.size, 3)
            compare(popup.height, 3 * 40 + refresh.height + 8 + 40)
            compare(findByName(popup.contentItem, "statusLine").visible, false)
        }

        function test_refreshScansAndIsDisabledWhileScanning() {
            const finder = makeFinder()
            const popup = makePopup(finder).item
            openAndWait(popup)
            const refresh = findByName(popup.contentItem, "refreshButton")
            compare(refresh.enabled, true)
            mouseClick(refresh)
            compare(finder.scanning, true)
            compare(refresh.enabled, false)
            tryCompare(finder, "scanning", false, 10000)
            compare(refresh.enabled, true)
        }

        function test_pickingACameraConnectsAndRemembersIt() {
            const dir = fixture.tempDirUrl()
            const finder = makeFinder()
            const loader = makePopup(finder, dir)
            const popup = loader.item
            openAndWait(popup)
            const refresh = findByName(popup.contentItem, "refreshButton")
            const heightBefore = popup.height
            mouseClick(rowOf(popup, "Bench camera"))
            compare(loader.picked, ["Bench camera"])
            tryCompare(popup, "visible", false)
            verify(fixture.fileExists(dir + "/lastCamera.xml"))
            verify(popup.lastCamera !== null)
            compare(popup.lastCamera.identity, "Bench camera")
            compare(popup.height, heightBefore + 64)

            // Shown under "Last Camera" the next time, by a popup that reads the file anew.
            const other = makePopup(makeFinder(), dir).item
            verify(other.lastCamera !== null)
            compare(other.lastCamera.serial, "MS-1")
            other.open()
            tryCompare(other, "opened", true)
            compare(other.cameraFinder.scanning, false, "a popup with a last camera does not scan")
            const lastRow = findByName(other.contentItem, "lastCameraRow")
            compare(lastRow.visible, true)
            compare(lastRow.camera.identity, "Bench camera")
            compare(other.height, 28 + refresh.height + 8 + 40 + 64)
        }

        function test_clickingTheLastCameraConnectsWithoutSaving() {
            // Written by hand, as no save writes it: a save would show.
            const dir = fixture.tempDirUrl()
            const text = "<?xml version=\"1.0\"?>\n<!-- by hand -->\n<camera><name>Mistral320</name>"
                         + "<serial>MS-1</serial><identity>Saved</identity></camera>\n"
            verify(fixture.writeText(dir + "/lastCamera.xml", text))
            const loader = makePopup(makeFinder(), dir)
            const popup = loader.item
            verify(popup.lastCamera !== null)
            popup.open()
            tryCompare(popup, "opened", true)
            waitForItemPolished(popup.contentItem.parent)
            mouseClick(findByName(popup.contentItem, "lastCameraRow"))
            compare(loader.picked, ["Saved"])
            tryCompare(popup, "visible", false)
            compare(fixture.fileText(dir + "/lastCamera.xml"), text)
        }

        function test_aCameraThatCannotConnectExplainsWhy() {
            const loader = makePopup(makeFinder())
            const popup = loader.item
            openAndWait(popup)
            const row = rowOf(popup, "Old camera")
            verify(row)
            mouseClick(row)
            compare(loader.picked, [])
            tryCompare(popup, "visible", false)
            compare(popup.errorMessage, "The camera runs firmware 1.0; update it to 2.0 and search again.")
            tryVerify(() => popupOpen(popup), 5000, "the Can't Connect dialog opens")
            compare(cantConnect(popup).title, "Can't Connect")
            compare(findByName(cantConnect(popup).contentItem, "cantConnectMessage").text,
                    popup.errorMessage)
            verify(!fixture.fileExists(popup.lastCameraFname))
        }

        function test_aLastCameraThatCannotConnectOpensAnEmptyDialog() {
            const dir = fixture.tempDirUrl()
            const saved = makeFinder().loadCameraInfoFromString(
                "<camera><name>Mistral320</name><serial>MS-2</serial><identity>Broken</identity>"
                + "<canConnect>false</canConnect><errorSummary>Gone</errorSummary>"
                + "<errorMessage>The camera is gone.</errorMessage></camera>")
            verify(saved.save(dir + "/lastCamera.xml"))
            const loader = makePopup(makeFinder(), dir)
            const popup = loader.item
            popup.open()
            tryCompare(popup, "opened", true)
            waitForItemPolished(popup.contentItem.parent)
            mouseClick(findByName(popup.contentItem, "lastCameraRow"))
            compare(loader.picked, [])
            tryCompare(popup, "visible", false)
            tryVerify(() => popupOpen(popup), 5000, "the Can't Connect dialog opens")
            compare(popup.errorMessage, "")
        }

        function test_summaryTooltipOnACameraThatCannotConnect() {
            const popup = makePopup(makeFinder()).item
            openAndWait(popup)
            const row = rowOf(popup, "Old camera")
            mouseMove(row, 20, 20)
            tryCompare(row.ToolTip, "visible", true, 3000)
            compare(row.ToolTip.text, "Firmware too old")
            compare(row.ToolTip.delay, 500)
            const good = rowOf(popup, "Bench camera")
            mouseMove(good, 20, 20)
            tryCompare(row.ToolTip, "visible", false)
            compare(good.ToolTip.visible, false)
        }

        // A popup with a last camera, open, with the found cameras listed under it.
        function openWithLastCamera(dir) {
            const saved = makeFinder().loadCameraInfoFromString(
                "<camera><name>Mistral320</name><serial>MS-1</serial><identity>Saved</identity></camera>")
            verify(saved.save(dir + "/lastCamera.xml"))
            const loader = makePopup(makeFinder(), dir)
            loader.item.cameraFinder.scan()
            openAndWait(loader.item)
            return loader
        }

        function test_aPopupGivenLessHeightScrollsItsCameras() {
            const popup = openWithLastCamera(fixture.tempDirUrl()).item
            const scroll = findByName(popup.contentItem, "cameraScroll")
            compare(scroll.height, 3 * 40, "all rows while the popup has its own height")
            compare(scroll.interactive, false)
            // A host that keeps the popup within a small window.
            popup.height = popup.naturalHeight - 70
            compare(scroll.height, 50)
            compare(scroll.interactive, true)
            const refresh = findByName(popup.contentItem, "refreshButton")
            tryVerify(() => refresh.mapToItem(popup.contentItem, 0, refresh.height).y <= popup.availableHeight,
                      5000, "Refresh stays inside the popup")
            // The keyboard brings each row it reaches into view.
            const rows = popup.rows()
            tryCompare(rows[0], "activeFocus", true)
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Down)
            compare(rows[3].activeFocus, true)
            compare(scroll.contentY, 3 * 40 - 50)
            keyClick(Qt.Key_Up)
            keyClick(Qt.Key_Up)
            compare(scroll.contentY, 0)
        }

        function test_keysMoveTheFocusBetweenTheRows() {
            const popup = openWithLastCamera(fixture.tempDirUrl()).item
            const rows = popup.rows()
            compare(rows.length, 4, "the last camera and three found cameras")
            const lastRow = findByName(popup.contentItem, "lastCameraRow")
            compare(rows[0], lastRow)
            tryCompare(lastRow, "activeFocus", true)
            keyClick(Qt.Key_Down)
            compare(rows[1].activeFocus, true, "Down: the first found camera")
            keyClick(Qt.Key_Down)
            compare(rows[2].activeFocus, true)
            keyClick(Qt.Key_Up)
            compare(rows[1].activeFocus, true, "Up: back")
            keyClick(Qt.Key_Up)
            keyClick(Qt.Key_Up)
            compare(lastRow.activeFocus, true, "Up stops at the first row")
            keyClick(Qt.Key_Tab)
            compare(rows[1].activeFocus, true, "Tab: the next row")
        }

        function test_enterOnARowThatCanConnectConnectsOnceAndRemembersIt() {
            const dir = fixture.tempDirUrl()
            const loader = makePopup(makeFinder(), dir)
            const popup = loader.item
            openAndWait(popup)
            const row = rowOf(popup, "Bench camera")
            const rows = popup.rows()
            tryCompare(rows[0], "activeFocus", true)
            for (let i = 0; i < rows.indexOf(row); ++i)
                keyClick(Qt.Key_Down)
            compare(row.activeFocus, true)
            verify(!fixture.fileExists(dir + "/lastCamera.xml"))
            keyClick(Qt.Key_Return)
            compare(loader.picked, ["Bench camera"])
            tryCompare(popup, "visible", false)
            verify(fixture.fileExists(dir + "/lastCamera.xml"))
            compare(popup.lastCamera.identity, "Bench camera")
        }

        function test_spaceOnTheLastCameraConnectsIt() {
            const loader = openWithLastCamera(fixture.tempDirUrl())
            tryCompare(findByName(loader.item.contentItem, "lastCameraRow"), "activeFocus", true)
            keyClick(Qt.Key_Space)
            compare(loader.picked, ["Saved"])
            tryCompare(loader.item, "visible", false)
        }

        function test_enterOnARowThatCannotConnectOpensCantConnect() {
            const loader = makePopup(makeFinder())
            const popup = loader.item
            openAndWait(popup)
            const row = rowOf(popup, "Old camera")
            row.forceActiveFocus()
            keyClick(Qt.Key_Enter)
            compare(loader.picked, [])
            tryVerify(() => popupOpen(popup), 5000, "the Can't Connect dialog opens")
            compare(popup.errorMessage, "The camera runs firmware 1.0; update it to 2.0 and search again.")
            verify(!fixture.fileExists(popup.lastCameraFname))
        }

        function test_escapeClosesThePopup() {
            const popup = makePopup(makeFinder()).item
            openAndWait(popup)
            keyClick(Qt.Key_Escape)
            tryCompare(popup, "visible", false)
        }

        function test_aMissingLastCameraFileHidesTheSection() {
            const popup = makePopup(makeFinder(), "file:///no/such/folder").item
            compare(popup.lastCamera, null)
            compare(findByName(popup.contentItem, "lastCameraRow").visible, false)
        }

        // The "Can't Connect" dialog, declared inside the popup.
        function cantConnect(popup) {
            for (let i = 0; i < popup.contentData.length; ++i) {
                if (popup.contentData[i].objectName === "cantConnectDialog")
                    return popup.contentData[i]
            }
            return null
        }

        function popupOpen(popup) {
            const dialog = cantConnect(popup)
            return dialog !== null && dialog.opened
        }
    }
}
