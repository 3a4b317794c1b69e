// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"

/// A line of the device card: what it is about, then its controls.
RowLayout {
    id: root

    required property var page
    property alias label: name.text

    Layout.fillWidth: true
    spacing: 10

    PlainText {
        id: name
        Layout.preferredWidth: 140
        Layout.maximumWidth: 140
        color: root.page.secondaryTextColor
    }
}
