// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../settings"

/// The way out, and the switch.
Rectangle {
    id: root

    required property var dialog

    function switchText(): string {
        if (dialog.isPreparing)
            return "Preparing..."
        if (dialog.pendingReboot)
            return "Restart Now"
        return dialog.isOnSelected ? "Already on this version" : "Switch Version"
    }

    implicitHeight: 70
    radius: 12
    color: dialog.barColor

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 20
        anchors.rightMargin: 20
        spacing: 12

        PageButton {
            objectName: "leaveButton"
            text: root.dialog.isPreparing ? "Preparing..." : root.dialog.rollbackAvailable ? "Cancel" : "Close"
            backgroundColor: "#6c757d"
            disabledTextColor: "white"
            enabled: !root.dialog.isPreparing
            opacity: enabled ? 1 : 0.6
            onClicked: root.dialog.close()
        }

        Item {
            Layout.fillWidth: true
        }

        PageButton {
            objectName: "switchButton"
            visible: root.dialog.rollbackAvailable
            enabled: !root.dialog.isOnSelected && !root.dialog.isPreparing
            text: root.switchText()
            backgroundColor: root.dialog.accentColor
            disabledTextColor: "white"
            leftPadding: horizontalPadding + (root.dialog.isPreparing ? 30 : 0)
            onClicked: {
                if (root.dialog.pendingReboot)
                    root.dialog.handleReboot()
                else
                    root.dialog.handlePrepareRollback()
            }

            SmallBusyIndicator {
                objectName: "preparingIndicator"
                x: 12
                anchors.verticalCenter: parent.verticalCenter
                running: root.dialog.isPreparing
                palette.dark: "white"
            }
        }
    }
}
