// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Asks before the companion service is reset.
ConfirmOverlay {
    id: root
    objectName: "lumarcResetConfirmDialog"

    accentColor: "#fd7e14"
    title: "🎥 Lumarc Reset Confirmation"
    text: "You are about to reset the Lumarc service on this Noctaris device."
    confirmText: "🎥 Reset Lumarc"
    onConfirmed: {
        page.lumarcResetInProgress = true
        page.deviceDiscovery.resetLumarc(page.deviceIndex)
    }
}
