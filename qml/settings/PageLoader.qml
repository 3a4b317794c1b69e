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

    anchors.fill: parent
    active: false
    onActiveChanged: {
        if (active)
            setSource(document, Object.assign({ deviceDiscovery: page.deviceDiscovery, deviceIndex: page.deviceIndex }, properties))
        else
            source = ""
    }
    // Rows move while it is there.
    onLoaded: {
        item.deviceDiscovery = Qt.binding(() => root.page.deviceDiscovery)
        item.deviceIndex = Qt.binding(() => root.page.deviceIndex)
    }

    Connections {
        target: root.item

        function onClosed() {
            root.active = false
            root.page.forceActiveFocus()
        }
    }
}
