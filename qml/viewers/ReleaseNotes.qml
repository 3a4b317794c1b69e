// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../components"
import "../settings"

/// What a switch would take away and what it would bring.
Flickable {
    id: root

    required property var dialog
    readonly property int changeCount: dialog.selectedChangelog.length + dialog.currentChangelog.length

    /// The notice that a restart is due stands at the end.
    function showNotice() {
        if (dialog.pendingReboot)
            contentY = Math.max(0, contentHeight - height)
    }

    contentHeight: column.implicitHeight
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    activeFocusOnTab: contentHeight > height
    Accessible.role: Accessible.Pane
    Accessible.name: "Release notes"
    onContentHeightChanged: showNotice()
    onHeightChanged: showNotice()
    Keys.onUpPressed: flick(0, 600)
    Keys.onDownPressed: flick(0, -600)

    ScrollBar.vertical: ScrollBar {
        policy: root.contentHeight > root.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
    }

    FocusRing {
        parent: root
        anchors.margins: 0
        radius: 4
        visible: root.activeFocus
    }

    ColumnLayout {
        id: column
        width: root.width - 16
        spacing: 10

        OverlayText {
            objectName: "releaseTitle"
            page: root.dialog
            deviceText: root.dialog.releaseTitle || "Version " + root.dialog.selectedVersion
            horizontalAlignment: TextEdit.AlignLeft
            font.pixelSize: 18
            font.weight: Font.Bold
        }

        PlainText {
            objectName: "releaseDate"
            Layout.fillWidth: true
            visible: deviceText !== ""
            deviceText: root.dialog.releaseDate
            color: root.dialog.secondaryTextColor
        }

        ChangeList {
            objectName: "removedChanges"
            dialog: root.dialog
            visible: root.dialog.selectedVersion !== root.dialog.currentVersion && changes.length > 0
            heading: "Changes in " + root.dialog.currentVersion + " (will be removed)"
            changes: root.dialog.currentChangelog
            bulletColor: "#ff6b6b"
        }

        ChangeList {
            objectName: "targetChanges"
            dialog: root.dialog
            visible: changes.length > 0
            heading: "Changes in " + root.dialog.selectedVersion + (root.dialog.isOnSelected ? "" : " (Switching to)")
            changes: root.dialog.selectedChangelog
            bulletColor: root.dialog.accentColor
        }

        PlainText {
            objectName: "noNotes"
            Layout.fillWidth: true
            visible: root.changeCount === 0
            text: "No release notes available for this version."
            color: root.dialog.secondaryTextColor
        }

        PlainText {
            objectName: "preparedNotice"
            Layout.fillWidth: true
            visible: root.dialog.pendingReboot && !root.dialog.isPreparing
            text: "✓ Rollback prepared! Restart required to apply changes."
            color: "#22c55e"
            font.weight: Font.DemiBold
        }
    }
}
