// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Offers the full upgrade.
ConfirmOverlay {
    id: root
    objectName: "softwareUpdateConfirmDialog"

    accentColor: "#3b82f6"
    title: "📡 Software Update Available"
    text: "A software update is available for this Noctaris device.\n\n⚠️ The update process may take several minutes. Please do not disconnect power or network during the update."
    confirmText: "📡 Start Update"
    onConfirmed: {
        page.softwareUpdateInProgress = true
        page.softwareUpdateProgress = 0
        page.deviceDiscovery.startSoftwareUpdate(page.deviceIndex)
    }
}
