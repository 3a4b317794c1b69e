// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import "maker.js" as Maker

/// Tells how to connect a computer to a port in direct mode.
PageOverlay {
    id: root
    objectName: "ethernetActivateSuccessDialog"

    accentColor: "#22c55e"
    title: "✅ Ethernet Activated"

    OverlayText {
        page: root.page
        text: "Connect Ethernet cable directly between Noctaris and your PC. Set your PC IP address to 192.168.100.2 and gateway to 192.168.100.1"
    }

    buttons: [
        PageButton {
            objectName: "tutorialButton"
            text: "▶️ Video tutorial"
            backgroundColor: "#6c757d"
            onClicked: Qt.openUrlExternally("https://" + Maker.webHost + "/images/fss/videos/noctaris-direct-ethernet.mp4") // qmllint disable unqualified
        },
        PageButton {
            objectName: "okButton"
            text: "OK"
            backgroundColor: root.accentColor
            onClicked: {
                root.visible = false
                root.page.ethernetModeDirect = true
                root.page.ethernetChangePending = false
                if (root.page.hasDevice())
                    root.page.deviceDiscovery.queryNetworkInterfaces(root.page.deviceIndex)
            }
        }
    ]
}
