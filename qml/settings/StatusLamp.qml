// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Whether the first of some interfaces that is there has an address.
Rectangle {
    id: root

    required property var page
    required property var interfaceNames
    required property string description
    readonly property string condition: firstCondition()

    function firstCondition(): string {
        for (const name of interfaceNames) {
            const info = page.getInterfaceInfo(name)
            if (info.available)
                return info.connected ? "connected" : "not connected"
        }
        return "not available"
    }

    implicitWidth: 14
    implicitHeight: 14
    radius: 7
    color: condition === "connected" ? "#22c55e" : condition === "not connected" ? "#ef4444" : "#6c757d"
    Accessible.role: Accessible.Indicator
    Accessible.name: description + " " + condition
}
