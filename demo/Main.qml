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

    width: 1200
    height: 840
    minimumWidth: 960
    minimumHeight: 640
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
    // The camera connected last, known by its type and serial, and whether it was lost.
    property string cameraType: ""
    property string cameraSerial: ""
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
        connectFailed = false
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

    header: ToolBar {
        background: Rectangle {
            color: "#26262C"
        }

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 8
            anchors.rightMargin: 8
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
                onClicked: finderDialog.open()
            }
            CustomCameraButton {
                id: customCameraAction
                onConnectRequested: camera => window.connectCamera(camera)
            }
            ToolAction {
                id: disconnectAction
                glyph: "\uf011"
                text: "Disconnect"
                enabled: standaloneModel.connected && !standaloneModel.disconnecting
                onClicked: standaloneModel.disconnect()
            }
            ToolSeparator {}
            ConnectionStatus {
                id: connectionStatus
                Layout.fillWidth: true
                Layout.leftMargin: 4
                standalone: standaloneModel
                cameraName: window.cameraName
                failed: window.connectFailed
                lost: window.cameraLost
                canReconnect: window.returnedCamera !== null
                onReconnectRequested: window.connectCamera(window.returnedCamera)
            }
            TabBar {
                id: pageBar
                currentIndex: Math.max(0, ["live", "cameras", "editors", "devices"]
                                          .indexOf(window.host.startPage))
                background: null
                PageTab {
                    glyph: "\uf03d"
                    text: "Live"
                }
                PageTab {
                    glyph: "\uf0ca"
                    text: "Cameras"
                }
                PageTab {
                    glyph: "\uf125"
                    text: "Sensor window"
                }
                PageTab {
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

        LivePage {
            id: livePage
            standalone: standaloneModel
        }
        CamerasPage {
            id: cameras
            finder: window.finder
            canConnect: !standaloneModel.connecting && !standaloneModel.disconnecting
            onConnectRequested: camera => window.connectCamera(camera)
        }
        EditorsPage {
            camera: cameras.camera
        }
        DevicesPage {
            transports: window.host.transports
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
                         "custom camera": customCameraAction, "disconnect": disconnectAction })
            cameraName: window.cameraName
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
