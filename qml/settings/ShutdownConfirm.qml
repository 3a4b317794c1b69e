// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Asks before a shutdown.
ConfirmOverlay {
    id: root
    objectName: "shutdownConfirmDialog"

    accentColor: "#dc3545"
    title: "⚠️ Shutdown Confirmation"
    text: "You are about to shutdown this Noctaris device."
    confirmText: "🔌 Shutdown Device"
    onConfirmed: {
        page.shutdownInProgress = true
        page.deviceDiscovery.shutdown(page.deviceIndex)
    }
}
