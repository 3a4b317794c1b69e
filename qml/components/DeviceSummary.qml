// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// What the settings page shows as long as it has no settings: which device it is.
Item {
    id: root

    required property var page

    readonly property bool dark: themeManager.isDarkTheme // qmllint disable unqualified
    readonly property color borderColor: dark ? "#3a3a3a" : "#e0e0e0"
    readonly property color textColor: dark ? "white" : "#1a1a1a"
    readonly property color secondaryTextColor: dark ? "#999999" : "#666666"

    function deviceData(role: int): string {
        const devices = page.deviceDiscovery
        if (!devices || page.deviceIndex < 0)
            return ""
        return devices.data(devices.index(page.deviceIndex, 0), role) || ""
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: 30
        anchors.bottomMargin: 70
        radius: 8
        color: root.dark ? "#2a2a2a" : "#ffffff"
        border.width: 1
        border.color: root.borderColor

        Column {
            anchors.centerIn: parent
            width: Math.min(parent.width - 60, 760)
            spacing: 10

            PlainText {
                objectName: "pageHostname"
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                deviceText: root.deviceData(258)
                font.pixelSize: 20
                font.weight: Font.DemiBold
                color: root.textColor
            }

            PlainText {
                objectName: "pageAddress"
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                deviceText: root.deviceData(257)
                font.family: "Consolas, Monaco, monospace"
                color: root.secondaryTextColor
            }

            PlainText {
                width: parent.width
                topPadding: 10
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
                maximumLineCount: 3
                text: "This version finds devices and shows whether they are online. It does not change their settings yet."
                color: root.secondaryTextColor
            }
        }
    }

    Item {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 70

        CustomButton {
            objectName: "closeButton"
            anchors.left: parent.left
            anchors.leftMargin: 30
            anchors.verticalCenter: parent.verticalCenter
            text: "✖️ Close"
            onClicked: root.page.closed()
        }
    }
}
