// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

/// What the settings page shows of its device: the cards, which scroll, and the footer, which does not.
Item {
    id: root

    required property var page

    readonly property alias hostnameField: deviceInformation.hostnameField
    readonly property alias picturesDirectoryEditField: deviceInformation.picturesDirectoryEditField
    readonly property alias externalStorageComboBox: deviceInformation.externalStorageComboBox

    readonly property var focusedItem: Window.activeFocusItem

    /// Brings what the keyboard acts on into view. The mouse finds its own way: what moved under it would miss
    /// its click. If the focus has nowhere to be, it goes back to the page, which knows the Escape key.
    onFocusedItemChanged: {
        if (focusedItem === parent && page.visible)
            Qt.callLater(returnFocus) // qmllint disable
        else if (isInArea(focusedItem) && focusedItem.focusReason !== Qt.MouseFocusReason)
            reveal(focusedItem)
    }

    // Later, for the focus is still on its way when that is seen.
    function returnFocus() {
        if (focusedItem === parent && page.visible)
            page.forceActiveFocus()
    }

    function isInArea(item: Item): bool {
        let ancestor = item
        while (ancestor && ancestor !== area.contentItem)
            ancestor = ancestor.parent
        return !!ancestor
    }

    function reveal(item: Item) {
        const margin = 12
        const top = item.mapToItem(area.contentItem, 0, 0).y - margin
        const bottom = top + item.height + 2 * margin
        if (top < area.contentY)
            area.contentY = Math.max(0, top)
        else if (bottom > area.contentY + area.height)
            area.contentY = Math.min(bottom, area.contentHeight) - area.height
    }

    Flickable {
        id: area
        objectName: "contentArea"
        anchors.fill: parent
        anchors.margins: 30
        anchors.bottomMargin: 30 + footer.height + 20
        contentWidth: width
        contentHeight: Math.max(height, row.implicitHeight)
        boundsBehavior: Flickable.StopAtBounds
        clip: contentHeight > height

        ScrollBar.vertical: ScrollBar {
            parent: root
            x: root.width - width - 8
            y: area.y
            height: area.height
            policy: area.contentHeight > area.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        }

        RowLayout {
            id: row
            width: parent.width
            height: area.contentHeight
            spacing: 30

            DeviceInformationCard {
                id: deviceInformation
                page: root.page
                Layout.fillHeight: true
                Layout.minimumHeight: Math.max(550, implicitHeight)
                Layout.preferredWidth: (row.width - row.spacing) * 0.7
            }

            ColumnLayout {
                Layout.fillHeight: true
                Layout.fillWidth: true
                spacing: 30

                ResetCard {
                    page: root.page
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.minimumHeight: Math.max(225, implicitHeight)
                }

                WebInterfacesCard {
                    page: root.page
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.minimumHeight: Math.max(225, implicitHeight)
                }
            }
        }
    }

    PageFooter {
        id: footer
        page: root.page
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 30
    }
}
