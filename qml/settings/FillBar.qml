// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// A bar whose fill follows a percentage smoothly.
Rectangle {
    id: root

    required property var page
    required property int percent
    property color fillColor: "#3b82f6"

    width: parent.width
    height: 10
    radius: 5
    clip: true
    color: page.borderColor
    Accessible.role: Accessible.ProgressBar
    Accessible.name: percent + " percent"

    Rectangle {
        objectName: "fill"
        width: parent.width * (root.percent / 100)
        height: parent.height
        radius: 5
        color: root.fillColor

        Behavior on width {
            NumberAnimation {
                duration: 300
                easing.type: Easing.OutQuad
            }
        }
    }
}
