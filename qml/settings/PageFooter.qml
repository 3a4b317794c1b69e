// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts

/// The way back, the device's pictures and videos, and the two ways to take it down.
Rectangle {
    id: root

    required property var page
    readonly property bool canGoDown: !page.shutdownInProgress && !page.rebootInProgress && !page.networkResetInProgress && !page.lumarcResetInProgress

    implicitHeight: 70
    radius: 8
    color: page.cardColor
    border.width: 1
    border.color: page.borderColor

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 25
        anchors.rightMargin: 25
        spacing: 12

        PageButton {
            objectName: "closeButton"
            text: "✖️ Close"
            backgroundColor: "#6c757d"
            onClicked: root.page.closed()
        }

        PageButton {
            objectName: "imagesButton"
            text: "Images"
            backgroundColor: root.page.theme.secondaryColor
            onClicked: root.page.openViewer("imagesViewerLoader")
        }

        PageButton {
            objectName: "videosButton"
            text: "Videos"
            backgroundColor: "#fd7e14"
            onClicked: root.page.openViewer("videosViewerLoader")
        }

        Item {
            Layout.fillWidth: true
        }

        PageButton {
            objectName: "shutdownButton"
            text: root.page.shutdownInProgress ? "Shutting Down..." : "Shutdown"
            backgroundColor: "#dc3545"
            enabled: root.canGoDown
            onClicked: root.page.showOverlay("shutdownConfirmDialog")
        }

        PageButton {
            objectName: "rebootButton"
            text: root.page.rebootInProgress ? "Rebooting..." : "Reboot"
            backgroundColor: root.page.theme.dangerColor
            enabled: root.canGoDown
            onClicked: root.page.showOverlay("rebootConfirmDialog")
        }
    }
}
