// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

/// Says that something is under way that cannot tell how far it is.
PageOverlay {
    id: root

    property string text

    z: 4000

    OverlayText {
        page: root.page
        text: root.text
    }

    BusyIndicator {
        Layout.alignment: Qt.AlignHCenter
        running: root.visible
        palette.dark: root.accentColor
        Accessible.name: root.Accessible.name
    }
}
