// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// The address of the ethernet port, and its mode. Only the way to Direct asks first: it cuts the user off.
LabelledRow {
    id: root

    readonly property var interfaceNames: ["eth0", "eth0:1"]
    readonly property bool isChangeable: !page.ethernetActivationInProgress && !page.ethernetDeactivationInProgress && !page.ethernetChangePending

    label: "Ethernet IP:"

    AddressField {
        objectName: "ethernetField"
        page: root.page
        description: "Ethernet address"
        interfaceNames: root.interfaceNames
    }

    PageRadioButton {
        id: ethernetAutoRadio
        objectName: "ethernetAutoRadio"
        page: root.page
        text: "Auto"
        Accessible.name: "Ethernet mode Auto"
        checked: root.page.ethernetChangePending ? !root.page.ethernetModeDesiredDirect : !root.page.ethernetModeDirect
        enabled: root.isChangeable
        onClicked: {
            if (!root.page.ethernetModeDirect && !root.page.ethernetChangePending)
                return
            root.page.ethernetModeDesiredDirect = false
            root.page.ethernetChangePending = true
            root.page.ethernetDeactivationInProgress = true
            root.page.deviceDiscovery?.deactivateDirectEthernet(root.page.deviceIndex)
        }
    }

    PageRadioButton {
        id: ethernetDirectRadio
        objectName: "ethernetDirectRadio"
        page: root.page
        text: "Direct"
        Accessible.name: "Ethernet mode Direct"
        checked: root.page.ethernetChangePending ? root.page.ethernetModeDesiredDirect : root.page.ethernetModeDirect
        enabled: root.isChangeable
        onClicked: {
            if (root.page.ethernetModeDirect && !root.page.ethernetChangePending)
                return
            root.page.ethernetModeDesiredDirect = true
            root.page.ethernetChangePending = true
            root.page.showOverlay("ethernetActivateConfirmDialog")
        }
    }

    StatusLamp {
        objectName: "ethernetLamp"
        page: root.page
        description: "Ethernet"
        interfaceNames: root.interfaceNames
    }
}
