// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts

/// Where the device keeps its pictures: a path of its own, or one of its external drives.
ColumnLayout {
    id: root

    required property var page
    readonly property bool isBusy: page.picturesDirectoryUpdateInProgress
    readonly property alias picturesDirectoryEditField: picturesDirectoryEditField
    readonly property alias externalStorageComboBox: externalStorageComboBox

    Layout.fillWidth: true
    spacing: 6

    LabelledRow {
        page: root.page
        label: "Pictures Directory:"

        PageRadioButton {
            id: internalPicturesRadio
            objectName: "internalPicturesRadio"
            page: root.page
            text: "Internal"
            Accessible.name: "Pictures on internal storage"
            checked: root.page.picturesDirectoryModeInternal
            onToggled: {
                if (!root.isBusy && checked && !root.page.picturesDirectoryModeInternal)
                    root.page.updatePicturesDirectoryMode(true)
            }
        }

        PageRadioButton {
            id: externalPicturesRadio
            objectName: "externalPicturesRadio"
            page: root.page
            text: "External"
            Accessible.name: "Pictures on external storage"
            checked: !root.page.picturesDirectoryModeInternal
            onToggled: {
                if (!root.isBusy && checked && root.page.picturesDirectoryModeInternal)
                    root.page.updatePicturesDirectoryMode(false)
            }
        }

        Item {
            Layout.fillWidth: true
        }
    }

    RowLayout {
        visible: root.page.picturesDirectoryModeInternal
        Layout.fillWidth: true
        spacing: 10

        PageField {
            id: picturesDirectoryEditField
            objectName: "picturesDirectoryEditField"
            page: root.page
            description: "Pictures directory"
            Layout.fillWidth: true
            Layout.minimumWidth: 120
            text: root.page.picturesDirectory.substring(0, root.page.maxShownLength)
            enabled: root.page.picturesDirectoryEditing && !root.isBusy
            Keys.onReturnPressed: root.page.handlePicturesDirectorySave()
            Keys.onEnterPressed: root.page.handlePicturesDirectorySave()
            Keys.onEscapePressed: root.page.cancelPicturesDirectoryEdit()
        }

        EditButton {
            objectName: "picturesDirectoryButton"
            isEditing: root.page.picturesDirectoryEditing
            isBusy: root.isBusy
            subject: "pictures directory"
            onStarted: root.page.startPicturesDirectoryEdit()
            onSaved: root.page.handlePicturesDirectorySave()
        }

        PageButton {
            objectName: "picturesDirectoryDefaultButton"
            text: "🔙 Default"
            backgroundColor: "#6c757d"
            visible: root.page.picturesDirectoryEditing && !root.isBusy
            // The keyboard's focus may rest on it after it is gone.
            enabled: visible
            onClicked: picturesDirectoryEditField.text = "/home/noctaris/Pictures"
        }

        CancelEditButton {
            objectName: "picturesDirectoryCancelButton"
            subject: "pictures directory"
            visible: root.page.picturesDirectoryEditing && !root.isBusy
            onClicked: root.page.cancelPicturesDirectoryEdit()
        }
    }

    RowLayout {
        visible: !root.page.picturesDirectoryModeInternal
        Layout.fillWidth: true
        spacing: 10

        PageComboBox {
            id: externalStorageComboBox
            objectName: "externalStorageComboBox"

            readonly property var drives: root.page.externalStorageDevices

            page: root.page
            Layout.fillWidth: true
            Layout.minimumWidth: 120
            Accessible.name: "External drive"
            enabled: !root.isBusy && root.page.externalStorageLoaded
            model: drives.length > 0 ? drives : ["No external devices found"]
            displayText: {
                if (!root.page.externalStorageLoaded)
                    return "Loading external devices..."
                if (drives.length === 0)
                    return "No external devices found"
                return currentIndex >= 0 && currentIndex < drives.length ? drives[currentIndex] : currentText
            }
            onActivated: function(index) {
                if (index >= 0 && index < drives.length)
                    root.page.selectedExternalDevice = drives[index]
            }
        }

        // The choice is taken at once, without waiting for what the device makes of it.
        PageButton {
            objectName: "picturesDirectorySetButton"
            text: root.isBusy ? "⏳" : "💾 Set"
            Accessible.name: "Set the external drive"
            enabled: !root.isBusy && externalStorageComboBox.drives.length > 0 && root.page.selectedExternalDevice !== ""
            onClicked: {
                const drive = root.page.selectedExternalDevice
                if (drive.trim() === "" || !root.page.hasDevice())
                    return
                root.page.deviceDiscovery.updatePicturesDirectory(root.page.deviceIndex, drive)
                root.page.picturesDirectory = drive
            }
        }

        PageButton {
            objectName: "externalStorageRefreshButton"
            text: "🔄"
            backgroundColor: "#6c757d"
            Accessible.name: "Look for external drives again"
            enabled: !root.isBusy
            onClicked: root.page.queryExternalStorage()
        }
    }
}
