// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Offers the restart that ends a delta update.
ConfirmOverlay {
    id: root
    objectName: "deltaRebootDialog"

    z: 4000
    accentColor: "#22c55e"
    title: "✅ Update Downloaded"
    text: "The update has been downloaded successfully.\n\nWould you like to restart now to apply the update?"
    confirmText: "🔄 Restart Now"
    cancelText: "Later"
    onConfirmed: page.restartDevice()
    // Nothing remembers the offer: the device makes it again. The page has no such name, which the log notes.
    onCancelled: deltaPendingReboot = false // qmllint disable unqualified
}
