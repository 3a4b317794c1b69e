// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// When the page asks without being told to. The timers run on while the page is closed; then they ask nothing.
Item {
    id: root

    required property var page
    readonly property alias rebootTimeoutTimer: rebootTimeoutTimer
    readonly property alias ethernetRefreshTimer: ethernetRefreshTimer

    Timer {
        id: softwareUpdateProgressTimer
        objectName: "softwareUpdateProgressTimer"
        interval: 1000
        repeat: true
        running: root.page.softwareUpdateInProgress
        onTriggered: {
            if (root.page.hasDevice())
                root.page.deviceDiscovery.checkSoftwareUpdateProgress(root.page.deviceIndex)
        }
    }

    Timer {
        id: deltaProgressTimer
        objectName: "deltaProgressTimer"
        interval: 2000
        repeat: true
        running: root.page.deltaUpdateInProgress
        onTriggered: {
            if (root.page.hasDevice())
                root.page.deviceDiscovery.checkDeltaProgress(root.page.deviceIndex)
        }
    }

    // Stands ready to end the wait for a reboot. The device's answer does so already.
    Timer {
        id: rebootTimeoutTimer
        objectName: "rebootTimeoutTimer"
        interval: 5000
        onTriggered: root.page.rebootInProgress = false
    }

    // Gives the device time to set up the second address of its port.
    Timer {
        id: ethernetRefreshTimer
        objectName: "ethernetRefreshTimer"
        interval: 2000
        onTriggered: {
            if (root.page.hasDevice())
                root.page.deviceDiscovery.queryNetworkInterfaces(root.page.deviceIndex)
        }
    }
}
