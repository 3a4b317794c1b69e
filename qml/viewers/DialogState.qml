// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"
import "../settings"

/// What stands in the place of content that is not there: it is on its way, there is none, or it cannot be had.
ColumnLayout {
    id: root

    required property var dialog
    property bool isBusy: false
    property string symbol
    property string text
    property color textColor: dialog.textColor

    anchors.centerIn: parent
    width: parent.width
    spacing: 15

    SmallBusyIndicator {
        Layout.alignment: Qt.AlignHCenter
        implicitWidth: 48
        implicitHeight: 48
        running: root.isBusy && root.visible
        palette.dark: root.dialog.accentColor
    }

    PlainText {
        Layout.alignment: Qt.AlignHCenter
        visible: text !== ""
        text: root.symbol
        font.pixelSize: 48
        Accessible.ignored: true
    }

    OverlayText {
        objectName: "stateText"
        page: root.dialog
        deviceText: root.text
        color: root.textColor
        font.pixelSize: 16
    }
}
