// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// How an operation ended. A later message takes the place of an earlier one.
PageOverlay {
    id: root
    objectName: "messageDialog"

    property bool isSuccess: false
    property string messageText: ""

    z: 2000
    title: isSuccess ? "✅ Success" : "❌ Error"
    accentColor: isSuccess ? "#22c55e" : "#ef4444"

    OverlayText {
        objectName: "messageText"
        page: root.page
        deviceText: root.messageText
        // Long ones are read, and copied, by keyboard too.
        activeFocusOnTab: true
        persistentSelection: true
        onCursorRectangleChanged: root.reveal(y + cursorRectangle.y, cursorRectangle.height)
    }

    buttons: [
        PageButton {
            objectName: "okButton"
            text: "OK"
            backgroundColor: root.accentColor
            onClicked: root.visible = false
        }
    ]
}
