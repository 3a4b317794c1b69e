// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"

/// The title of a card or of a part of one. Screen readers hear its words without the sign in front.
PlainText {
    required property var page

    Layout.fillWidth: true
    color: page.textColor
    font.pixelSize: 16
    font.weight: Font.DemiBold
    Accessible.role: Accessible.Heading
    Accessible.name: text.replace(/^[^A-Za-z]+/, "")
}
