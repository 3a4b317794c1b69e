// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../components"

/// The versions to choose from, as pills from the highest to the lowest.
ColumnLayout {
    id: root

    required property var dialog

    spacing: 10

    PlainText {
        Layout.fillWidth: true
        text: "Select version to switch to"
        color: root.dialog.secondaryTextColor
    }

    Flickable {
        id: area
        Layout.fillWidth: true
        Layout.fillHeight: true
        implicitHeight: pills.implicitHeight
        contentHeight: pills.implicitHeight
        interactive: contentHeight > height
        clip: interactive
        boundsBehavior: Flickable.StopAtBounds

        ScrollBar.vertical: ScrollBar {
            policy: area.interactive ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        }

        Flow {
            id: pills
            width: area.width
            padding: 5
            spacing: 12

            Repeater {
                id: versionPillRepeater
                objectName: "versionPillRepeater"
                model: root.dialog.pillVersions()

                delegate: VersionPill {}
            }
        }
    }

    component VersionPill: AbstractButton {
        id: pill

        required property string modelData
        readonly property bool isCurrent: modelData === root.dialog.currentVersion
        readonly property bool isSelected: modelData === root.dialog.selectedVersion

        objectName: "versionPill"
        implicitWidth: Math.min(implicitContentWidth + leftPadding + rightPadding, pills.width - 10)
        implicitHeight: 36
        horizontalPadding: 16
        hoverEnabled: true
        enabled: !isCurrent
        opacity: isCurrent ? 0.6 : 1
        Accessible.role: Accessible.RadioButton
        Accessible.checkable: true
        Accessible.checked: isSelected
        Accessible.name: "Version " + modelData + (isCurrent ? ", current" : "")
        onClicked: root.dialog.selectVersion(modelData)
        onVisualFocusChanged: {
            if (visualFocus)
                area.contentY = Math.max(0, Math.min(y, area.contentHeight - area.height))
        }

        background: Rectangle {
            radius: height / 2
            color: pill.isCurrent ? "#555555" : pill.isSelected ? root.dialog.accentColor : root.dialog.barColor
            border.width: 1
            border.color: pill.isSelected || pill.hovered ? root.dialog.accentColor : root.dialog.borderColor

            FocusRing {
                radius: 20
                border.color: "white"
                visible: pill.visualFocus
            }
        }

        contentItem: RowLayout {
            spacing: 8

            PlainText {
                Layout.fillWidth: true
                deviceText: pill.modelData
                color: "white"
                font.weight: pill.isSelected ? Font.Bold : Font.Normal
                Accessible.ignored: true
            }

            Pill {
                objectName: "currentBadge"
                visible: pill.isCurrent
                text: "current"
                textColor: "white"
                font.pixelSize: 11
                color: "#333333"
                implicitHeight: 20
                horizontalPadding: 8
            }
        }
    }
}
