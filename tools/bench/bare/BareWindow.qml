// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls

ApplicationWindow {
    width: 1200
    height: 800
    visible: true
    title: "Bare window"

    Button {
        anchors.centerIn: parent
        text: "Bare window"
    }
}
