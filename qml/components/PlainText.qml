// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// One line of text that stays in its place and is never read as markup, whatever a device put into it.
/// The place gives the width; what is too long ends in an ellipsis.
Text {
    textFormat: Text.PlainText
    // Set, because otherwise a text written from right to left would jump to the other edge.
    horizontalAlignment: Text.AlignLeft
    verticalAlignment: Text.AlignVCenter
    elide: Text.ElideRight
    maximumLineCount: 1
    font.pixelSize: 14
}
