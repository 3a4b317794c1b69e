// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// How far the companion service's reset is.
ProgressOverlay {
    id: root
    objectName: "lumarcProgressDialog"

    accentColor: "#fd7e14"
    title: "🎥 Lumarc Reset in Progress"
    percentText: page.lumarcRegenerationProgress + "%"
    stage: page.lumarcRegenerationMessage || "Resetting Lumarc service and regenerating images..."
    visible: page.lumarcResetInProgress

    FillBar {
        page: root.page
        percent: root.page.lumarcRegenerationProgress
        fillColor: root.accentColor
    }
}
