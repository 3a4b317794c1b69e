// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts

/// Which adapter the device's hotspot runs on. During a change neither is chosen. The bindings name the change
/// first: what a binding does not reach it does not follow.
LabelledRow {
    id: root

    label: "HotSpot On:"
    visible: page.hasWifiDongle

    PageRadioButton {
        id: internalWifiRadio
        objectName: "internalWifiRadio"
        page: root.page
        text: "Internal WiFi"
        checked: !root.page.hotspotUpdateInProgress && root.page.useInternalWifi
        enabled: !root.page.hotspotUpdateInProgress
        onToggled: {
            if (!root.page.hotspotUpdateInProgress && checked && !root.page.useInternalWifi)
                root.page.updateHotspotInterface(true)
        }
    }

    PageRadioButton {
        id: externalWifiRadio
        objectName: "externalWifiRadio"
        page: root.page
        text: "External WiFi"
        checked: !root.page.hotspotUpdateInProgress && !root.page.useInternalWifi
        enabled: !root.page.hotspotUpdateInProgress && root.page.hasWifiDongle
        onToggled: {
            if (!root.page.hotspotUpdateInProgress && checked && root.page.useInternalWifi)
                root.page.updateHotspotInterface(false)
        }
    }

    Item {
        Layout.fillWidth: true
    }
}
