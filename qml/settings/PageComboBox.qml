// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import "../components"

/// A choice of the page among texts of the device.
ComboBox {
    id: root

    required property var page

    implicitHeight: 36
    leftPadding: 10
    rightPadding: 30
    font.pixelSize: 14

    contentItem: PlainText {
        deviceText: root.displayText
        color: root.enabled ? root.page.textColor : root.page.secondaryTextColor
        Accessible.ignored: true
    }

    indicator: PlainText {
        x: root.width - width - 10
        height: root.height
        text: "▾"
        color: root.page.secondaryTextColor
        Accessible.ignored: true
    }

    background: Rectangle {
        radius: 6
        color: root.page.dark ? "#1f1f1f" : "#fafafa"
        border.width: root.visualFocus ? 2 : 1
        border.color: root.visualFocus ? "#FF6600" : root.page.borderColor
    }

    delegate: ItemDelegate {
        id: entry

        required property string modelData
        required property int index

        width: ListView.view.width
        height: 36
        highlighted: root.highlightedIndex === index
        Accessible.name: modelData

        contentItem: PlainText {
            deviceText: entry.modelData
            color: root.page.textColor
            Accessible.ignored: true
        }

        background: Rectangle {
            color: entry.highlighted ? root.page.borderColor : "transparent"
        }
    }

    popup: Popup {
        y: root.height + 2
        width: root.width
        height: Math.min(contentItem.implicitHeight + 2, 250)
        padding: 1

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: root.popup.visible ? root.delegateModel : null // qmllint disable
            currentIndex: root.highlightedIndex
        }

        background: Rectangle {
            radius: 6
            color: root.page.cardColor
            border.width: 1
            border.color: root.page.borderColor
        }
    }
}
