// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// One line of text that stays in its place and is never read as markup, whatever a device put into it.
/// The place gives the width; what is too long ends in an ellipsis.
Text {
    // What a device says goes here. More of it than a line can show is not even laid out: megabytes would
    // freeze the window.
    property string deviceText

    text: deviceText.length > 4096 ? deviceText.substring(0, 4096) : deviceText
    textFormat: Text.PlainText
    // Set, because otherwise a text written from right to left would jump to the other edge.
    horizontalAlignment: Text.AlignLeft
    verticalAlignment: Text.AlignVCenter
    elide: Text.ElideRight
    maximumLineCount: 1
    font.pixelSize: 14
}
