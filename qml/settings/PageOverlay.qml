// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../components"

/// A titled box over the page. It grows with its content up to the page's size, then the content scrolls;
/// the buttons stay in view.
Rectangle {
    id: root

    required property var page
    property color accentColor: "#3b82f6"
    property alias title: title.text
    property alias buttons: buttonRow.data
    default property alias content: column.data
    readonly property bool hasButtons: buttonRow.visibleChildren.length > 0

    anchors.centerIn: parent
    width: Math.min(500, parent.width - 40)
    height: Math.min(parent.height - 20, 25 + title.height + 15 + column.implicitHeight + (hasButtons ? 20 + buttonRow.height : 0) + 25)
    z: 3000
    visible: false
    // The keyboard's focus may rest on a button that is gone, and would press it again.
    enabled: visible
    radius: 12
    color: page.cardColor
    border.width: 2
    border.color: accentColor
    Accessible.role: Accessible.Dialog
    Accessible.name: title.Accessible.name

    /// Scrolls to a line of what is in the box.
    function reveal(top: real, height: real) {
        if (top < area.contentY)
            area.contentY = top
        else if (top + height > area.contentY + area.height)
            area.contentY = top + height - area.height
    }

    /// Whether the focus is in the box, or nowhere but in what holds it.
    function keepsFocus(item: Item): bool {
        for (let ancestor = item; ancestor; ancestor = ancestor.parent) {
            if (ancestor === root)
                return true
        }
        for (let ancestor = root.parent; ancestor && ancestor !== page; ancestor = ancestor.parent) {
            if (ancestor === item)
                return true
        }
        return !item
    }

    onVisibleChanged: {
        if (!visible && page.visible && keepsFocus(Window.activeFocusItem))
            page.takeFocus()
    }

    // Clicks on the box end in it.
    MouseArea {
        anchors.fill: parent
        onClicked: {}
    }

    PlainText {
        id: title
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 25
        horizontalAlignment: Text.AlignHCenter
        color: root.accentColor
        font.pixelSize: 18
        font.weight: Font.Bold
        Accessible.role: Accessible.Heading
        Accessible.name: text.replace(/^[^A-Za-z]+/, "")
    }

    Flickable {
        id: area
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: title.bottom
        anchors.bottom: root.hasButtons ? buttonRow.top : parent.bottom
        anchors.leftMargin: 25
        anchors.rightMargin: 25
        anchors.topMargin: 15
        anchors.bottomMargin: root.hasButtons ? 20 : 25
        contentHeight: column.implicitHeight
        clip: contentHeight > height
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds

        ScrollBar.vertical: ScrollBar {
            policy: area.contentHeight > area.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        }

        ColumnLayout {
            id: column
            width: area.width - (area.interactive ? 16 : 0)
            spacing: 12
        }
    }

    Row {
        id: buttonRow
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 25
        spacing: 12
    }
}
