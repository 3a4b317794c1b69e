// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic

/// Says what a control is for, to whoever rests the pointer on it.
ToolTip {
    id: root

    readonly property bool dark: themeManager.isDarkTheme // qmllint disable unqualified

    delay: 500
    padding: 8

    contentItem: Text {
        text: root.text
        textFormat: Text.PlainText
        font.pixelSize: 12
        color: root.dark ? "white" : "#1a1a1a"
    }

    background: Rectangle {
        radius: 4
        color: root.dark ? "#3a3a3a" : "#ffffff"
        border.width: 1
        border.color: root.dark ? "#5a5a5a" : "#bdbdbd"
    }
}
