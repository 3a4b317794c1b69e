// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Gives an edit up.
PageButton {
    required property string subject

    text: "❌"
    backgroundColor: "#6c757d"
    Accessible.name: "Cancel the change of the " + subject
}
