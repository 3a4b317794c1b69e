// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// The port on its way to Direct.
BusyOverlay {
    objectName: "ethernetActivationProgressDialog"
    accentColor: "#3b82f6"
    title: "🔌 Activating Direct Ethernet..."
    text: "Please wait while the ethernet connection is being configured...\n\n⚠️ Your current network connection may be interrupted."
    visible: page.ethernetActivationInProgress
}
