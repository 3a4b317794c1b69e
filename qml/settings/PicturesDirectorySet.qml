// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Tells that the pictures go elsewhere after a reboot, and offers it.
ConfirmOverlay {
    id: root
    objectName: "picturesDirectorySetDialog"

    accentColor: "#22c55e"
    title: "✅ Directory Set"
    text: "Picture directory has been set successfully. Please reboot to apply the changes."
    confirmText: "🔄 Reboot Now"
    cancelText: "Later"
    onConfirmed: {
        page.restartDevice()
    }
}
