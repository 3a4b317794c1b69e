// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Asks before the network settings are lost.
ConfirmOverlay {
    id: root
    objectName: "networkResetConfirmDialog"

    accentColor: "#ef4444"
    title: "⚠️ Network Reset Confirmation"
    text: "You are about to reset the network configuration of this Noctaris device."
    warning: "⚠️ Are you sure you want to proceed?"
    confirmText: "� Reset Network"
    confirmColor: page.theme.dangerColor
    onConfirmed: {
        page.networkResetInProgress = true
        page.deviceDiscovery.networkReset(page.deviceIndex)
    }
}
