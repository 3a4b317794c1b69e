// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Asks before something is done. Confirming hides the question first and acts afterwards; if there is no
/// device any more, nothing is done.
PageOverlay {
    id: root

    property string text
    property string warning
    property string confirmText
    /// What a screen reader calls the confirming button, if its text is a picture alone.
    property string confirmName
    property string cancelText: "❌ Cancel"
    property color confirmColor: accentColor
    // Of a question that can also be confirmed without a device.
    property bool needsDevice: true

    signal confirmed()
    signal cancelled()

    OverlayText {
        page: root.page
        text: root.text
        visible: text !== ""
    }

    OverlayText {
        page: root.page
        text: root.warning
        font.weight: Font.DemiBold
        visible: text !== ""
    }

    buttons: [
        PageButton {
            objectName: "cancelButton"
            text: root.cancelText
            backgroundColor: "#6c757d"
            onClicked: {
                root.visible = false
                root.cancelled()
            }
        },
        PageButton {
            objectName: "confirmButton"
            text: root.confirmText
            Accessible.name: root.confirmName || text.replace(/^[^A-Za-z0-9]+/, "")
            backgroundColor: root.confirmColor
            onClicked: {
                root.visible = false
                if (root.page.hasDevice() || !root.needsDevice)
                    root.confirmed()
            }
        }
    ]
}
