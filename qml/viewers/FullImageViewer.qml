// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../components"
import "../settings"
import "pictures.js" as Pictures
import "texts.js" as Texts

/// One picture, as large as the page allows, and the way to the next one.
Rectangle {
    id: root

    required property var page
    property string imageUrl
    property string imageName
    property string imageUuid
    property var imageData: null
    property int currentImageIndex: -1
    property bool showInfo: false

    readonly property int imageCount: page.imagesData.length

    function showImageAtIndex(index: int) {
        if (index < 0 || index >= imageCount)
            return
        const record = page.imagesData[index]
        currentImageIndex = index
        imageUrl = record.src
        imageName = Texts.textOf(Pictures.metadataOf(record).filename)
        imageUuid = Pictures.uuidOf(record)
        imageData = record
    }

    function showPreviousImage() {
        showImageAtIndex(currentImageIndex - 1)
    }

    function showNextImage() {
        showImageAtIndex(currentImageIndex + 1)
    }

    function hide() {
        visible = false
        fullImageDeleteConfirmDialog.visible = false
        page.takeFocus()
    }

    anchors.fill: parent
    z: 5000
    visible: false
    color: "#FA000000"
    Keys.onLeftPressed: showPreviousImage()
    Keys.onRightPressed: showNextImage()
    Keys.onEscapePressed: hide()

    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onClicked: root.hide()
        onWheel: {}
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 16
        spacing: 12

        RowLayout {
            Layout.fillWidth: true
            spacing: 12

            ViewerButton {
                objectName: "infoButton"
                text: "ℹ️"
                tip: root.showInfo ? "Hide info" : "Show info"
                backgroundColor: root.showInfo ? root.page.accentOrange : "#6c757d"
                hoverColor: root.showInfo ? root.page.accentLight : Qt.darker("#6c757d", 1.1)
                onClicked: root.showInfo = !root.showInfo
            }

            PlainText {
                objectName: "imageNameText"
                Layout.fillWidth: true
                deviceText: root.imageName
                font.pixelSize: 16
                font.weight: Font.DemiBold
                color: "white"
            }

            PlainText {
                objectName: "positionText"
                text: (root.currentImageIndex + 1) + " / " + root.imageCount
                color: "#B0B0B0"
            }

            ViewerButton {
                objectName: "hideButton"
                text: "✖"
                tip: "Close the image"
                onClicked: root.hide()
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 12

            ViewerButton {
                objectName: "previousButton"
                text: "◀"
                tip: "Previous image (Left arrow key)"
                enabled: root.currentImageIndex > 0
                disabledTextColor: "white"
                onClicked: root.showPreviousImage()
            }

            NetworkPicture {
                objectName: "fullImage"
                Layout.fillWidth: true
                Layout.fillHeight: true
                url: root.visible ? root.imageUrl : ""
                mark: "full"
                cache: false
                // As many as the screen has: more would not be seen.
                pixels: Qt.size(Screen.width * Screen.devicePixelRatio, Screen.height * Screen.devicePixelRatio)
                errorText: root.visible ? "Failed to load image" : ""
                errorColor: "white"
            }

            ImageInformation {
                Layout.alignment: Qt.AlignTop
                visible: root.showInfo
                page: root.page
                record: root.imageData
            }

            ColumnLayout {
                spacing: 12

                ViewerButton {
                    objectName: "downloadImageButton"
                    text: "💾"
                    tip: "Download this image"
                    backgroundColor: root.page.accentOrange
                    hoverColor: root.page.accentLight
                    onClicked: root.page.downloadFullImage()
                }

                ViewerButton {
                    objectName: "deleteImageButton"
                    text: "🗑️"
                    tip: "Delete this image"
                    backgroundColor: "#ef4444"
                    onClicked: {
                        if (root.imageUuid !== "")
                            fullImageDeleteConfirmDialog.visible = true
                    }
                }
            }

            ViewerButton {
                objectName: "nextButton"
                text: "▶"
                tip: "Next image (Right arrow key)"
                enabled: root.currentImageIndex < root.imageCount - 1
                disabledTextColor: "white"
                onClicked: root.showNextImage()
            }
        }

        PlainText {
            objectName: "hintText"
            Layout.alignment: Qt.AlignHCenter
            text: "Click anywhere to close | ◀ ▶ Navigate | ℹ️ Info"
            font.pixelSize: 12
            color: "#B0B0B0"
            Accessible.name: "Click anywhere to close, arrow keys navigate"
        }
    }

    ConfirmOverlay {
        id: fullImageDeleteConfirmDialog
        objectName: "fullImageDeleteConfirmDialog"
        page: root.page
        accentColor: "#ef4444"
        title: "⚠️ Delete Image"
        text: "Are you sure you want to delete this image?\n\nThis action cannot be undone!"
        cancelText: "Cancel"
        confirmText: "🗑️"
        confirmName: "Delete"
        needsDevice: false
        onConfirmed: root.page.performSingleImageDelete()
    }
}
