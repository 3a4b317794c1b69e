// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// The port on its way back to Auto.
BusyOverlay {
    objectName: "ethernetDeactivationProgressDialog"
    accentColor: "#fd7e14"
    title: "🔌 Deactivating Direct Ethernet..."
    text: "Please wait while the ethernet connection is being reset to Auto mode..."
    visible: page.ethernetDeactivationInProgress
}
