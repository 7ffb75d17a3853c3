// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

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
