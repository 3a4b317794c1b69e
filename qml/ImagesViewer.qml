// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import "viewers"
import "viewers/pictures.js" as Pictures
import "viewers/texts.js" as Texts

/// Shows the pictures that a device keeps, brings them into a folder and deletes them.
ViewerPage {
    id: root
    objectName: "ImagesViewer"

    property var imageDownloader: null
    property var imagesData: []
    // The names by which the device knows its pictures, to true.
    property var selectedImages: ({})
    property var storageInfo: null
    property bool loadingStorage: false
    property bool isDownloading: false
    property int downloadProgress: 0
    property string downloadStatus
    property int totalDownloadFiles: 0
    property int completedDownloadFiles: 0
    // What selecting everything gives. To make a map of ten thousand new names takes the engine a tenth of a second, so
    // that is done while the user waits for the list anyway; a copy of it takes next to nothing.
    property var everything: ({})

    // The list

    function loadImages() {
        isLoading = true
        const ipAddress = deviceIpAddress()
        if (ipAddress === "") {
            showStatusMessage("Unable to get device IP address", false)
            isLoading = false
            return
        }
        const query = { query: [] }
        console.log("Sending POST body:", JSON.stringify(query))
        api.sendJson("GET", "http://" + ipAddress + ":3000/images", query, xhr => {
            isLoading = false
            if (xhr.status === 200)
                takeImages(xhr.responseText, ipAddress)
            else if (xhr.status === 0)
                showMessage(false, "Network error: Could not connect to server.\n\nMake sure the device is accessible at:\nhttp://" + ipAddress + ":3000")
            else
                showMessage(false, "HTTP error: " + xhr.status + "\n\n" + xhr.statusText)
        }, () => {
            isLoading = false
            console.error("XHR error occurred")
            showMessage(false, "Network request failed. Check:\n• Device is online\n• Port 3000 is accessible\n• Lumarc is running")
        })
    }

    function takeImages(body: string, ipAddress: string) {
        if (body.trim() === "") {
            showMessage(false, "Server returned empty response")
            return
        }
        try {
            const answer = JSON.parse(body)
            if (!answer.success || !answer.data) {
                showMessage(false, "Server returned success=false")
                return
            }
            imagesData = answer.data.map(record => Pictures.reachable(record, ipAddress))
            everything = Pictures.uuidMap(imagesData)
            deselectAll()
            if (imagesData.length === 0)
                console.log("No images found in response")
        } catch (exception) {
            console.error("JSON parse error:", exception)
            console.error("Response was:", body.substring(0, 200))
            showMessage(false, "Error parsing response: " + exception + "\n\nFirst 100 chars: " + body.substring(0, 100))
        }
    }

    // The selection

    function isSelected(record: var): bool {
        return selectedImages[Pictures.uuidOf(record)] === true
    }

    function toggleSelection(uuid: string) {
        if (uuid === "")
            return
        const selection = Object.assign({}, selectedImages)
        if (selection[uuid] === true)
            delete selection[uuid]
        else
            selection[uuid] = true
        selectedImages = selection
        selectedCount = Object.keys(selection).length
    }

    function selectAll() {
        selectedImages = Object.assign({}, everything)
        selectedCount = imagesData.length
    }

    function deselectAll() {
        selectedImages = {}
        selectedCount = 0
    }

    /// Shows the picture with this name, or the one at this place if it has none.
    function showFullImage(uuid: string, place: int) {
        const index = uuid === "" ? place : imagesData.findIndex(record => Pictures.uuidOf(record) === uuid)
        if (index < 0 || index >= imagesData.length)
            return
        fullImageViewer.showImageAtIndex(index)
        fullImageViewer.visible = true
        fullImageViewer.forceActiveFocus()
    }

    // Downloads

    function downloadSelected() {
        if (selectedCount === 0) {
            showStatusMessage("No images selected", false)
            return
        }
        if (!imageDownloader) {
            showStatusMessage("Image downloader not initialized", false)
            return
        }
        const selection = imagesData.filter(isSelected)
        isDownloading = true
        downloadProgress = 0
        totalDownloadFiles = selection.length
        completedDownloadFiles = 0
        downloadStatus = "Starting download of " + selection.length + " files..."
        imageDownloader.startDownload(imageDownloader.downloadDirectory, selection)
    }

    function downloadFullImage() {
        if (!fullImageViewer.imageData || !imageDownloader) {
            showFloatingNotification("Unable to download image", false)
            return
        }
        imageDownloader.startDownload(imageDownloader.downloadDirectory, [fullImageViewer.imageData])
        showFloatingNotification("Starting download...", true)
    }

    /// A file begins. The last one is taken for the end: the downloader's own message follows.
    function takeDownloadProgress(completed: int, total: int, currentFile: string) {
        completedDownloadFiles = completed
        totalDownloadFiles = total
        downloadProgress = total === 0 ? 0 : Math.round(100 * completed / total)
        if (completed < total) {
            downloadStatus = "Downloading " + currentFile + " (" + completed + "/" + total + ")"
            notifyFullImageViewer(downloadStatus, true)
        } else {
            downloadStatus = "✓ Download completed: " + total + " files"
            isDownloading = false
            statusMessageTimer.restart()
            notifyFullImageViewer("Download completed: " + total + " files", true)
        }
    }

    function takeDownloadResult(success: bool, successCount: int, failCount: int, message: string) {
        showStatusMessage(message, success)
        notifyFullImageViewer(message, success)
    }

    // Deletion

    function performDelete() {
        const ipAddress = deviceIpAddress()
        if (ipAddress === "") {
            showMessage(false, "Unable to get device IP address")
            return
        }
        const uuids = imagesData.filter(isSelected).map(Pictures.uuidOf)
        if (uuids.length === 0) {
            showMessage(false, "No images selected")
            return
        }
        const deletion = { uuids: uuids }
        console.log("Sending delete request:", JSON.stringify(deletion))
        api.sendJson("POST", "http://" + ipAddress + ":3000/images/bulk-delete", deletion, xhr => {
            if (xhr.status === 200)
                takeDeletion(xhr.responseText, uuids.length)
            else if (xhr.status === 0)
                showMessage(false, "Network error: Could not connect to server")
            else
                showMessage(false, "HTTP error: " + xhr.status + "\n" + xhr.statusText)
        }, () => {
            console.error("XHR error during delete")
            showMessage(false, "Network request failed")
        })
    }

    function takeDeletion(body: string, count: int) {
        try {
            const answer = JSON.parse(body)
            if (answer.success) {
                showMessage(true, "Successfully deleted " + count + " image(s)")
                loadImages()
            } else {
                showMessage(false, "Delete failed: " + (answer.message || "Unknown error"))
            }
        } catch (exception) {
            console.error("Error parsing delete response:", exception)
            showMessage(false, "Error parsing server response: " + exception)
        }
    }

    function performSingleImageDelete() {
        const uuid = fullImageViewer.imageUuid
        const ipAddress = deviceIpAddress()
        if (uuid === "" || ipAddress === "") {
            showFloatingNotification(uuid === "" ? "Unable to identify image" : "Unable to get device IP address", false)
            return
        }
        const url = "http://" + ipAddress + ":3000/images/" + encodeURIComponent(uuid)
        console.log("Sending DELETE request to:", url)
        api.send("DELETE", url, {}, undefined, xhr => {
            if (xhr.status === 200 || xhr.status === 204)
                takeSingleDeletion(xhr.status, xhr.responseText)
            else if (xhr.status === 0)
                showFloatingNotification("Network error: Could not connect to server", false)
            else
                showFloatingNotification("HTTP error: " + xhr.status, false)
        }, () => showFloatingNotification("Network request failed", false))
    }

    function takeSingleDeletion(status: int, body: string) {
        try {
            const answer = body.trim() === "" ? { success: true } : JSON.parse(body)
            if (answer.success || status === 204) {
                showFloatingNotification("Successfully deleted image", true)
                fullImageViewer.hide()
                loadImages()
            } else {
                showFloatingNotification("Delete failed: " + (answer.message || "Unknown error"), false)
            }
        } catch (exception) {
            showFloatingNotification("Error parsing server response", false)
        }
    }

    // The device's disk

    function loadStorageInfo() {
        loadingStorage = true
        const ipAddress = deviceIpAddress()
        if (ipAddress === "") {
            loadingStorage = false
            return
        }
        const url = "http://" + ipAddress + ":8624/api/info/disk-utilization"
        api.send("GET", url, {}, undefined, xhr => {
            loadingStorage = false
            if (xhr.status === 200) {
                takeStorageInfo(xhr.responseText)
            } else {
                console.error("Failed to load storage info, status:", xhr.status)
                console.error("Response:", xhr.responseText)
            }
        }, () => {
            loadingStorage = false
            console.error("XHR error loading storage info from:", url)
        })
    }

    function takeStorageInfo(body: string) {
        try {
            const answer = JSON.parse(body)
            if (!answer.result || !answer.payload) {
                console.error("Storage response missing result or payload")
                return
            }
            const total = parseInt(answer.payload.total)
            const used = parseInt(answer.payload.used)
            storageInfo = { total: total, used: used, remaining: total - used }
        } catch (exception) {
            console.error("Error parsing storage response:", exception)
            console.error("Response was:", body)
        }
    }

    // What is said

    function formatBytes(bytes: var, decimals: var): string {
        return Texts.formatBytes(bytes, decimals || 2, 9)
    }

    function showStatusMessage(message: string, isSuccess: bool) {
        downloadStatus = (isSuccess ? "✓ " : "✗ ") + message
        statusMessageTimer.restart()
    }

    function showFloatingNotification(message: string, isSuccess: bool) {
        floatingNotification.show(message, isSuccess)
    }

    /// Says it above a picture, which covers everything else that is said.
    function notifyFullImageViewer(message: string, isSuccess: bool) {
        if (fullImageViewer.visible)
            showFloatingNotification(message, isSuccess)
    }

    function statusColor(): color {
        if (downloadStatus.startsWith("✓"))
            return "#4CAF50"
        return downloadStatus.startsWith("✗") ? "#F44336" : theme.textColor
    }

    noun: "image"
    keyItem: fullImageViewer.visible ? fullImageViewer : root
    isCovered: fullImageViewer.visible
    onDeletionConfirmed: performDelete()
    Component.onCompleted: {
        if (!imageDownloader)
            console.error("ERROR: imageDownloader is null!")
        loadImages()
        loadStorageInfo()
        if (imageDownloader)
            imageDownloader.downloadCompleted.connect(takeDownloadResult)
        else
            console.error("Cannot connect to imageDownloader signals - it's null")
    }
    // The downloader outlives the viewer, and would go on calling it.
    Component.onDestruction: {
        if (imageDownloader)
            imageDownloader.downloadCompleted.disconnect(takeDownloadResult)
    }
    Keys.onEscapePressed: closed()
    Keys.onPressed: event => {
        event.accepted = event.matches(StandardKey.SelectAll)
        if (event.accepted)
            selectAll()
    }

    overlays: [
        FullImageViewer {
            id: fullImageViewer
            objectName: "fullImageViewer"
            page: root
        },
        FloatingNotification {
            id: floatingNotification
            objectName: "floatingNotification"
        }
    ]

    ViewerHeader {
        page: root
        title: "📷 Images Gallery"
        facts: StorageIndicator {
            page: root
        }
        tools: ImageTools {
            page: root
        }
    }

    SaveToRow {
        page: root
        visible: !root.isLoading
    }

    ThumbnailGrid {
        page: root
        Layout.fillWidth: true
        Layout.fillHeight: true
    }

    ViewerFooter {
        page: root
        count: root.imagesData.length
        canRefresh: !root.isLoading && !root.isDownloading
        status: root.downloadStatus
        statusColor: root.statusColor()
        onRefreshed: root.loadImages()
    }

    ProgressStrip {
        objectName: "progressStrip"
        page: root
        visible: root.isDownloading
    }

    DeviceApi {
        id: api
    }

    Timer {
        id: statusMessageTimer
        objectName: "statusMessageTimer"
        interval: 5000
        onTriggered: {
            if (!root.isDownloading)
                root.downloadStatus = ""
        }
    }

    Connections {
        target: root.imageDownloader

        function onDownloadProgress(completed, total, currentFile) {
            root.takeDownloadProgress(completed, total, currentFile)
        }
    }
}
