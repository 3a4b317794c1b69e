// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "settings"
import "viewers"
import "viewers/texts.js" as Texts
import "viewers/versions.js" as Versions

/// Switches a device to another of the systems that are installed on it. What is there and what is new in it, the
/// document asks the device itself; the switch goes by the gateway and takes effect at the next restart.
Rectangle {
    id: rollbackDialog
    objectName: "RollbackDialog"

    property var deviceDiscovery: null
    property int deviceIndex: -1
    property string currentVersion
    property string deviceIpAddress
    property var availableSystemVersions: []
    property string selectedVersion
    // Versions to their notes.
    property var changelogCache: ({})
    property string releaseTitle
    property string releaseDate
    property var selectedChangelog: []
    property var currentChangelog: []
    property bool isPreparing: false
    property bool pendingReboot: false
    property bool isLoading: true
    property string errorMessage
    property bool rollbackAvailable: false
    property string loadingMessage: "Checking for rollback options..."

    readonly property bool isOnSelected: selectedVersion === currentVersion
    readonly property bool showsMain: !isLoading && rollbackAvailable && errorMessage === ""

    // The same in both themes. The overlays over it take theirs from here.
    readonly property color barColor: "#2a2a2a"
    readonly property color cardColor: "#1a1a1a"
    readonly property color borderColor: "#3a3a3a"
    readonly property color textColor: "white"
    readonly property color secondaryTextColor: "#aaaaaa"
    readonly property color accentColor: "#FF6600"
    readonly property int maxShownLength: 4096
    // More than anyone installs; making a pill for each of a million would freeze the window.
    readonly property int maxPillCount: 100

    signal closed()

    function show() {
        visible = true
        isLoading = true
        loadingMessage = "Checking available system versions..."
        errorMessage = ""
        pendingReboot = false
        isPreparing = false
        rollbackAvailable = false
        selectedChangelog = []
        currentChangelog = []
        availableSystemVersions = []
        changelogCache = {}
        selectedVersion = ""
        fetchDeviceInfo()
    }

    /// Called when nothing else in the dialog can have the keyboard, which it had.
    function takeFocus() {
        forceActiveFocus()
    }

    function close() {
        visible = false
        closed()
    }

    function closeUnlessPreparing() {
        if (!isPreparing)
            close()
    }

    function hasDevice(): bool {
        return !!deviceDiscovery && deviceIndex >= 0
    }

    function fail(message: string) {
        isLoading = false
        errorMessage = message
    }

    // What is installed

    function fetchDeviceInfo() {
        if (!hasDevice()) {
            fail("Device not connected")
            return
        }
        deviceIpAddress = deviceDiscovery.data(deviceDiscovery.index(deviceIndex, 0), 257) || ""
        if (deviceIpAddress === "")
            fail("Device IP address not available")
        else
            fetchSubvolumes()
    }

    function fetchSubvolumes() {
        const headers = { "Accept": "application/json" }
        api.send("GET", "http://" + deviceIpAddress + ":8624/api/software/delta/subvolumes", headers, undefined, xhr => {
            if (xhr.status !== 200) {
                fail("Failed to fetch system versions. (HTTP " + xhr.status + ")")
                return
            }
            try {
                processSubvolumes(JSON.parse(xhr.responseText))
            } catch (exception) {
                fail("Failed to parse subvolumes data")
            }
        }, null)
    }

    function processSubvolumes(data: var) {
        if (!data.result || !data.payload) {
            fail("Invalid subvolumes response")
            return
        }
        const subvolumes = data.payload.subvolumes || []
        currentVersion = Texts.textOf(data.payload.active_version || "")
        availableSystemVersions = subvolumes.map(extractSystemVersion).filter(version => version !== null)
        const target = findRollbackTarget(availableSystemVersions, currentVersion)
        if (!target) {
            isLoading = false
            rollbackAvailable = false
            return
        }
        selectedVersion = target
        loadingMessage = "Fetching release notes..."
        fetchChangelog()
    }

    // What is new in it. A device that cannot say can still be switched.

    function fetchChangelog() {
        api.send("GET", "http://" + deviceIpAddress + ":8624/api/software/delta/changelogs", {}, undefined, xhr => {
            try {
                processChangelog(xhr.status === 200 ? JSON.parse(xhr.responseText) : {})
            } catch (exception) {
                offerSwitch()
            }
        }, null)
    }

    function processChangelog(data: var) {
        const changelogs = Versions.changelogMapIn(data)
        if (changelogs !== undefined) {
            changelogCache = Object.assign({}, changelogs)
            updateSelectedVersionDetails()
        }
        offerSwitch()
    }

    function offerSwitch() {
        rollbackAvailable = true
        isLoading = false
    }

    function updateSelectedVersionDetails() {
        const entry = changelogCache[selectedVersion] || {}
        releaseTitle = Texts.textOf(entry.release_title || "") || "Version " + selectedVersion
        releaseDate = Texts.textOf(entry.release_date || entry.releaseDate || "")
        selectedChangelog = changesIn(entry)
        currentChangelog = changesIn(changelogCache[currentVersion])
    }

    function changesIn(entry: var): var {
        return entry && Array.isArray(entry.changelog) ? entry.changelog : []
    }

    function compareVersions(v1: string, v2: string): int {
        return Versions.compareVersions(v1, v2)
    }

    function extractSystemVersion(subvolume: var): var {
        return Versions.extractSystemVersion(subvolume)
    }

    function findRollbackTarget(systemVersions: var, activeVersion: string): var {
        return Versions.findRollbackTarget(systemVersions, activeVersion)
    }

    function formatMarkdown(text: var): string {
        return Texts.formatMarkdown(text)
    }

    /// The pills from the highest version to the lowest. The one in use is there even without a system to go back to.
    function pillVersions(): var {
        const isMissing = currentVersion !== "" && !availableSystemVersions.includes(currentVersion)
        const versions = Versions.descending(isMissing ? availableSystemVersions.concat([currentVersion]) : availableSystemVersions)
        const shown = versions.slice(0, maxPillCount)
        return shown.concat(versions.slice(maxPillCount).filter(version => version === currentVersion || version === selectedVersion))
    }

    // The switch

    function selectVersion(version: string) {
        if (version === currentVersion || isPreparing)
            return
        selectedVersion = version
        updateSelectedVersionDetails()
    }

    function handlePrepareRollback() {
        if (!hasDevice() || selectedVersion === "" || isOnSelected)
            return
        isPreparing = true
        errorMessage = ""
        deviceDiscovery.applyRollback(deviceIndex, selectedVersion)
    }

    function handleReboot() {
        if (!hasDevice())
            return
        deviceDiscovery.reboot(deviceIndex)
        close()
    }

    function onRollbackApplyCompleted(ipAddress: string, success: bool, message: string) {
        if (ipAddress !== deviceIpAddress)
            return
        isPreparing = false
        if (success) {
            pendingReboot = true
            rebootConfirmDialog.visible = true
        } else {
            errorMessage = message || "Failed to prepare rollback. Please try again."
        }
    }

    anchors.fill: parent
    z: 5000
    visible: false
    color: "#E6000000"

    // Whoever makes the dialog may give it the gateway before it is complete: then it listens twice, and hears each
    // result twice.
    onDeviceDiscoveryChanged: {
        if (deviceDiscovery)
            deviceDiscovery.rollbackApplyCompleted.connect(onRollbackApplyCompleted)
    }
    Component.onCompleted: {
        if (deviceDiscovery)
            deviceDiscovery.rollbackApplyCompleted.connect(onRollbackApplyCompleted)
    }
    Component.onDestruction: {
        if (deviceDiscovery)
            deviceDiscovery.rollbackApplyCompleted.disconnect(onRollbackApplyCompleted)
    }
    Keys.onEscapePressed: closeUnlessPreparing()

    DeviceApi {
        id: api
    }

    MouseArea {
        objectName: "surround"
        anchors.fill: parent
        hoverEnabled: true
        onClicked: rollbackDialog.closeUnlessPreparing()
        onWheel: {}
    }

    Rectangle {
        objectName: "container"
        anchors.centerIn: parent
        width: Math.min(700, parent.width - 40)
        height: Math.min(620, parent.height - 40)
        radius: 12
        color: rollbackDialog.cardColor
        border.width: 1
        border.color: rollbackDialog.borderColor
        Accessible.role: Accessible.Dialog
        Accessible.name: "Switch Version"

        // Clicks on the dialog itself end here.
        MouseArea {
            anchors.fill: parent
            onClicked: {}
        }

        ColumnLayout {
            anchors.fill: parent
            anchors.margins: 1
            spacing: 0

            RollbackHeader {
                dialog: rollbackDialog
                Layout.fillWidth: true
            }

            Item {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.margins: 20

                DialogState {
                    objectName: "loadingState"
                    dialog: rollbackDialog
                    visible: rollbackDialog.isLoading
                    isBusy: true
                    text: rollbackDialog.loadingMessage
                }

                DialogState {
                    objectName: "noVersionsState"
                    dialog: rollbackDialog
                    visible: !rollbackDialog.isLoading && !rollbackDialog.rollbackAvailable && rollbackDialog.errorMessage === ""
                    symbol: "📦"
                    text: "No available versions to switch."
                }

                DialogState {
                    objectName: "errorState"
                    dialog: rollbackDialog
                    visible: !rollbackDialog.isLoading && rollbackDialog.errorMessage !== ""
                    symbol: "⚠️"
                    text: rollbackDialog.errorMessage
                    textColor: "#ef4444"
                }

                ColumnLayout {
                    objectName: "mainState"
                    anchors.fill: parent
                    visible: rollbackDialog.showsMain
                    spacing: 15

                    VersionPills {
                        dialog: rollbackDialog
                        Layout.fillWidth: true
                        Layout.fillHeight: false
                        // They leave room for the notes, however many they are.
                        Layout.maximumHeight: 150
                    }

                    ReleaseNotes {
                        dialog: rollbackDialog
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                    }
                }
            }

            RollbackFooter {
                dialog: rollbackDialog
                Layout.fillWidth: true
            }
        }
    }

    // The page under the dialog has a question of the same name, which is another one.
    ConfirmOverlay {
        id: rebootConfirmDialog
        objectName: "rebootConfirmDialog"
        page: rollbackDialog
        z: 6000
        accentColor: rollbackDialog.accentColor
        title: "🔄 Rollback Prepared"
        text: "The rollback has been prepared successfully.\n\nWould you like to restart now to apply the rollback?"
        cancelText: "Later"
        confirmText: "Restart Now"
        needsDevice: false
        onCancelled: rollbackDialog.close()
        onConfirmed: rollbackDialog.handleReboot()
    }
}
