// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"

/// Words of an overlay, wrapped. They can be selected and copied, since users pass them on.
TextEdit {
    id: root

    required property var page
    // What a device says goes here.
    property string deviceText

    Layout.fillWidth: true
    text: deviceText.substring(0, page.maxShownLength)
    readOnly: true
    selectByMouse: true
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap
    horizontalAlignment: TextEdit.AlignHCenter
    font.pixelSize: 14
    color: page.textColor
    selectionColor: "#FF6600"
    selectedTextColor: "#1a1a1a"
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    FocusRing {
        visible: root.activeFocus && root.activeFocusOnTab
    }
}
