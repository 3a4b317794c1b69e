// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import "../components"
import "../settings"

/// Stands in for a list that is on its way, or is empty.
Column {
    id: root

    required property var page
    required property string loadingText
    property string emptyText
    property bool isEmpty: false

    visible: page.isLoading || isEmpty
    spacing: 15

    SmallBusyIndicator {
        anchors.horizontalCenter: parent.horizontalCenter
        implicitWidth: 48
        implicitHeight: 48
        running: root.page.isLoading && root.page.visible
        palette.dark: root.page.accentOrange
    }

    PlainText {
        objectName: "noteText"
        anchors.horizontalCenter: parent.horizontalCenter
        text: root.page.isLoading ? root.loadingText : root.emptyText
        font.pixelSize: 16
        color: root.page.secondaryTextColor
    }
}
