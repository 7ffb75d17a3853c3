import QtQuick
import QtQuick.Controls

// The test plugin's panel: it names the controller of the model the host gives it.
Pane {
    id: panel

    property QtObject cameraModel: null
    readonly property string summary: cameraModel ? "controller " + cameraModel.controllerName : ""

    Label {
        text: panel.summary
    }
}
