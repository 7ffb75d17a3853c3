import QtQuick
import QtQuick.Controls

// A button that opens the library's custom camera dialog over the whole window and connects
// the camera assembled in it through the host's StandaloneModel.
Button {
    id: button

    // The host's StandaloneModel.
    property var standalone: null
    // The dialog, made once and kept, so that its choices survive closing it.
    property var dialog: null

    text: "Custom camera..."
    onClicked: dialog.open()

    Component.onCompleted: {
        const component = Qt.createComponent("qrc:/kivcamui/dialogs/CustomCameraSelectorDialog.qml")
        if (component.status !== Component.Ready) {
            console.warn(component.errorString())
            return
        }
        dialog = component.createObject(Overlay.overlay)
        dialog.cameraSelector.enableEmulators = true
        dialog.accepted.connect(() => {
            const camera = dialog.cameraSelector.cameraInfo
            if (camera && standalone)
                standalone.connect(camera)
        })
    }
}
