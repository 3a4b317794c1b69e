// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic

/// A line of text of the page, to be read or written.
TextField {
    id: root

    required property var page
    property string description

    implicitHeight: 36
    leftPadding: 10
    rightPadding: 10
    topPadding: 0
    bottomPadding: 0
    verticalAlignment: TextInput.AlignVCenter
    horizontalAlignment: TextInput.AlignLeft
    font.pixelSize: 14
    color: page.textColor
    selectionColor: "#FF6600"
    selectedTextColor: "#1a1a1a"
    selectByMouse: true
    Accessible.name: description

    background: Rectangle {
        radius: 6
        color: root.page.dark ? "#1f1f1f" : "#fafafa"
        border.width: root.activeFocus ? 2 : 1
        border.color: root.activeFocus ? "#FF6600" : root.page.borderColor
    }
}
