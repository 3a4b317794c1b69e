// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"
import "../settings"

/// The way back, how many files there are, and a fresh look at them.
ViewerCard {
    id: root

    required property int count
    required property bool canRefresh
    property string refreshText: "Refresh"
    property string status
    property color statusColor: page.textColor

    signal refreshed()

    PageButton {
        objectName: "closeViewerButton"
        text: "✖️ Close"
        backgroundColor: "#6c757d"
        onClicked: root.page.closed()
    }

    PlainText {
        objectName: "downloadStatus"
        Layout.fillWidth: true
        visible: deviceText !== ""
        deviceText: root.status
        wrapMode: Text.Wrap
        maximumLineCount: 3
        color: root.statusColor
        Accessible.role: Accessible.AlertMessage
        Accessible.name: deviceText
    }

    Item {
        Layout.fillWidth: root.status === ""
    }

    PlainText {
        objectName: "countText"
        text: root.count + " " + root.page.noun + "s"
        color: root.page.secondaryTextColor
    }

    PageButton {
        objectName: "refreshButton"
        text: root.refreshText
        enabled: root.canRefresh
        backgroundColor: root.page.accentOrange
        hoverColor: root.page.accentLight
        onClicked: root.refreshed()
    }
}
