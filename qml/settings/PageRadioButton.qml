// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic
import "../components"

/// One of two choices of the page.
RadioButton {
    id: root

    required property var page

    implicitHeight: 32
    padding: 0
    spacing: 6
    font.pixelSize: 14
    opacity: enabled ? 1 : 0.6

    indicator: Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: 18
        implicitHeight: 18
        radius: 9
        color: "transparent"
        border.width: 2
        border.color: root.checked ? "#FF6600" : root.page.secondaryTextColor

        Rectangle {
            anchors.centerIn: parent
            width: 8
            height: 8
            radius: 4
            color: "#FF6600"
            visible: root.checked
        }

        FocusRing {
            radius: 12
            visible: root.visualFocus
        }
    }

    contentItem: PlainText {
        leftPadding: root.indicator.width + root.spacing
        deviceText: root.text
        color: root.page.textColor
        Accessible.ignored: true
    }
}
