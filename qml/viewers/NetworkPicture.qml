// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import "../components"
import "../settings"
import "pictures.js" as Pictures

/// A picture of a device, fetched and made smaller beside the main thread, and fitted into its place.
Item {
    id: root

    required property string url
    /// How large it may be: "thumbnail", "preview" or "full".
    required property string mark
    /// No more of it is kept than so many pixels can show.
    required property size pixels
    property string errorText
    property alias errorColor: errorLabel.color
    property alias cache: image.cache
    readonly property bool hasFailed: image.status === Image.Error || String(image.source) === ""

    Image {
        id: image
        objectName: "picture"
        anchors.fill: parent
        asynchronous: true
        source: Pictures.webAddress(root.url, root.mark)
        sourceSize.width: root.pixels.width
        sourceSize.height: root.pixels.height
        fillMode: Image.PreserveAspectFit
    }

    SmallBusyIndicator {
        objectName: "pictureIndicator"
        anchors.centerIn: parent
        running: image.status === Image.Loading && root.visible
        Accessible.name: "Loading"
    }

    PlainText {
        id: errorLabel
        objectName: "errorText"
        anchors.fill: parent
        visible: root.hasFailed
        text: root.errorText
        maximumLineCount: 2
        elide: Text.ElideNone
        horizontalAlignment: Text.AlignHCenter
        Accessible.name: text.replace(/^[^A-Za-z]+/, "")
    }
}
