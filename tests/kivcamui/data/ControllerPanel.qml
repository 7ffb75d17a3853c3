// The controller panel the QML tests' creator names: it shows what it is given.
import QtQuick

Text {
    property QtObject cameraModel
    text: cameraModel ? "mask " + cameraModel.hasNucMask : "no model"
}
