// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import "../components"
import "../settings"

/// The changes of one version, one a line.
ColumnLayout {
    id: root

    required property var dialog
    required property string heading
    required property var changes
    required property color bulletColor
    // More than anyone reads; making a line for each of a million would freeze the window.
    readonly property int maxShownCount: 200

    Layout.fillWidth: true
    spacing: 6

    PlainText {
        objectName: "heading"
        Layout.fillWidth: true
        deviceText: root.heading
        color: root.dialog.textColor
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }

    Repeater {
        model: root.changes.slice(0, root.maxShownCount)

        delegate: RowLayout {
            id: change

            required property var modelData

            Layout.fillWidth: true
            spacing: 8

            PlainText {
                Layout.alignment: Qt.AlignTop
                text: "•"
                color: root.bulletColor
                font.weight: Font.Bold
                Accessible.ignored: true
            }

            OverlayText {
                objectName: "changeText"
                page: root.dialog
                deviceText: root.dialog.formatMarkdown(change.modelData)
                horizontalAlignment: TextEdit.AlignLeft
            }
        }
    }
}
