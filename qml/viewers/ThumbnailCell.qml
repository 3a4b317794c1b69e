// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import "../components"
import "pictures.js" as Pictures
import "texts.js" as Texts

/// A picture small, with what matters of it. A click selects it; the eye on it shows it large.
Item {
    id: root

    required property int index
    required property var modelData
    required property var page
    property bool hasFocus: false

    readonly property var metadata: Pictures.metadataOf(modelData)
    readonly property string uuid: Pictures.uuidOf(modelData)
    readonly property bool isSelected: page.selectedImages[uuid] === true

    signal clicked()

    Accessible.role: Accessible.ListItem
    Accessible.name: nameLabel.deviceText + (isSelected ? ", selected" : "")

    Rectangle {
        anchors.fill: parent
        anchors.margins: 6
        radius: 8
        color: root.page.color
        border.width: root.isSelected ? 2 : 1
        border.color: root.isSelected ? root.page.accentOrange : root.page.borderColor

        FocusRing {
            border.color: root.page.textColor
            visible: root.hasFocus
        }

        MouseArea {
            anchors.fill: parent
            onClicked: {
                root.clicked()
                root.page.toggleSelection(root.uuid)
            }
        }

        NetworkPicture {
            id: picture
            objectName: "thumbnail"
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: 8
            height: 150
            url: root.modelData.thumbnail || root.modelData.src
            mark: root.modelData.thumbnail ? "thumbnail" : "preview"
            // One size for all windows, so that resizing one does not fetch everything again.
            pixels: Qt.size(240 * Screen.devicePixelRatio, 150 * Screen.devicePixelRatio)
            errorText: "⚠️\nLoad Error"
            errorColor: root.page.secondaryTextColor

            HoverHandler {
                id: hover
            }

            CustomButton {
                objectName: "eyeButton"
                anchors.centerIn: parent
                visible: hover.hovered
                text: "👁"
                implicitWidth: 44
                horizontalPadding: 0
                focusPolicy: Qt.NoFocus
                backgroundColor: root.page.accentDark
                hoverColor: root.page.accentLight
                Accessible.name: "Show large"
                onClicked: root.page.showFullImage(root.uuid, root.index)
            }
        }

        CheckMark {
            objectName: "checkMark"
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: 12
            page: root.page
            isChecked: root.isSelected
        }

        Column {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: picture.bottom
            anchors.margins: 8
            spacing: 3

            PlainText {
                id: nameLabel
                objectName: "nameText"
                width: parent.width
                deviceText: Texts.textOf(root.metadata.filename)
                font.pixelSize: 12
                font.weight: Font.DemiBold
                color: root.page.textColor
            }

            Fact {
                objectName: "filterText"
                deviceText: "Filter: " + (Texts.textOf(root.metadata.filter) || "N/A")
            }

            Fact {
                objectName: "exposureText"
                deviceText: "Exposure: " + (Texts.textOf(root.metadata.exptime || "") || "N/A") + "s"
            }

            Fact {
                objectName: "binningText"
                deviceText: "Bin: " + (Texts.textOf(root.metadata.xbinning || 1) || 1) + "x" + (Texts.textOf(root.metadata.ybinning || 1) || 1)
            }
        }
    }

    component Fact: PlainText {
        width: parent.width
        font.pixelSize: 11
        color: root.page.secondaryTextColor
    }
}
