// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Says which control the keyboard acts on.
Rectangle {
    anchors.fill: parent
    anchors.margins: -4
    radius: 12
    color: "transparent"
    border.width: 2
    border.color: "#FF6600"
}
