// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts

/// An address to be read and copied. Of several interfaces the first that has one is shown.
PageField {
    required property var interfaceNames

    function firstAddress(): string {
        for (const name of interfaceNames) {
            const info = page.getInterfaceInfo(name)
            if (info.available && info.ip !== "")
                return info.ip.substring(0, page.maxShownLength)
        }
        return ""
    }

    Layout.fillWidth: true
    Layout.minimumWidth: 120
    text: firstAddress()
    readOnly: true
    font.family: "Consolas, Monaco, monospace"
    // Kept with its text, so that the beginning is what is seen of a long one.
    onTextChanged: cursorPosition = 0
}
