// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts

/// A dot that says whether something is online, with a label. Stands ready for pages that show one device.
RowLayout {
    id: root
    objectName: "StatusIndicator"

    property bool isOnline: false
    property string statusText: "Offline"
    readonly property bool dark: themeManager.isDarkTheme // qmllint disable unqualified
    readonly property color dotColor: isOnline ? "#4ade80" : "#ef4444"

    spacing: 8

    Rectangle {
        objectName: "statusDot"
        Layout.preferredWidth: 8
        Layout.preferredHeight: 8
        radius: 4
        color: root.dotColor

        Rectangle {
            objectName: "statusRing"
            anchors.centerIn: parent
            width: 16
            height: 16
            radius: 8
            visible: root.isOnline
            color: root.dotColor

            SequentialAnimation on opacity {
                running: root.isOnline && root.visible
                loops: Animation.Infinite

                NumberAnimation {
                    from: 0.3
                    to: 0.1
                    duration: 1000
                }

                NumberAnimation {
                    from: 0.1
                    to: 0.3
                    duration: 1000
                }
            }
        }
    }

    PlainText {
        Layout.fillWidth: true
        Layout.maximumWidth: Math.ceil(implicitWidth)
        text: root.statusText
        color: root.dark ? "white" : "#1a1a1a"
    }
}
