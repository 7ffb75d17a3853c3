// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The controller panel the QML tests' creator names: it shows what it is given.
import QtQuick

Text {
    property QtObject cameraModel
    text: cameraModel ? "mask " + cameraModel.hasNucMask : "no model"
}
