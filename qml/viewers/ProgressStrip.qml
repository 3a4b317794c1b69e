// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"
import "../settings"

/// How far the download of the selected pictures is.
ViewerCard {
    id: root

    PlainText {
        text: "Progress:"
        color: root.page.textColor
    }

    Item {
        Layout.fillWidth: true
        implicitHeight: bar.height

        FillBar {
            id: bar
            page: root.page
            percent: root.page.downloadProgress
            fillColor: root.page.accentOrange
        }
    }

    PlainText {
        objectName: "percentText"
        text: root.page.downloadProgress + "%"
        color: root.page.textColor
    }
}
