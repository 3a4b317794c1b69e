// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../components"
import "../settings"

/// What stands in the place of content that is not there: it is on its way, there is none, or it cannot be had.
/// A long reason scrolls.
Flickable {
    id: root

    required property var dialog
    property bool isBusy: false
    property string symbol
    property string text
    property color textColor: dialog.textColor

    anchors.fill: parent
    contentHeight: column.implicitHeight
    interactive: contentHeight > height
    clip: interactive
    boundsBehavior: Flickable.StopAtBounds

    ScrollBar.vertical: ScrollBar {
        policy: root.interactive ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
    }

    ColumnLayout {
        id: column
        y: Math.max(0, (root.height - implicitHeight) / 2)
        width: root.width - 16
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
            color: root.textColor
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
}
