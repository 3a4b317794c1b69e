// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Asks before a reboot. It alone raises no flag: the button goes on reading as before.
ConfirmOverlay {
    id: root
    objectName: "rebootConfirmDialog"

    accentColor: "#fd7e14"
    title: "🔄 Reboot Confirmation"
    text: "You are about to reboot this Noctaris device."
    confirmText: "🔄 Reboot Device"
    onConfirmed: {
        page.deviceDiscovery.reboot(page.deviceIndex)
    }
}
