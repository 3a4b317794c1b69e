// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "components"

/// The table of known devices: headings, rows, and what stands there while there are none.
Rectangle {
    id: root
    objectName: "DeviceTable"

    property alias model: tableView.model
    property alias currentIndex: tableView.currentIndex

    readonly property bool dark: themeManager.isDarkTheme // qmllint disable unqualified
    readonly property color cardColor: dark ? "#2a2a2a" : "#ffffff"
    readonly property color borderColor: dark ? "#3a3a3a" : "#e0e0e0"
    readonly property color secondaryTextColor: dark ? "#999999" : "#666666"

    signal deviceSettingsRequested(int index)

    function takeFocus() {
        tableView.forceActiveFocus()
    }

    radius: 8
    color: dark ? "#1a1a1a" : "#ffffff"
    border.width: 1
    border.color: borderColor

    Rectangle {
        id: heading
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 1
        height: 50
        radius: root.radius - 1
        color: root.cardColor

        // Square lower corners, and the line below the headings.
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: root.radius
            color: root.cardColor

            Rectangle {
                anchors.bottom: parent.bottom
                width: parent.width
                height: 1
                color: root.borderColor
            }
        }

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 20
            anchors.rightMargin: 20
            spacing: 15

            HeaderLabel {
                text: "STATUS"
                Layout.preferredWidth: 100
            }

            HeaderLabel {
                text: "IP ADDRESS"
                Layout.preferredWidth: 150
            }

            HeaderLabel {
                text: "HOSTNAME"
                Layout.fillWidth: true
                Layout.preferredWidth: 0
            }

            HeaderLabel {
                text: "VERSION"
                Layout.preferredWidth: 120
            }

            HeaderLabel {
                text: "MODEL"
                Layout.preferredWidth: 120
            }

            HeaderLabel {
                text: "ACTIONS"
                Layout.preferredWidth: 100
            }
        }
    }

    ListView {
        id: tableView
        objectName: "tableView"

        function openCurrentDevice() {
            const current = currentItem as DeviceRow
            if (current && current.deviceIsOnline)
                current.settingsRequested()
        }

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: heading.bottom
        anchors.bottom: parent.bottom
        anchors.leftMargin: 1
        anchors.rightMargin: 1
        anchors.bottomMargin: root.radius
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        // Rows out of sight poll the model too, so few are kept; with none the view leaves gaps.
        cacheBuffer: 120
        highlightMoveDuration: 0
        focus: true
        activeFocusOnTab: true
        Accessible.role: Accessible.List
        Accessible.name: "Devices"

        Keys.onPressed: function(event) {
            if (event.key === Qt.Key_Home)
                currentIndex = count > 0 ? 0 : -1
            else if (event.key === Qt.Key_End)
                currentIndex = count - 1
            else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                openCurrentDevice()
            else
                return
            event.accepted = true
        }

        delegate: DeviceRow {
            width: tableView.width
            isSelected: index === tableView.currentIndex
            onClicked: tableView.currentIndex = index
            onSettingsRequested: root.deviceSettingsRequested(index)
        }

        ScrollBar.vertical: ScrollBar {
            policy: ScrollBar.AsNeeded
        }
    }

    Loader {
        objectName: "emptyState"
        anchors.centerIn: tableView
        visible: tableView.count === 0
        // The window does not wait for it.
        asynchronous: true
        source: "components/EmptyState.qml"
    }

    component HeaderLabel: PlainText {
        font.pixelSize: 12
        font.weight: Font.DemiBold
        font.letterSpacing: 0.6
        color: root.secondaryTextColor
    }
}
