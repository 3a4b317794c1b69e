// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Asks before everything is lost.
ConfirmOverlay {
    id: root
    objectName: "factoryResetConfirmDialog"

    accentColor: "#dc3545"
    title: "⚠️ Factory Reset Confirmation"
    text: "You are about to perform a FACTORY RESET on this Noctaris device."
    warning: "🚨 This action CANNOT be undone!"
    confirmText: "🏭 FACTORY RESET"
    confirmColor: page.theme.dangerColor
    onConfirmed: {
        page.factoryResetInProgress = true
        page.deviceDiscovery.factoryReset(page.deviceIndex)
    }
}
