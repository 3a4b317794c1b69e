// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import "../components"

/// Whether something is selected: round, unless told otherwise.
Rectangle {
    id: root

    required property var page
    required property bool isChecked

    implicitWidth: 24
    implicitHeight: 24
    radius: width / 2
    color: isChecked ? page.accentOrange : Qt.alpha(page.cardColor, 0.7)
    border.width: 2
    border.color: isChecked ? page.accentOrange : page.secondaryTextColor

    PlainText {
        anchors.centerIn: parent
        visible: root.isChecked
        text: "✓"
        font.pixelSize: 15
        font.weight: Font.Bold
        color: "#1a1a1a"
        Accessible.ignored: true
    }
}
