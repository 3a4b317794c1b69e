// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"

/// What the dialog is about, and the mark that closes it.
Rectangle {
    id: root

    required property var dialog

    implicitHeight: 60
    radius: 12
    color: dialog.barColor

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 20
        anchors.rightMargin: 12

        PlainText {
            Layout.fillWidth: true
            text: "Switch Version"
            font.pixelSize: 18
            font.weight: Font.Bold
            color: root.dialog.textColor
            Accessible.role: Accessible.Heading
        }

        CustomButton {
            objectName: "closeMark"
            text: "✕"
            visible: !root.dialog.isPreparing
            implicitHeight: 36
            horizontalPadding: 12
            backgroundColor: root.dialog.borderColor
            Accessible.name: "Close"
            onClicked: root.dialog.close()
        }
    }
}
