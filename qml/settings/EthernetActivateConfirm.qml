// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Warns before the port goes to Direct, which cuts the user off.
ConfirmOverlay {
    id: root
    objectName: "ethernetActivateConfirmDialog"

    accentColor: "#3b82f6"
    title: "⚠️ Activate Ethernet"
    text: "This will enable ethernet and your current network connection will be lost, Do you want to continue?"
    confirmText: "🔌 Connect"
    needsDevice: false
    onCancelled: {
        page.ethernetModeDesiredDirect = false
        page.ethernetChangePending = false
    }
    onConfirmed: {
        page.ethernetModeDesiredDirect = true
        page.ethernetChangePending = true
        page.ethernetActivationInProgress = true
        page.deviceDiscovery?.activateDirectEthernet(page.deviceIndex)
    }
}
