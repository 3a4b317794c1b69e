// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"

/// Lets a support person in, and shows the ID that they need.
ColumnLayout {
    id: root

    required property var page

    spacing: 4

    PlainText {
        text: "Remote Support:"
        color: root.page.secondaryTextColor
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 10

        PageSwitch {
            id: remoteSupportSwitch
            objectName: "remoteSupportSwitch"
            page: root.page
            text: remoteSupportSwitch.checked ? "ON" : "OFF"
            Accessible.name: "Remote support"
            checked: root.page.remoteSupportActive
            enabled: !root.page.remoteSupportInProgress
            onToggled: {
                if (!root.page.hasDevice())
                    return
                root.page.remoteSupportInProgress = true
                if (checked)
                    root.page.deviceDiscovery.startRemoteSupport(root.page.deviceIndex)
                else
                    root.page.deviceDiscovery.stopRemoteSupport(root.page.deviceIndex)
            }
        }

        SmallBusyIndicator {
            objectName: "remoteSupportBusy"
            running: root.page.remoteSupportInProgress
            Accessible.name: "Changing remote support"
        }

        RemoteIdContainer {
            page: root.page
            Layout.fillWidth: true
            Layout.maximumWidth: Math.ceil(implicitWidth)
        }

        Item {
            Layout.fillWidth: true
        }
    }
}
