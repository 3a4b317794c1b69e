// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import "pictures.js" as Pictures

/// The pictures in a grid, to be selected by a click or with the space bar, and opened with the return key.
Rectangle {
    id: root

    required property var page

    radius: 8
    color: page.cardColor
    border.width: 1
    border.color: page.borderColor

    LoadingNote {
        anchors.centerIn: parent
        page: root.page
        loadingText: "Loading images..."
        emptyText: "No images"
        isEmpty: view.count === 0
    }

    GridView {
        id: view
        objectName: "imagesView"

        readonly property int columnCount: Math.max(1, Math.floor(width / 210))

        function currentUuid(): string {
            return Pictures.uuidOf(root.page.imagesData[currentIndex])
        }

        anchors.fill: parent
        anchors.margins: 10
        visible: !root.page.isLoading
        model: root.page.imagesData
        cellWidth: Math.floor((width - 12) / columnCount)
        cellHeight: 252
        reuseItems: true
        clip: true
        activeFocusOnTab: true
        keyNavigationEnabled: true
        boundsBehavior: Flickable.StopAtBounds
        Accessible.role: Accessible.List
        Accessible.name: "Images"
        Keys.onSpacePressed: root.page.toggleSelection(currentUuid())
        Keys.onReturnPressed: root.page.showFullImage(currentUuid(), currentIndex)
        Keys.onEnterPressed: root.page.showFullImage(currentUuid(), currentIndex)

        ScrollBar.vertical: ScrollBar {
            policy: view.contentHeight > view.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        }

        delegate: ThumbnailCell {
            page: root.page
            width: view.cellWidth
            height: view.cellHeight
            hasFocus: view.activeFocus && GridView.isCurrentItem
            onClicked: {
                view.currentIndex = index
                view.forceActiveFocus()
            }
        }
    }
}
