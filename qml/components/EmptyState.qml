// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// What stands in the table while it has no rows.
Column {
    id: root

    readonly property bool dark: themeManager.isDarkTheme // qmllint disable unqualified

    spacing: 10

    PlainText {
        anchors.horizontalCenter: parent.horizontalCenter
        text: "📡"
        font.pixelSize: 48
        Accessible.ignored: true
    }

    PlainText {
        anchors.horizontalCenter: parent.horizontalCenter
        text: "No devices found"
        font.pixelSize: 20
        font.weight: Font.DemiBold
        color: root.dark ? "white" : "#1a1a1a"
    }

    PlainText {
        anchors.horizontalCenter: parent.horizontalCenter
        text: "Click 'Rescan Network' to discover devices"
        color: root.dark ? "#999999" : "#666666"
    }
}
