// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// The two lines above the form of the add-device dialog.
Column {
    id: root

    required property var dialog

    topPadding: 22
    leftPadding: 24
    spacing: 4

    PlainText {
        objectName: "dialogTitle"
        width: root.dialog.width - 48
        text: "Add Noctaris Device Manually"
        font.pixelSize: 20
        font.weight: Font.DemiBold
        color: root.dialog.textColor
    }

    PlainText {
        width: root.dialog.width - 48
        text: "Enter the IP address of your Noctaris device"
        color: root.dialog.secondaryTextColor
    }
}
