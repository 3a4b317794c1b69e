// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import "../components"

/// A button of the page: grey while it is disabled, and with the text that is read best on its colour.
CustomButton {
    id: root

    // Of the relative luminance; above it dark letters have the greater contrast.
    readonly property real lightness: 0.2126 * linear(backgroundColor.r) + 0.7152 * linear(backgroundColor.g) + 0.0722 * linear(backgroundColor.b)

    function linear(part: real): real {
        return part <= 0.04045 ? part / 12.92 : Math.pow((part + 0.055) / 1.055, 2.4)
    }

    implicitHeight: 36
    horizontalPadding: 14
    disabledColor: Qt.alpha("#6c757d", 0.6)
    textColor: lightness > 0.197 ? "#1a1a1a" : "white"
}
