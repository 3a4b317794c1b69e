// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// The address of a WiFi adapter.
LabelledRow {
    id: root

    required property string interfaceName
    required property string description

    AddressField {
        objectName: root.interfaceName + "Field"
        page: root.page
        description: root.description + " address"
        interfaceNames: [root.interfaceName]
    }

    StatusLamp {
        objectName: root.interfaceName + "Lamp"
        page: root.page
        description: root.description
        interfaceNames: [root.interfaceName]
    }
}
