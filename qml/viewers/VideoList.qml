// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../components"

/// The videos, one a row, to be selected by a click or with the space bar.
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
        loadingText: "Loading videos..."
        emptyText: "No .ser video files found"
        isEmpty: view.count === 0
    }

    ListView {
        id: view
        objectName: "videosView"
        anchors.fill: parent
        anchors.margins: 8
        visible: !root.page.isLoading && count > 0
        model: root.page.videosData
        reuseItems: true
        clip: true
        spacing: 4
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        Accessible.role: Accessible.List
        Accessible.name: "Videos"
        Keys.onSpacePressed: {
            if (currentIndex >= 0)
                root.page.toggleSelection(root.page.videosData[currentIndex].path)
        }

        ScrollBar.vertical: ScrollBar {
            policy: view.contentHeight > view.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        }

        delegate: VideoRow {}
    }

    component VideoRow: ItemDelegate {
        id: row

        required property int index
        required property var modelData
        readonly property bool isSelected: root.page.selectedVideos[modelData.path] === true
        readonly property color factColor: isSelected ? root.page.textColor : root.page.secondaryTextColor

        width: ListView.view.width - 14
        height: 60
        padding: 0
        focusPolicy: Qt.NoFocus
        Accessible.role: Accessible.ListItem
        Accessible.name: modelData.name + (isSelected ? ", selected" : "")
        onClicked: {
            view.currentIndex = index
            view.forceActiveFocus()
            root.page.toggleSelection(modelData.path)
        }

        background: Rectangle {
            radius: 6
            color: row.isSelected ? Qt.alpha(root.page.accentOrange, 0.25) : row.hovered ? Qt.alpha(root.page.borderColor, 0.5) : "transparent"
            border.width: row.isSelected ? 1 : 0
            border.color: root.page.accentOrange

            FocusRing {
                anchors.margins: -2
                radius: 8
                border.color: root.page.textColor
                visible: view.activeFocus && row.ListView.isCurrentItem
            }
        }

        contentItem: RowLayout {
            spacing: 12

            CheckBox {
                objectName: "checkBox"
                Layout.leftMargin: 12
                focusPolicy: Qt.NoFocus
                padding: 0
                // A click changes the row, and the row the box.
                nextCheckState: function() { return checkState }
                checkState: row.isSelected ? Qt.Checked : Qt.Unchecked
                Accessible.name: row.modelData.name
                onClicked: row.clicked()

                indicator: CheckMark {
                    page: root.page
                    isChecked: row.isSelected
                    radius: 4
                }
            }

            PlainText {
                text: "🎥"
                font.pixelSize: 22
                Accessible.ignored: true
            }

            ColumnLayout {
                Layout.fillWidth: true
                Layout.rightMargin: 12
                spacing: 4

                PlainText {
                    objectName: "nameText"
                    Layout.fillWidth: true
                    deviceText: row.modelData.name
                    font.weight: Font.DemiBold
                    color: root.page.textColor
                }

                RowLayout {
                    spacing: 20

                    PlainText {
                        objectName: "pathText"
                        Layout.fillWidth: true
                        Layout.maximumWidth: Math.ceil(implicitWidth)
                        deviceText: "📁 " + row.modelData.path
                        Accessible.name: row.modelData.path
                        font.pixelSize: 12
                        color: row.factColor
                    }

                    PlainText {
                        objectName: "sizeText"
                        Layout.fillWidth: true
                        Layout.minimumWidth: implicitWidth
                        text: "💾 " + root.page.formatBytes(row.modelData.size, 2)
                        Accessible.name: root.page.formatBytes(row.modelData.size, 2)
                        font.pixelSize: 12
                        color: row.factColor
                    }
                }
            }
        }
    }
}
