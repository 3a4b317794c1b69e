// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"

/// What a viewer shows, how much of it is selected, and what can be done with that.
ViewerCard {
    id: root

    required property string title
    property string subtitle
    property alias facts: facts.data
    property alias tools: tools.data

    PlainText {
        text: root.title
        font.pixelSize: 20
        font.weight: Font.Bold
        color: root.page.textColor
        Accessible.role: Accessible.Heading
        Accessible.name: text.replace(/^[^A-Za-z]+/, "")
    }

    PlainText {
        visible: text !== ""
        text: root.subtitle
        color: root.page.secondaryTextColor
    }

    Item {
        Layout.fillWidth: true
    }

    RowLayout {
        id: facts
    }

    PlainText {
        objectName: "selectedText"
        visible: root.page.selectedCount > 0
        text: root.page.selectedCount + " selected"
        font.weight: Font.DemiBold
        color: root.page.textColor
    }

    RowLayout {
        id: tools
        spacing: 8
    }
}
