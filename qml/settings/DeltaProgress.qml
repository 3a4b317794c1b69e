// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import "stages.js" as Stages

/// How far the delta update is; in the device's own words if it has any.
ProgressOverlay {
    id: root
    objectName: "deltaProgressDialog"

    title: "📡 Downloading Update"
    text: "Please wait while the update is being downloaded...\n\n⚠️ Do not disconnect power or network"
    percentText: page.deltaUpdateProgress + "%"
    stage: page.deltaUpdateMessage || Stages.stageOf(page.deltaUpdateProgress, "Initializing download...")
    visible: page.deltaUpdateInProgress

    FillBar {
        page: root.page
        percent: root.page.deltaUpdateProgress
        fillColor: root.accentColor
    }
}
