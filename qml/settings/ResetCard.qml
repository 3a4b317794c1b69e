// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts

/// Three ways back to a clean state, the mildest last.
Card {
    id: root

    objectName: "resetCard"
    title: "⟲ RESET"

    ResetButton {
        objectName: "networkResetButton"
        text: root.page.networkResetInProgress ? "Resetting Network..." : "Network Reset"
        enabled: !root.page.networkResetInProgress
        onClicked: root.page.showOverlay("networkResetConfirmDialog")
    }

    ResetButton {
        objectName: "factoryResetButton"
        text: root.page.factoryResetInProgress ? "Factory Resetting..." : "Factory Reset"
        enabled: !root.page.factoryResetInProgress && !root.page.rebootInProgress && !root.page.shutdownInProgress && !root.page.networkResetInProgress && !root.page.lumarcResetInProgress
        onClicked: root.page.showOverlay("factoryResetConfirmDialog")
    }

    ResetButton {
        objectName: "lumarcResetButton"
        text: root.page.lumarcResetInProgress ? "⏳ Resetting Lumarc..." : "🎥 Lumarc Reset"
        enabled: !root.page.lumarcResetInProgress && !root.page.networkResetInProgress
        onClicked: root.page.showOverlay("lumarcResetConfirmDialog")
    }

    Item {
        Layout.fillHeight: true
    }

    component ResetButton: PageButton {
        Layout.fillWidth: true
        backgroundColor: root.page.theme.dangerColor
    }
}
