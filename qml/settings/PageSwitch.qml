// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic
import "../components"

/// Something of the page that is on or off.
Switch {
    id: root

    required property var page

    implicitHeight: 32
    padding: 0
    spacing: 8
    font.pixelSize: 14
    opacity: enabled ? 1 : 0.6

    indicator: Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: 44
        implicitHeight: 24
        radius: 12
        color: root.checked ? "#FF6600" : root.page.dark ? "#555555" : "#999999"

        Rectangle {
            x: root.checked ? parent.width - width - 3 : 3
            anchors.verticalCenter: parent.verticalCenter
            width: 18
            height: 18
            radius: 9
            color: "white"

            Behavior on x {
                NumberAnimation {
                    duration: 120
                }
            }
        }

        FocusRing {
            radius: 16
            visible: root.visualFocus
        }
    }

    contentItem: PlainText {
        leftPadding: root.indicator.width + root.spacing
        text: root.text
        color: root.page.textColor
        Accessible.ignored: true
    }
}
