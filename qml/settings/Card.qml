// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts

/// A titled box of the page; what is placed in it stands in a column.
Rectangle {
    id: root

    required property var page
    property string title
    default property alias content: column.data

    implicitHeight: column.implicitHeight + 50
    radius: 8
    color: page.cardColor
    border.width: 1
    border.color: page.borderColor

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 25
        spacing: 16

        CardHeading {
            page: root.page
            text: root.title
        }
    }
}
