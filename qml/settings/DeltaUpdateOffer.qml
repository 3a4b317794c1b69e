// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../components"

/// Offers the smaller update, with what is new in it.
ConfirmOverlay {
    id: root
    objectName: "deltaUpdateDialog"

    readonly property var metadata: page.deltaMetadata
    readonly property string sizeText: metadata.size_mb ? " (" + Number(metadata.size_mb).toFixed(1) + " MB)" : ""

    width: Math.min(560, parent.width - 40)
    title: "📡 System Update Available"
    confirmText: "📥 Download & Install"
    cancelText: "Later"
    onConfirmed: {
        if (!metadata.target_version)
            return
        page.deltaUpdateInProgress = true
        page.deltaUpdateProgress = 0
        page.deviceDiscovery.applyDeltaUpdate(page.deviceIndex, metadata.target_version)
    }

    PlainText {
        objectName: "releaseTitle"
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        deviceText: root.metadata.release_title || "System Update"
        color: root.page.textColor
        font.pixelSize: 16
        font.weight: Font.DemiBold
    }

    PlainText {
        objectName: "releaseDate"
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        deviceText: root.metadata.release_date || ""
        color: root.page.secondaryTextColor
    }

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: versions.implicitHeight + 20
        radius: 8
        color: root.page.dark ? "#1f1f1f" : "#fafafa"
        border.width: 1
        border.color: root.page.borderColor

        RowLayout {
            id: versions
            anchors.fill: parent
            anchors.margins: 10

            VersionBox {
                objectName: "currentVersion"
                heading: "CURRENT"
                version: root.metadata.current_version || "N/A"
            }

            PlainText {
                text: "→"
                font.pixelSize: 20
                color: root.page.secondaryTextColor
                Accessible.ignored: true
            }

            VersionBox {
                objectName: "newVersion"
                heading: "NEW"
                version: (root.metadata.target_version || "N/A") + root.sizeText
            }
        }
    }

    ColumnLayout {
        objectName: "changelogSection"
        Layout.fillWidth: true
        spacing: 6
        visible: !!root.metadata.changelog && root.metadata.changelog.length > 0

        PlainText {
            text: "What's New"
            color: root.page.textColor
            font.weight: Font.DemiBold
        }

        ListView {
            id: changelog
            objectName: "changelog"
            Layout.fillWidth: true
            implicitHeight: Math.min(contentHeight, 160)
            clip: true
            spacing: 4
            boundsBehavior: Flickable.StopAtBounds
            activeFocusOnTab: true
            highlightMoveDuration: 100
            model: root.metadata.changelog || []

            ScrollBar.vertical: ScrollBar {}

            FocusRing {
                visible: changelog.activeFocus
            }

            delegate: Text {
                required property string modelData

                width: ListView.view.width
                text: "• " + root.page.formatMarkdown(modelData).substring(0, 4096)
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignLeft
                font.pixelSize: 14
                color: root.page.textColor
            }
        }
    }

    OverlayText {
        page: root.page
        text: "⚠️ Do not disconnect power or network during update."
    }

    component VersionBox: ColumnLayout {
        id: box

        required property string heading
        required property string version

        Layout.fillWidth: true
        Layout.preferredWidth: 1
        spacing: 2

        PlainText {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: box.heading
            font.pixelSize: 12
            color: root.page.secondaryTextColor
        }

        PlainText {
            objectName: "version"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            deviceText: box.version
            wrapMode: Text.Wrap
            maximumLineCount: 3
            font.weight: Font.DemiBold
            color: "#f97316"
        }
    }
}
