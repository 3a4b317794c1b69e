// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import "../components"
import "../settings"

/// A button that is a picture alone. Its tip says what it does, and is its name for a screen reader.
PageButton {
    id: root

    required property string tip

    backgroundColor: "#6c757d"
    Accessible.name: tip

    Tip {
        text: root.tip
        visible: root.hovered || root.visualFocus
    }
}
