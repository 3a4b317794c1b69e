// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"

/// Says that something is under way, and how far it is. There is no way to give it up.
PageOverlay {
    id: root

    property string text
    property string percentText
    property string stage
    default property alias bar: place.data

    z: 4000

    OverlayText {
        page: root.page
        text: root.text
        visible: text !== ""
    }

    Item {
        id: place
        Layout.fillWidth: true
        implicitHeight: childrenRect.height
    }

    PlainText {
        objectName: "percentText"
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        text: root.percentText
        color: root.page.textColor
        font.pixelSize: 18
        font.weight: Font.DemiBold
    }

    PlainText {
        objectName: "stageText"
        visible: text !== ""
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        deviceText: root.stage
        wrapMode: Text.Wrap
        maximumLineCount: 3
        color: root.page.secondaryTextColor
    }
}
