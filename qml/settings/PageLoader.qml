// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// A document that lies over the page while this is active. It is made anew each time, for the page's device, and
/// goes when it says that it is closed.
Loader {
    id: root

    required property var page
    required property string document
    /// What it needs besides the device.
    property var properties: ({})
    // Whom it was opened for. Rows move while it is there, and the page may be left and opened for another device:
    // that one is not what the document shows.
    property string deviceIpAddress
    readonly property int deviceIndex: page.getPrimaryDeviceIP() === deviceIpAddress ? page.deviceIndex : -1
    readonly property Item focusedItem: Window.activeFocusItem

    // Later, for the focus is still on its way when that is seen.
    function returnFocus() {
        if (focusedItem === root && item)
            item.takeFocus() // qmllint disable
    }

    anchors.fill: parent
    active: false
    onActiveChanged: {
        if (active) {
            deviceIpAddress = page.getPrimaryDeviceIP()
            setSource(document, Object.assign({ deviceDiscovery: page.deviceDiscovery, deviceIndex: deviceIndex }, properties))
        } else {
            source = ""
        }
    }
    onLoaded: item.deviceIndex = Qt.binding(() => root.deviceIndex)
    // A control that goes grey leaves the keyboard to what is around the document.
    onFocusedItemChanged: {
        if (focusedItem === root)
            Qt.callLater(returnFocus) // qmllint disable
    }

    Connections {
        target: root.item

        function onClosed() {
            root.active = false
            root.page.takeFocus()
        }
    }
}
