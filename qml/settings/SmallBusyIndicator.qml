// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic

/// Turns while something is under way.
BusyIndicator {
    id: root

    implicitWidth: 24
    implicitHeight: 24
    padding: 0
    visible: running
    palette.dark: "#FF6600"
    Accessible.name: "Working"
}
