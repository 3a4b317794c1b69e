// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import NoctarisTools 1.0 // qmllint disable unused-imports
import "settings"

/// Administers one device: what can be done to it, and what is made of its answers. What the page knows of
/// the device is its PageState; what is seen of it are the cards and overlays, also under settings/.
PageState {
    id: root
    objectName: "SettingsPage"

    property var activeImageDownloader: imageDownloader ? imageDownloader : localImageDownloader

    // Null until they are made.
    readonly property var madeOverlays: overlaysLoader.item

    signal closed()

    // What the flows share

    /// The cards, made now if nobody has seen them yet.
    function cards(): var {
        if (!cardsLoader.item)
            cardsLoader.setSource("settings/Cards.qml", { page: root })
        return cardsLoader.item
    }

    /// The overlays, made now if they are not there yet: what is to be shown is not lost.
    function overlays(): var {
        if (!overlaysLoader.item) {
            overlaysLoader.source = ""
            overlaysLoader.asynchronous = false
            overlaysLoader.setSource("settings/Overlays.qml", { page: root })
        }
        return overlaysLoader.item
    }

    /// Gives the keyboard to what lies on top: an open viewer, or the page itself.
    function takeFocus() {
        if (madeOverlays && madeOverlays.viewer)
            madeOverlays.viewer.takeFocus()
        else
            forceActiveFocus()
    }

    function showMessage(isSuccess: bool, text: string) {
        const dialog = overlays().messageDialog
        dialog.isSuccess = isSuccess
        dialog.messageText = text
        dialog.visible = true
    }

    function showOverlay(name: string) {
        overlays()[name].visible = true
    }

    /// The result of an operation: what the device said, and what a success means for the user.
    function showResult(success: bool, message: string, suffix: string) {
        showMessage(success, success ? message + suffix : message)
    }

    function openViewer(loaderName: string) {
        if (hasDevice())
            overlays()[loaderName].active = true
    }

    function openRollbackDialog() {
        overlays().rollbackDialogLoader.active = true
    }

    // Host name

    function startHostnameEdit() {
        const field = cards().hostnameField
        hostnameEditing = true
        originalHostname = field.text
        field.forceActiveFocus()
        field.selectAll()
    }

    function cancelHostnameEdit() {
        hostnameEditing = false
        cards().hostnameField.text = originalHostname
        originalHostname = ""
        forceActiveFocus()
    }

    function handleHostnameSave() {
        const hostname = cards().hostnameField.text.trim()
        if (hostname === "") {
            showMessage(false, "Hostname cannot be empty. Please enter a valid hostname.")
        } else if (hostname === originalHostname.trim()) {
            hostnameEditing = false
            originalHostname = ""
        } else if (!/^[a-zA-Z0-9][a-zA-Z0-9\-]*[a-zA-Z0-9]$|^[a-zA-Z0-9]$/.test(hostname)) {
            showMessage(false, "Invalid hostname format. Use only letters, numbers, and hyphens. Cannot start or end with a hyphen.")
        } else if (hostname.length > 63) {
            showMessage(false, "Hostname is too long. Maximum length is 63 characters.")
        } else {
            hostnameEditing = false
            if (hasDevice())
                deviceDiscovery.updateDeviceHostname(deviceIndex, hostname)
        }
    }

    // Network

    /// Takes the mode from what the device says it is. That also ends whatever was pending.
    function checkEthernetMode() {
        const port = getInterfaceInfo("eth0")
        const alias = getInterfaceInfo("eth0:1")
        ethernetModeDirect = (port.available && port.ip === "192.168.100.1") || (alias.available && alias.ip === "192.168.100.1")
        ethernetChangePending = false
    }

    /// Takes the interfaces as they come, whatever the device says of its own list.
    function takeNetworkInterfaces(ipAddress: string, interfaces: var) {
        if (!isOurs(ipAddress))
            return
        networkInterfaces = interfaces
        networkInterfacesLoaded = true
        checkEthernetMode()
    }

    function updateHotspotInterface(useInternal: bool) {
        if (!hasDevice() || hotspotUpdateInProgress)
            return
        hotspotUpdateInProgress = true
        deviceDiscovery.updateHotspotInterface(deviceIndex, useInternal)
    }

    // Pictures directory

    function startPicturesDirectoryEdit() {
        const field = cards().picturesDirectoryEditField
        picturesDirectoryEditing = true
        originalPicturesDirectory = field.text
        field.forceActiveFocus()
        field.selectAll()
    }

    function cancelPicturesDirectoryEdit() {
        picturesDirectoryEditing = false
        cards().picturesDirectoryEditField.text = originalPicturesDirectory
        originalPicturesDirectory = ""
        forceActiveFocus()
    }

    function handlePicturesDirectorySave() {
        const directoryPath = cards().picturesDirectoryEditField.text.trim()
        if (directoryPath === "") {
            showMessage(false, "Pictures directory path cannot be empty. Please enter a valid directory path.")
        } else if (directoryPath === originalPicturesDirectory.trim()) {
            picturesDirectoryEditing = false
            originalPicturesDirectory = ""
        } else {
            picturesDirectoryEditing = false
            if (hasDevice())
                deviceDiscovery.updatePicturesDirectory(deviceIndex, directoryPath)
        }
    }

    /// Selects the drive that holds the pictures, else the first. Nothing is stored on the device by that.
    function selectExternalDevice(devices: var) {
        if (devices.length === 0) {
            selectedExternalDevice = ""
            return
        }
        const index = Math.max(0, devices.indexOf(picturesDirectory))
        selectedExternalDevice = devices[index]
        // Once the box has taken its new entries.
        Qt.callLater(() => { // qmllint disable
            const box = cards().externalStorageComboBox
            if (box.count > 0 && box.count > index)
                box.currentIndex = index
        })
    }

    // Opening

    function makeVisibleParts() {
        cards()
        if (overlaysLoader.item || overlaysLoader.status === Loader.Loading)
            return
        // Nobody sees them at once, so they are made between the frames.
        overlaysLoader.asynchronous = true
        overlaysLoader.setSource("settings/Overlays.qml", { page: root })
    }

    function queryDevice() {
        if (!hasDevice())
            return
        deviceDiscovery.refreshDevice(deviceIndex)
        deviceDiscovery.queryPicturesDirectory(deviceIndex)
        deviceDiscovery.queryReleaseType(deviceIndex)
        deviceDiscovery.queryRemoteSupport(deviceIndex)
        queryHotspotSettings()
        if (!picturesDirectoryModeInternal)
            queryExternalStorage()
    }

    anchors.fill: parent
    z: 1000

    onDeviceDiscoveryChanged: {}
    onVisibleChanged: {
        if (!visible)
            return
        makeVisibleParts()
        takeFocus()
        if (!hasDevice())
            return
        networkInterfacesLoaded = false
        externalStorageLoaded = false
        deviceDiscovery.queryHotspotInterface(deviceIndex)
        deviceDiscovery.queryNetworkInterfaces(deviceIndex)
        Qt.callLater(queryDevice) // qmllint disable
    }
    Component.onCompleted: {
        if (deviceDiscovery)
            deviceDiscovery.networkInterfacesReceived.connect(takeNetworkInterfaces)
        if (visible)
            makeVisibleParts()
    }
    // The gateway outlives the page, and would go on calling it.
    Component.onDestruction: {
        if (deviceDiscovery)
            deviceDiscovery.networkInterfacesReceived.disconnect(takeNetworkInterfaces)
    }
    Keys.onEscapePressed: {
        if (picturesDirectoryEditing)
            cancelPicturesDirectoryEdit()
        else if (hostnameEditing)
            cancelHostnameEdit()
        else
            closed()
    }

    ImageDownloader { // qmllint disable
        id: localImageDownloader
        objectName: "localImageDownloader" // qmllint disable
    }

    PageTimers {
        id: timers
        page: root
    }

    // Clicks end here instead of reaching what the page covers.
    MouseArea {
        anchors.fill: parent
        onClicked: {}
    }

    Loader {
        id: cardsLoader
        objectName: "cardsLoader"
        anchors.fill: parent
        // Neither the tabulator nor a screen reader finds what nobody sees.
        visible: !root.madeOverlays || !root.madeOverlays.viewer
        enabled: !root.madeOverlays || !root.madeOverlays.isRollbackOpen
    }

    Loader {
        id: overlaysLoader
        objectName: "overlaysLoader"
        anchors.fill: parent
    }

    Connections {
        target: root.deviceDiscovery

        function onSoftwareUpdateTimedOut(ipAddress) {
            if (!root.isOurs(ipAddress))
                return
            root.softwareUpdateInProgress = false
            root.softwareUpdateProgress = 0
            root.showMessage(false, "Software update timed out or connection lost.\n\nPlease check:\n• Network connection\n• Device status\n• Try refreshing the device list")
        }

        // A success leaves the dialog's title and text as they were: the row's new name is the news.
        function onHostnameUpdated(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            const dialog = root.overlays().messageDialog
            root.hostnameUpdateInProgress = false
            if (success) {
                root.hostnameEditing = false
                root.originalHostname = ""
            } else {
                dialog.isSuccess = false
                dialog.messageText = message
                root.cards().hostnameField.text = root.originalHostname
            }
            dialog.visible = true
        }

        function onHotspotInterfaceUpdated(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.hotspotUpdateInProgress = false
            root.showMessage(success, message)
            if (!success)
                root.queryHotspotSettings()
        }

        // Of no device: stands ready for a dongle that announces itself.
        function onWifiDongleStatusChanged() {
            if (root.deviceDiscovery)
                root.hasWifiDongle = root.deviceDiscovery.hasWifiDongle
        }

        function onEthernetActivationCompleted(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.ethernetActivationInProgress = false
            root.ethernetChangePending = false
            root.ethernetModeDirect = success
            if (success) {
                root.showOverlay("ethernetActivateSuccessDialog")
                timers.ethernetRefreshTimer.start()
            } else {
                root.ethernetModeDesiredDirect = false
                root.showMessage(false, message)
            }
        }

        function onEthernetDeactivationCompleted(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.ethernetDeactivationInProgress = false
            root.ethernetChangePending = false
            root.ethernetModeDirect = !success
            root.showMessage(success, message)
            if (success)
                root.deviceDiscovery.queryNetworkInterfaces(root.deviceIndex)
            else
                root.ethernetModeDesiredDirect = true
        }

        function onRebootCompleted(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            timers.rebootTimeoutTimer.stop()
            root.rebootInProgress = false
            root.showResult(success, message, "\n\n✅ The device is rebooting and will be available in a few minutes. You may need to refresh the device list after reboot.")
        }

        function onShutdownCompleted(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.shutdownInProgress = false
            root.showResult(success, message, "\n\n⚠️ The device is powering off. To use it again, you will need to manually power it on.")
        }

        // A refusal is told only to someone who is editing again; the field keeps the new path.
        function onPicturesDirectoryUpdated(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.picturesDirectoryUpdateInProgress = false
            if (success) {
                root.picturesDirectoryEditing = false
                root.originalPicturesDirectory = ""
                root.showOverlay("picturesDirectorySetDialog")
            } else if (root.picturesDirectoryModeInternal && root.picturesDirectoryEditing) {
                root.cards().picturesDirectoryEditField.text = root.originalPicturesDirectory
                root.showMessage(false, message)
            }
        }

        function onNetworkResetCompleted(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.networkResetInProgress = false
            root.showResult(success, message, "\n\n⚠️ Important: The device is restarting and may have a new IP address. You may need to discover devices again.")
        }

        function onLumarcResetCompleted(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.lumarcResetInProgress = false
            root.lumarcRegenerationProgress = 0
            root.lumarcRegenerationMessage = ""
            root.showResult(success, message, "\n\n✅ Lumarc has been reset successfully. The service is now ready for use.")
        }

        function onLumarcRegenerationProgressReceived(ipAddress, progress, progressMessage) {
            if (!root.isOurs(ipAddress))
                return
            root.lumarcRegenerationProgress = progress
            if (progressMessage)
                root.lumarcRegenerationMessage = progressMessage
        }

        function onFactoryResetCompleted(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.factoryResetInProgress = false
            root.showResult(success, message, "\n\n✅ Factory reset completed. The device will now reboot with factory settings. You may need to discover devices again.")
        }

        function onSoftwareUpdateCheckCompleted(ipAddress, success, isUpgradable, message, hasDelta, deltaMetadata) {
            if (!root.isOurs(ipAddress))
                return
            root.softwareUpdateCheckInProgress = false
            if (!success) {
                root.showMessage(false, message)
            } else if (hasDelta && deltaMetadata.available) {
                root.deltaMetadata = deltaMetadata
                root.deltaUpdateAvailable = true
                root.showOverlay("deltaUpdateDialog")
            } else if (isUpgradable) {
                root.isUpgradable = true
                root.showOverlay("softwareUpdateConfirmDialog")
            } else {
                root.showMessage(true, "All software is already up to date.")
            }
        }

        function onDeviceBackOnline(ipAddress) {
            if (!root.isOurs(ipAddress))
                return
            root.rebootInProgress = false
            root.shutdownInProgress = false
            timers.rebootTimeoutTimer.stop()
        }

        function onDeltaUpdateStarted(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.deltaUpdateInProgress = success
            if (success) {
                root.deltaUpdateProgress = 0
                root.deltaUpdateMessage = "Initiating download..."
            } else if (message && message.includes("pending_reboot")) {
                // An earlier update only waits for its restart.
                root.showOverlay("deltaRebootDialog")
            } else {
                root.showMessage(false, "Failed to start update: " + message)
            }
        }

        function onDeltaUpdateProgressReceived(ipAddress, progress, message) {
            if (!root.isOurs(ipAddress))
                return
            root.deltaUpdateProgress = progress
            if (message)
                root.deltaUpdateMessage = message
            if (progress >= 100) {
                root.deltaUpdateInProgress = false
                root.deviceDiscovery.checkDeltaStatus(root.deviceIndex)
            }
        }

        function onDeltaStatusReceived(ipAddress, pendingReboot, state) {
            if (!root.isOurs(ipAddress))
                return
            if (pendingReboot)
                root.showOverlay("deltaRebootDialog")
            else if (state === "idle" || state === "completed")
                root.showMessage(true, "Update completed successfully!")
        }

        function onExternalStorageReceived(ipAddress, devices) {
            if (!root.isOurs(ipAddress))
                return
            root.externalStorageDevices = devices
            root.externalStorageLoaded = true
            root.selectExternalDevice(devices)
        }

        function onPicturesDirectoryReceived(ipAddress, directory) {
            if (!root.isOurs(ipAddress))
                return
            root.picturesDirectory = directory
            // By hand, because an edit that was given up has left the field with a text of its own.
            root.cards().picturesDirectoryEditField.text = directory.substring(0, root.maxShownLength)
            root.picturesDirectoryModeInternal = directory.startsWith("/home/noctaris")
            if (!root.picturesDirectoryModeInternal)
                root.queryExternalStorage()
        }

        function onReleaseTypeReceived(ipAddress, releaseType, stableVersion, betaVersion) {
            if (!root.isOurs(ipAddress))
                return
            root.releaseType = releaseType
            if (stableVersion !== undefined)
                root.stableVersion = stableVersion
            if (betaVersion !== undefined)
                root.betaVersion = betaVersion
            root.releaseTypeUpdateInProgress = false
        }

        function onReleaseTypeUpdated(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.releaseTypeUpdateInProgress = false
            if (success)
                root.queryReleaseType()
            else
                root.showMessage(false, message)
        }

        function onFlatpakProgressReceived(ipAddress, progress, status, message) {
            if (!root.isOurs(ipAddress))
                return
            root.flatpakInstallProgress = progress
            root.flatpakInstallStatusText = message ? message : "Installing " + (root.releaseType === "beta" ? "Nightly" : "Stable") + " release... " + progress + "%"
        }

        function onFlatpakInstallCompleted(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.flatpakInstallProgress = 0
            root.flatpakInstallStatusText = ""
            if (success) {
                root.queryReleaseType()
            } else {
                root.releaseTypeUpdateInProgress = false
                root.showMessage(false, "Installation failed: " + message)
            }
        }

        function onRemoteSupportStarted(ipAddress, success, message, id) {
            if (!root.isOurs(ipAddress))
                return
            root.remoteSupportInProgress = false
            root.remoteSupportActive = success
            if (!success) {
                root.remoteSupportId = ""
                root.remoteSupportStatusText = "Failed to start remote support: " + message
            } else if (id) {
                root.remoteSupportId = id
                root.remoteSupportStatusText = "Remote support is active. Share the ID above with support team."
            } else {
                root.remoteSupportStatusText = "Remote support started successfully."
            }
        }

        function onRemoteSupportStopped(ipAddress, success, message) {
            if (!root.isOurs(ipAddress))
                return
            root.remoteSupportInProgress = false
            if (success) {
                root.remoteSupportActive = false
                root.remoteSupportId = ""
                root.remoteSupportStatusText = "Remote support stopped."
            } else {
                root.remoteSupportStatusText = "Failed to stop remote support: " + message
            }
        }

        function onRemoteSupportStatusReceived(ipAddress, active, id) {
            if (!root.isOurs(ipAddress))
                return
            root.remoteSupportActive = active
            root.remoteSupportId = active && id ? id : ""
            root.remoteSupportInProgress = false
        }

        function onSoftwareUpdateStarted(ipAddress, success, message) {
            if (!root.isOurs(ipAddress) || success)
                return
            root.softwareUpdateInProgress = false
            root.softwareUpdateProgress = 0
            root.showMessage(false, "Failed to start update: " + message)
        }

        function onNetworkInterfacesReceived(ipAddress, interfaces) {
            if (!root.isOurs(ipAddress))
                return
            root.networkInterfaces = interfaces
            root.networkInterfacesLoaded = true
            if (!interfaces.result)
                return
            root.hasWifiDongle = root.getInterfaceInfo("wlan1").available
            root.checkEthernetMode()
        }

        function onHotspotInterfaceReceived(ipAddress, internalWifi) {
            if (root.isOurs(ipAddress))
                root.useInternalWifi = internalWifi
        }

        function onSoftwareUpdateProgressReceived(ipAddress, progress) {
            if (!root.isOurs(ipAddress))
                return
            root.softwareUpdateProgress = progress
            if (progress < 99.9)
                return
            root.softwareUpdateInProgress = false
            root.showMessage(true, "Software update completed successfully!\n\n✅ Please reboot the device to apply changes.")
        }
    }
}
