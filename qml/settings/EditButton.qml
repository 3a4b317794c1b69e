// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Starts an edit, and saves it.
PageButton {
    id: root

    required property bool isEditing
    required property bool isBusy
    required property string subject

    signal started()
    signal saved()

    text: isBusy ? "⏳" : isEditing ? "Save" : "Modify"
    enabled: !isBusy
    Accessible.name: (isBusy ? "Saving " : isEditing ? "Save " : "Modify ") + subject
    onClicked: {
        if (isEditing)
            saved()
        else
            started()
    }
}
