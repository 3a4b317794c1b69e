// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick.Controls

ApplicationWindow {
    width: 1200
    height: 800
    visible: true
    title: "Bare window"
}
