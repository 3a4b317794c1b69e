// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic
import "stages.js" as Stages

/// How far the full upgrade is.
ProgressOverlay {
    id: root
    objectName: "softwareUpdateProgressDialog"

    title: "📡 Software Update in Progress"
    text: "Please wait while the software is being updated...\n\n⚠️ Do not disconnect power or network"
    percentText: Math.round(page.softwareUpdateProgress) + "%"
    stage: Stages.stageOf(page.softwareUpdateProgress, "Initializing update...")
    visible: page.softwareUpdateInProgress

    ProgressBar {
        id: updateProgressBar
        objectName: "updateProgressBar"
        width: parent.width
        height: 10
        from: 0
        to: 1
        value: root.page.softwareUpdateProgress / 100
        Accessible.name: "Software update"

        background: Rectangle {
            radius: 5
            color: root.page.borderColor
        }

        contentItem: Item {
            Rectangle {
                width: parent.width * updateProgressBar.visualPosition
                height: parent.height
                radius: 5
                color: root.accentColor
            }
        }
    }
}
