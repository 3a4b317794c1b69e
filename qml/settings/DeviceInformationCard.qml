// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts

/// What the device is called, how it is reached, where its pictures go, and what runs on it.
Card {
    id: root

    readonly property alias hostnameField: hostname.hostnameField
    readonly property alias picturesDirectoryEditField: pictures.picturesDirectoryEditField
    readonly property alias externalStorageComboBox: pictures.externalStorageComboBox

    objectName: "deviceInformationCard"
    title: "⚙ DEVICE INFORMATION"

    HostnameRow {
        id: hostname
        page: root.page
    }

    CardHeading {
        page: root.page
        text: "◉ NETWORK INTERFACES"
    }

    EthernetRow {
        page: root.page
    }

    WifiRow {
        page: root.page
        label: "Internal WiFi IP:"
        description: "Internal WiFi"
        interfaceName: "wlan0"
    }

    WifiRow {
        page: root.page
        label: "WiFi Dongle IP:"
        description: "WiFi dongle"
        interfaceName: "wlan1"
    }

    HotspotRow {
        page: root.page
    }

    PicturesDirectoryRow {
        id: pictures
        page: root.page
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 20

        ReleaseTypePart {
            page: root.page
            Layout.fillWidth: true
            Layout.preferredWidth: 1
        }

        RemoteSupportPart {
            page: root.page
            Layout.fillWidth: true
            Layout.preferredWidth: 1
        }
    }

    Item {
        Layout.fillHeight: true
    }
}
