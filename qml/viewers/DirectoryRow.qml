// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"
import "../settings"

/// The directory whose videos are listed.
ViewerCard {
    id: root

    readonly property alias field: field

    PlainText {
        text: "📁 Directory:"
        color: root.page.textColor
        Accessible.name: "Directory"
    }

    PageField {
        id: field
        objectName: "videosDirectoryField"
        page: root.page
        description: "Videos directory"
        Layout.fillWidth: true
        readOnly: !root.page.videosDirectoryEditing
        Keys.onReturnPressed: save()
        Keys.onEnterPressed: save()

        function save() {
            if (root.page.videosDirectoryEditing)
                root.page.handleVideosDirectorySave()
        }
    }

    PageButton {
        objectName: "videosDirectoryButton"
        text: root.page.videosDirectoryEditing ? "💾 Save" : "✏️ Edit"
        backgroundColor: root.page.accentOrange
        hoverColor: root.page.accentLight
        onClicked: {
            if (root.page.videosDirectoryEditing)
                root.page.handleVideosDirectorySave()
            else
                root.page.startVideosDirectoryEdit()
        }
    }

    ViewerButton {
        objectName: "videosDirectoryCancelButton"
        text: "❌"
        tip: "Cancel"
        visible: root.page.videosDirectoryEditing
        onClicked: root.page.cancelVideosDirectoryEdit()
    }
}
