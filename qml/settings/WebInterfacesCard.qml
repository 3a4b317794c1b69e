// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts

/// What the device shows in a browser.
Card {
    id: root

    objectName: "webInterfacesCard"
    title: "⚛ WEB INTERFACES"

    WebButton {
        objectName: "webManagerButton"
        text: "Web Manager"
        onClicked: {
            if (root.page.hasDevice())
                root.page.deviceDiscovery.openNoctarisWebUI(root.page.deviceIndex)
        }
    }

    WebButton {
        objectName: "dashboardButton"
        text: "Dashboard"
        onClicked: {
            if (root.page.hasDevice())
                root.page.deviceDiscovery.openCustomPort(root.page.deviceIndex, 3000)
        }
    }

    WebButton {
        objectName: "vncButton"
        text: "VNC"
        onClicked: {
            if (root.page.hasDevice())
                root.page.deviceDiscovery.openVNCViewer(root.page.deviceIndex)
        }
    }

    Item {
        Layout.fillHeight: true
    }

    component WebButton: PageButton {
        Layout.fillWidth: true
        backgroundColor: root.page.theme.secondaryColor
    }
}
