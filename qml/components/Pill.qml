// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// A short word on a coloured pill, at most maximumWidth wide.
Rectangle {
    id: root

    property alias text: label.text
    property alias deviceText: label.deviceText
    property alias textColor: label.color
    property alias font: label.font
    property real horizontalPadding: 12
    property real maximumWidth: 100

    implicitWidth: Math.min(maximumWidth, Math.ceil(label.implicitWidth) + 2 * horizontalPadding)
    implicitHeight: 24
    radius: height / 2

    PlainText {
        id: label
        anchors.fill: parent
        anchors.leftMargin: root.horizontalPadding
        anchors.rightMargin: root.horizontalPadding
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: 12
        font.weight: Font.DemiBold
        color: "#1a1a1a"
    }
}
