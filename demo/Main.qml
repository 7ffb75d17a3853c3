// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import kivcamui 1.0
import "qrc:/kivcamui/dialogs" as KivDialogs

// The demo host's window: camera actions and the connection's status in the toolbar, then the
// pages. A further camera action goes into the toolbar beside "Custom camera...", a further page
// into the tab bar and the page stack.
ApplicationWindow {
    id: window

    // The demo's C++ side (DemoHost): its options, the icon font, the trace and the pictures.
    required property var host

    width: host.windowSize.width
    height: host.windowSize.height
    minimumWidth: 800
    minimumHeight: 500
    visible: true
    title: "kivcamui demo"
    color: "#2F2F37"

    palette.window: "#2F2F37"
    palette.base: "#1C1C22"
    palette.alternateBase: "#34343D"
    palette.text: "#E8E8EE"
    palette.windowText: "#E8E8EE"
    palette.buttonText: "#E8E8EE"
    palette.button: "#3C3C46"
    palette.highlight: "#E0822B"
    palette.highlightedText: "#FFFFFF"
    palette.placeholderText: "#8C8C99"
    palette.toolTipBase: "#22222B"
    palette.toolTipText: "#E8E8EE"
    palette.shadow: "#000000"

    // The host's icon font, which the library's components use too.
    FontLoader {
        id: fontAwesome
        source: window.host.iconFontUrl
    }

    StandaloneModel {
        id: standaloneModel
        // Set as the model is made, before any page can start a search. The finder follows
        // cameras that are plugged in and out.
        cameraFinder.enableEmulators: true
        cameraFinder.watchDevices: true
    }
    readonly property CameraFinderModel finder: standaloneModel.cameraFinder

    // The camera being connected or connected, as the status names it, and whether its connect
    // failed: a failed connect only ends with connected still false.
    property string cameraName: ""
    property bool connectFailed: false
    // Why a connect could not even start, in the host's words; empty otherwise.
    property string connectFailure: ""
    // The camera connected last, known by its type and serial, and whether it was lost.
    property string cameraType: ""
    property string cameraSerial: ""
    property string cameraIdentity: ""
    property bool cameraLost: false
    // The lost camera, when a search finds it again; null otherwise.
    readonly property var returnedCamera: {
        if (!cameraLost || finder.scanning)
            return null
        for (let i = 0; i < finder.cameras.size; ++i) {
            const camera = finder.cameras.at(i)
            if (camera.name === cameraType && camera.serial === cameraSerial)
                return camera
        }
        return null
    }

    function nameOf(camera) {
        return camera.identity !== "" ? camera.identity : camera.displayName + " " + camera.serial
    }
    function connectCamera(camera) {
        if (!camera || standaloneModel.connecting || standaloneModel.disconnecting)
            return
        cameraName = nameOf(camera)
        cameraType = camera.name
        cameraSerial = camera.serial
        cameraIdentity = camera.identity
        connectFailed = false
        connectFailure = ""
        cameraLost = false
        standaloneModel.connect(camera)
    }
    Connections {
        target: standaloneModel
        function onConnectingChanged() {
            if (!standaloneModel.connecting && !standaloneModel.connected)
                window.connectFailed = true
        }
        // A reason while connected is a loss; a search then shows whether the camera is back.
        function onErrorMessageChanged() {
            if (standaloneModel.connected && standaloneModel.errorMessage !== "")
                window.cameraLost = true
        }
        function onConnectedChanged() {
            if (!standaloneModel.connected && window.cameraLost && !window.finder.scanning)
                window.finder.scan()
        }
    }

    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: Qt.quit()
    }

    // Below this width the toolbar takes two rows: the actions, as glyphs with tooltips, and the
    // page tabs above; the status below, across the whole window.
    readonly property bool narrow: width < 1150

    header: ToolBar {
        background: Rectangle {
            color: "#26262C"
        }

        GridLayout {
            anchors.fill: parent
            anchors.leftMargin: 8
            anchors.rightMargin: 8
            columns: 3
            columnSpacing: 4
            rowSpacing: 0

            RowLayout {
                Layout.row: 0
                Layout.column: 0
                spacing: 4

                CameraButton {
                    id: cameraButton
                    standalone: standaloneModel
                    onConnectRequested: camera => window.connectCamera(camera)
                }
                ToolAction {
                    id: findAction
                    glyph: "\uf002"
                    text: "Find cameras..."
                    glyphOnly: window.narrow
                    onClicked: finderDialog.open()
                }
                CustomCameraButton {
                    id: customCameraAction
                    glyphOnly: window.narrow
                    onConnectRequested: camera => window.connectCamera(camera)
                    onNothingChosen: window.connectFailure
                                     = "Could not connect: no camera was chosen in the custom camera dialog."
                }
                ToolAction {
                    id: disconnectAction
                    glyph: "\uf011"
                    text: "Disconnect"
                    glyphOnly: window.narrow
                    enabled: standaloneModel.connected && !standaloneModel.disconnecting
                    onClicked: standaloneModel.disconnect()
                }
                ToolSeparator {
                    visible: !window.narrow
                }
            }
            Item {
                Layout.row: 0
                Layout.column: 1
                Layout.fillWidth: true
                visible: window.narrow
            }
            ConnectionStatus {
                id: connectionStatus
                Layout.row: window.narrow ? 1 : 0
                Layout.column: window.narrow ? 0 : 1
                Layout.columnSpan: window.narrow ? 3 : 1
                Layout.fillWidth: true
                Layout.leftMargin: 4
                Layout.minimumHeight: 36
                standalone: standaloneModel
                cameraName: window.cameraName
                failed: window.connectFailed
                failure: window.connectFailure
                lost: window.cameraLost
                canReconnect: window.returnedCamera !== null
                onReconnectRequested: window.connectCamera(window.returnedCamera)
            }
            TabBar {
                id: pageBar
                Layout.row: 0
                Layout.column: 2
                Layout.alignment: Qt.AlignRight
                currentIndex: Math.max(0, ["live", "cameras", "editors", "devices"]
                                          .indexOf(window.host.startPage))
                background: null
                PageTab {
                    id: liveTab
                    glyph: "\uf03d"
                    text: "Live"
                }
                PageTab {
                    id: camerasTab
                    glyph: "\uf0ca"
                    text: "Cameras"
                }
                PageTab {
                    id: editorsTab
                    glyph: "\uf125"
                    text: "Sensor window"
                }
                PageTab {
                    id: devicesTab
                    glyph: "\uf0e8"
                    text: "Devices"
                }
            }
        }
    }

    StackLayout {
        anchors.fill: parent
        anchors.margins: 12
        currentIndex: pageBar.currentIndex

        PageScroll {
            minimumWidth: 760
            minimumHeight: 380
            LivePage {
                id: livePage
                anchors.fill: parent
                standalone: standaloneModel
            }
        }
        PageScroll {
            minimumWidth: 760
            minimumHeight: 440
            CamerasPage {
                id: cameras
                anchors.fill: parent
                finder: window.finder
                descriptionFile: window.host.descriptionFile
                connectedName: standaloneModel.connected ? window.cameraType : ""
                connectedSerial: window.cameraSerial
                connectedIdentity: window.cameraIdentity
                canConnect: !standaloneModel.connecting && !standaloneModel.disconnecting
                onConnectRequested: camera => window.connectCamera(camera)
            }
        }
        PageScroll {
            minimumWidth: 1040
            minimumHeight: 560
            EditorsPage {
                anchors.fill: parent
                camera: cameras.camera
            }
        }
        PageScroll {
            minimumWidth: 760
            minimumHeight: 640
            DevicesPage {
                anchors.fill: parent
                transports: window.host.transports
            }
        }
    }

    // The full camera chooser, over the same finder as the popup; its camera is connected when
    // the user accepts it.
    KivDialogs.CameraFinderDialog {
        id: finderDialog
        title: "Find cameras"
        cameraFinder: window.finder
        onAccepted: window.connectCamera(camera)
    }

    // The tracer and the picture tour reach the window's parts by their ids from loaded
    // components: qmllint of Qt 6.4 wants those bound to this file (pragma ComponentBehavior:
    // Bound), which Qt 6.4 cannot load.
    // qmllint disable unqualified
    Loader {
        active: window.host.tracing
        sourceComponent: Tracer {
            host: window.host
            standalone: standaloneModel
            popup: cameraButton.popup
            dialog: finderDialog
            customDialog: customCameraAction.dialog
            panel: livePage.panel
            reconnect: connectionStatus.reconnectButton
            controls: ({ "camera button": cameraButton, "find cameras": findAction,
                         "custom camera": customCameraAction, "disconnect": disconnectAction,
                         "tab live": liveTab, "tab cameras": camerasTab,
                         "tab sensor window": editorsTab, "tab devices": devicesTab })
            cameraName: window.cameraName
            status: connectionStatus
            camerasPage: cameras
        }
    }

    Loader {
        active: window.host.picturesDir !== ""
        sourceComponent: PictureTour {
            host: window.host
            hostWindow: window
            standalone: standaloneModel
            popup: cameraButton.popup
            dialog: finderDialog
            panel: livePage.panel
            pages: pageBar
            camerasPage: cameras
            customAction: customCameraAction
        }
    }
    // qmllint enable unqualified

    // With --screenshot: saves the window once the start page has settled, then quits.
    Timer {
        interval: 1000
        repeat: true
        running: window.host.screenshotFile !== ""
        onTriggered: {
            if (window.finder.scanning)
                return
            if (!window.host.saveWindow(window, window.host.screenshotFile))
                console.error("Could not save " + window.host.screenshotFile)
            Qt.quit()
        }
    }
}
