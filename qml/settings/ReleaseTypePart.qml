// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"

/// The release channel of the astronomy application. During a change neither is chosen; the bindings name the
/// change first, for what a binding does not reach it does not follow.
ColumnLayout {
    id: root

    required property var page

    function change(wanted: string) {
        if (page.releaseTypeUpdateInProgress || page.releaseType === wanted || !page.hasDevice())
            return
        page.releaseTypeUpdateInProgress = true
        page.deviceDiscovery.updateReleaseType(page.deviceIndex, wanted)
    }

    spacing: 4

    PlainText {
        text: "Release Type:"
        color: root.page.secondaryTextColor
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 10

        PageRadioButton {
            id: stableReleaseRadio
            objectName: "stableReleaseRadio"
            page: root.page
            Layout.fillWidth: true
            Layout.minimumWidth: 60
            Layout.maximumWidth: Math.ceil(implicitWidth)
            text: root.page.stableVersion ? "Stable v" + root.page.stableVersion : "Stable"
            checked: !root.page.releaseTypeUpdateInProgress && root.page.releaseType === "stable"
            enabled: !root.page.releaseTypeUpdateInProgress
            onToggled: {
                if (checked)
                    root.change("stable")
            }
        }

        PageRadioButton {
            id: betaReleaseRadio
            objectName: "betaReleaseRadio"
            page: root.page
            Layout.fillWidth: true
            Layout.minimumWidth: 60
            Layout.maximumWidth: Math.ceil(implicitWidth)
            text: root.page.betaVersion ? "Beta v" + root.page.betaVersion : "Beta"
            checked: !root.page.releaseTypeUpdateInProgress && root.page.releaseType === "beta"
            enabled: !root.page.releaseTypeUpdateInProgress
            onToggled: {
                if (checked)
                    root.change("beta")
            }
        }

        SmallBusyIndicator {
            objectName: "releaseTypeBusy"
            running: root.page.releaseTypeUpdateInProgress
            Accessible.name: "Changing the release type"
        }

        Item {
            Layout.fillWidth: true
        }
    }
}
