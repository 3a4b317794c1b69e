// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import "../components"
import "contrast.js" as Contrast

/// A button of the page: grey while it is disabled, and with the text that is read best on its colour.
CustomButton {
    implicitHeight: 36
    horizontalPadding: 14
    textColor: Contrast.textOn(backgroundColor)
    disabledColor: Qt.alpha("#6c757d", 0.6)
    // What lies under it shows through.
    disabledTextColor: themeManager.isDarkTheme ? "white" : "#1a1a1a" // qmllint disable unqualified
}
