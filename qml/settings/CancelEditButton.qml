// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Gives an edit up.
PageButton {
    required property string subject

    text: "❌"
    backgroundColor: "#6c757d"
    // The keyboard's focus may rest on it after it is gone.
    enabled: visible
    Accessible.name: "Cancel the change of the " + subject
}
