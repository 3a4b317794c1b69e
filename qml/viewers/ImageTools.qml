// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// What can be done with the selected pictures.
Row {
    id: root

    required property var page
    readonly property bool hasSelection: page.selectedCount > 0

    spacing: 8

    ViewerButton {
        objectName: "selectAllButton"
        text: "✔️"
        tip: "Select All"
        enabled: !root.page.isLoading
        onClicked: root.page.selectAll()
    }

    ViewerButton {
        objectName: "clearSelectionButton"
        text: "✖️"
        tip: "Clear Selection"
        enabled: root.hasSelection
        onClicked: root.page.deselectAll()
    }

    ViewerButton {
        objectName: "downloadButton"
        text: "⬇️"
        tip: "Download Selected (" + root.page.selectedCount + ")"
        enabled: root.hasSelection && !root.page.isDownloading
        onClicked: root.page.downloadSelected()
    }

    ViewerButton {
        objectName: "deleteButton"
        text: "🗑️"
        tip: "Delete Selected (" + root.page.selectedCount + ")"
        enabled: root.hasSelection
        onClicked: root.page.deleteSelected()
    }
}
