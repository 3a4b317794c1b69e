// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import "../components"
import "pictures.js" as Pictures
import "texts.js" as Texts

/// What is known of a picture.
Rectangle {
    id: root
    objectName: "imageInformation"

    required property var page
    required property var record
    readonly property var metadata: Pictures.metadataOf(record)

    function rows(): var {
        const size = metadata.filesize
        return [
            ["Filename:", metadata.filename],
            ["Size:", Texts.textOf(size) === "" ? "" : page.formatBytes(size, 2)],
            ["Frame:", metadata.frame],
            ["Binning:", (Texts.textOf(metadata.xbinning || 1) || 1) + "x" + (Texts.textOf(metadata.ybinning || 1) || 1)],
            ["Captured on:", Texts.textOf(metadata["date-obs"]).replace("T", " ").substring(0, 19)],
            ["Filter:", metadata.filter],
            ["Exposure:", Pictures.fixed(metadata.exptime, 3)],
            ["Temperature:", Pictures.fixed(metadata["ccd-temp"], 2)]
        ]
    }

    implicitWidth: 320
    implicitHeight: column.implicitHeight + 32
    radius: 8
    color: page.cardColor
    border.width: 1
    border.color: page.borderColor

    // Clicks on the panel do not close the picture.
    MouseArea {
        anchors.fill: parent
        onClicked: {}
    }

    ColumnLayout {
        id: column
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 16
        spacing: 8

        PlainText {
            text: "Image Information"
            font.pixelSize: 16
            font.weight: Font.Bold
            color: root.page.textColor
            Accessible.role: Accessible.Heading
        }

        Repeater {
            model: root.rows()

            delegate: RowLayout {
                id: row

                required property var modelData

                Layout.fillWidth: true
                spacing: 8

                PlainText {
                    Layout.preferredWidth: 100
                    Layout.alignment: Qt.AlignTop
                    text: row.modelData[0]
                    font.pixelSize: 13
                    color: root.page.secondaryTextColor
                }

                PlainText {
                    objectName: "value"
                    Layout.fillWidth: true
                    deviceText: Texts.textOf(row.modelData[1]) || "N/A"
                    wrapMode: Text.WrapAnywhere
                    maximumLineCount: 3
                    font.pixelSize: 13
                    color: root.page.textColor
                }
            }
        }
    }
}
