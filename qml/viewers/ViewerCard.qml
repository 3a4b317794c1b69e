// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts

/// A strip of a viewer, with what stands in it side by side.
Rectangle {
    id: root

    required property var page
    default property alias content: row.data

    Layout.fillWidth: true
    implicitHeight: row.implicitHeight + 20
    radius: 8
    color: page.cardColor
    border.width: 1
    border.color: page.borderColor

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: 20
        anchors.rightMargin: 20
        spacing: 10
    }
}
