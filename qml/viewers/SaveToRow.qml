// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"
import "../settings"

/// The folder that downloads go to.
ViewerCard {
    id: root

    readonly property var folderDialog: folderDialogLoader.item
    readonly property string directory: page.imageDownloader ? page.imageDownloader.downloadDirectory : ""

    /// Takes the folder that a dialog gave.
    function takeFolder(folder: string) {
        const prefix = Qt.platform.os === "windows" ? "file:///" : "file://"
        const path = decodeURIComponent(folder.replace(prefix, ""))
        root.page.imageDownloader.downloadDirectory = path
        field.text = path
    }

    onDirectoryChanged: field.text = directory

    PlainText {
        text: "Save to:"
        color: root.page.textColor
    }

    PageField {
        id: field
        objectName: "downloadDirectoryField"
        page: root.page
        description: "Download folder"
        placeholderText: "Select download directory..."
        placeholderTextColor: root.page.secondaryTextColor
        Layout.fillWidth: true
        onEditingFinished: {
            const path = text.trim()
            if (path !== "" && root.page.imageDownloader)
                root.page.imageDownloader.downloadDirectory = path
        }
    }

    ViewerButton {
        objectName: "browseButton"
        text: "📁"
        tip: "Browse for folder"
        enabled: !!root.page.imageDownloader
        onClicked: {
            folderDialogLoader.active = true
            root.folderDialog.choose(root.directory)
        }
    }

    // The dialog is large, and most users never ask for it.
    Loader {
        id: folderDialogLoader
        active: false
        visible: false
        source: "DownloadFolderDialog.qml"

        Connections {
            target: folderDialogLoader.item

            function onAccepted() {
                root.takeFolder(root.folderDialog.selectedFolder.toString())
            }
        }
    }
}
