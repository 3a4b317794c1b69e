// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"

/// How full the device's disk was when the viewer opened.
RowLayout {
    id: root
    objectName: "storageIndicator"

    required property var page
    readonly property var info: page.storageInfo || { total: 0, used: 0, remaining: 0 }
    readonly property bool isAlmostFull: info.remaining < info.total * 0.1

    visible: !!page.storageInfo
    spacing: 8
    Accessible.role: Accessible.StaticText
    Accessible.name: "Storage: " + used.text + ", " + free.text

    PlainText {
        text: "💾"
        Accessible.ignored: true
    }

    PlainText {
        id: used
        objectName: "usedText"
        text: root.page.formatBytes(root.info.used, 1) + " / " + root.page.formatBytes(root.info.total, 1)
        color: root.page.textColor
    }

    Rectangle {
        implicitWidth: 1
        implicitHeight: 18
        color: root.page.borderColor
    }

    PlainText {
        id: free
        objectName: "freeText"
        text: root.page.formatBytes(root.info.remaining, 1) + " free"
        font.weight: Font.DemiBold
        color: root.isAlmostFull ? "#ef4444" : "#22c55e"
    }

    HoverHandler {
        id: hover
    }

    Tip {
        objectName: "storageTip"
        visible: hover.hovered
        text: "Total: " + root.page.formatBytes(root.info.total, 2) + "\nUsed: " + root.page.formatBytes(root.info.used, 2) + "\nFree: " + root.page.formatBytes(root.info.remaining, 2)
    }
}
