// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import "settings"
import "viewers"
import "viewers/texts.js" as Texts

/// Lists the video captures under a directory of a device, and deletes them. The device is small, so it is asked for
/// one thing at a time.
ViewerPage {
    id: root
    objectName: "VideosViewer"

    property var videosData: []
    // Paths to true.
    property var selectedVideos: ({})
    property string videosDirectory
    property bool videosDirectoryEditing: false
    property string originalVideosDirectory
    // Which listing is the latest. What an earlier one still brings is dropped.
    property int listing: 0

    function post(ipAddress: string, path: string, body: var, answered: var, failed: var) {
        api.sendJson("POST", "http://" + ipAddress + ":8624" + path, body, xhr => {
            // Without an answer there is a failure to come.
            if (xhr.status !== 0)
                answered(xhr)
        }, failed)
    }

    // The list

    function loadVideos() {
        isLoading = true
        const ipAddress = deviceIpAddress()
        if (ipAddress === "") {
            showMessage(false, "Unable to get device IP address")
            isLoading = false
            return
        }
        if (videosDirectory.trim() === "")
            videosDirectory = "/home/" + (hasDevice() ? deviceText(258) : "noctaris") + "/Videos"
        videosData = []
        deselectAll()
        ++listing
        loadDirectoriesRecursive(ipAddress, videosDirectory)
    }

    /// Lists the directory and the folders in it, and no deeper.
    function loadDirectoriesRecursive(ipAddress: string, directory: string) {
        const current = listing
        const walk = folders => {
            if (current === listing)
                loadFilesFromFolders(ipAddress, folders, 0, [])
        }
        const answered = xhr => walk(xhr.status === 200 ? foldersIn(xhr.responseText, directory) : [directory])
        post(ipAddress, "/api/info/directoryfolders", { directory: directory }, answered, () => walk([directory]))
    }

    function foldersIn(answer: string, directory: string): var {
        try {
            const pathOf = entry => firstText(entry.path, entry.fullpath) || inFolder(directory, firstText(entry.name, entry.folder))
            return [directory].concat(JSON.parse(answer).folders.filter(isRecord).map(pathOf).filter(path => path !== ""))
        } catch (exception) {
            return [directory]
        }
    }

    function loadFilesFromFolders(ipAddress: string, folders: var, index: int, videos: var) {
        if (index >= folders.length) {
            videosData = videos
            isLoading = false
            return
        }
        const current = listing
        const folder = folders[index]
        const next = found => {
            if (current === listing)
                loadFilesFromFolders(ipAddress, folders, index + 1, videos.concat(found))
        }
        post(ipAddress, "/api/info/directory", { directory: folder, stat: true }, xhr => next(videosIn(xhr, folder)), () => {
            console.error("XHR error loading files from folder:", folder)
            next([])
        })
    }

    function videosIn(xhr: var, folder: string): var {
        if (xhr.status !== 200) {
            console.error("Failed to load files from folder:", folder, "status:", xhr.status)
            return []
        }
        try {
            const answer = JSON.parse(xhr.responseText)
            const files = answer.result && answer.files ? answer.files : []
            return files.filter(isRecord).map(file => videoIn(file, folder)).filter(video => video.name.toLowerCase().endsWith(".ser"))
        } catch (exception) {
            console.error("Error parsing files from folder:", folder, exception)
            return []
        }
    }

    function videoIn(file: var, folder: string): var {
        const name = firstText(file.file, file.name, file.filename)
        return {
            name: name,
            path: firstText(file.path, file.fullpath) || inFolder(folder, name),
            size: file.stat && file.stat.st_size || file.size || 0,
            modified: file.modified || file.mtime || ""
        }
    }

    function isRecord(value: var): bool {
        return typeof value === "object" && value !== null
    }

    function firstText(...values): string {
        return values.find(value => typeof value === "string" && value !== "") || ""
    }

    function inFolder(folder: string, name: string): string {
        return name === "" ? "" : folder + "/" + name
    }

    function formatBytes(bytes: var, decimals = 2): string {
        return Texts.formatBytes(bytes, decimals, 5)
    }

    // The selection

    function toggleSelection(path: string) {
        if (selectedVideos[path] === true) {
            delete selectedVideos[path]
            --selectedCount
        } else {
            selectedVideos[path] = true
            ++selectedCount
        }
        selectedVideos = selectedVideos
    }

    function selectAll() {
        for (const video of videosData)
            selectedVideos[video.path] = true
        selectedCount = videosData.length
        selectedVideos = selectedVideos
    }

    function deselectAll() {
        selectedVideos = {}
        selectedCount = 0
    }

    // The directory

    function startVideosDirectoryEdit() {
        videosDirectoryEditing = true
        originalVideosDirectory = directoryRow.field.text
        directoryRow.field.forceActiveFocus()
        directoryRow.field.selectAll()
    }

    function endVideosDirectoryEdit() {
        videosDirectoryEditing = false
        originalVideosDirectory = ""
        forceActiveFocus()
    }

    function cancelVideosDirectoryEdit() {
        directoryRow.field.text = originalVideosDirectory
        endVideosDirectoryEdit()
    }

    function handleVideosDirectorySave() {
        const directory = directoryRow.field.text.trim()
        if (directory === "") {
            showMessage(false, "Videos directory path cannot be empty. Please enter a valid directory path.")
        } else if (directory === originalVideosDirectory.trim()) {
            endVideosDirectoryEdit()
        } else {
            videosDirectory = directory
            directoryRow.field.text = directory
            endVideosDirectoryEdit()
            console.log("Saving new directory path:", directory)
            loadVideos()
        }
    }

    // Deletion

    function performDelete() {
        if (deviceIpAddress() === "") {
            showMessage(false, "Unable to get device IP address")
            return
        }
        // The question can be answered once more by keyboard while the first answer is being carried out.
        if (deleteProgressDialog.visible)
            return
        const paths = videosData.map(video => video.path).filter(path => selectedVideos[path] === true)
        if (paths.length === 0) {
            showMessage(false, "No videos selected")
            return
        }
        deleteProgressDialog.currentIndex = 0
        deleteProgressDialog.totalFiles = paths.length
        deleteProgressDialog.failedFiles = []
        deleteProgressDialog.visible = true
        deleteNextFile(deviceIpAddress(), paths, 0)
    }

    function deleteNextFile(ipAddress: string, paths: var, index: int) {
        if (index >= paths.length) {
            deleteProgressDialog.visible = false
            reportDeletion(paths.length, deleteProgressDialog.failedFiles)
            loadVideos()
            return
        }
        const path = paths[index]
        const next = deleted => {
            if (!deleted)
                deleteProgressDialog.failedFiles.push(path)
            deleteNextFile(ipAddress, paths, index + 1)
        }
        deleteProgressDialog.currentIndex = index + 1
        post(ipAddress, "/api/system/deletefile", { directory: path }, xhr => next(isDeleted(xhr, path)), () => {
            console.error("XHR error deleting:", path)
            next(false)
        })
    }

    /// Whether nothing in the answer says that the file is still there.
    function isDeleted(xhr: var, path: string): bool {
        if (xhr.status !== 200) {
            console.error("HTTP error deleting:", path, "- Status:", xhr.status, "Response:", xhr.responseText)
            return false
        }
        const body = xhr.responseText.trim()
        if (body === "" || body === "null") {
            console.log("Empty response - file may or may not be deleted")
            return true
        }
        try {
            if (JSON.parse(body).result !== false)
                return true
            console.error("Server reported delete failed:", path)
            return false
        } catch (exception) {
            console.error("Error parsing delete response:", exception)
            return true
        }
    }

    function reportDeletion(count: int, failed: var) {
        if (failed.length === 0)
            showMessage(true, "Successfully deleted " + count + " video(s)")
        else
            showMessage(false, "Deleted " + (count - failed.length) + " of " + count + " videos.\n\nFailed to delete:\n" + failed.join("\n"))
    }

    noun: "video"
    Component.onCompleted: loadVideos()
    onVideosDirectoryChanged: {
        if (!videosDirectoryEditing)
            directoryRow.field.text = videosDirectory
    }
    onDeletionConfirmed: performDelete()
    Keys.onEscapePressed: {
        if (videosDirectoryEditing)
            cancelVideosDirectoryEdit()
        else
            closed()
    }

    overlays: [
        ProgressOverlay {
            id: deleteProgressDialog
            objectName: "deleteProgressDialog"

            property int currentIndex: 0
            property int totalFiles: 0
            property var failedFiles: []

            page: root
            accentColor: root.accentOrange
            title: "🗑️ Deleting Videos"
            percentText: currentIndex + " / " + totalFiles

            FillBar {
                page: root
                percent: 100 * deleteProgressDialog.currentIndex / Math.max(1, deleteProgressDialog.totalFiles)
                fillColor: root.accentOrange
            }
        }
    ]

    ViewerHeader {
        page: root
        title: "🎥 Videos Gallery"
        subtitle: "(.ser files)"
        tools: [
            ViewerButton {
                objectName: "selectAllButton"
                text: "✔️"
                tip: "Select All"
                enabled: !root.isLoading
                onClicked: root.selectAll()
            },
            ViewerButton {
                objectName: "deselectAllButton"
                text: "❌"
                tip: "Deselect All"
                enabled: root.canSelect
                onClicked: root.deselectAll()
            },
            ViewerButton {
                objectName: "deleteButton"
                text: "🗑️"
                tip: "Delete Selected (" + root.selectedCount + ")"
                enabled: root.canSelect
                onClicked: root.deleteSelected()
            }
        ]
    }

    DirectoryRow {
        id: directoryRow
        page: root
    }

    VideoList {
        page: root
        Layout.fillWidth: true
        Layout.fillHeight: true
    }

    ViewerFooter {
        page: root
        count: root.videosData.length
        refreshText: "🔄 Refresh"
        canRefresh: !root.isLoading
        onRefreshed: root.loadVideos()
    }

    DeviceApi {
        id: api
    }
}
