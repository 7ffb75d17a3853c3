// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// A whole number typed in a text field, between from and to. It shows value and announces what
// the user typed with edited(); the owner decides what becomes of it.
TextField {
    id: field

    property int value: 0
    property int from: 0
    property int to: 65535

    signal edited(int value)

    implicitWidth: 100
    horizontalAlignment: Text.AlignRight
    selectByMouse: true
    text: value
    validator: IntValidator {
        bottom: field.from
        top: field.to
    }
    onEditingFinished: {
        const typed = parseInt(text)
        if (typed !== value)
            edited(typed)
    }
}
