// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Dialogs

/// Asks for the folder that downloads go to.
FolderDialog {
    objectName: "folderDialog"

    function choose(directory: string) {
        currentFolder = "file://" + directory
        open()
    }

    title: "Select Download Directory"
    onRejected: console.log("Folder selection cancelled")
}
