// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// What the settings page knows of its device and of the operations under way, and what it asks of the device
/// from several places. Nothing of it is reset when
/// the device changes: each value stays until an answer of the new one replaces it.
Rectangle {
    id: root

    property var deviceDiscovery: null
    property int deviceIndex: -1

    // Pictures
    property var imageDownloader: null

    // Host name
    property bool hostnameEditing: false
    property string originalHostname: ""
    property bool hostnameUpdateInProgress: false

    // Network interfaces: a map with result and interfaces, each with interface and ip
    property var networkInterfaces: ({})
    property bool networkInterfacesLoaded: false

    // Software
    property bool softwareUpdateInProgress: false
    property bool softwareUpdateCheckInProgress: false
    property double softwareUpdateProgress: 0
    property bool isUpgradable: false
    property bool deltaUpdateAvailable: false
    property var deltaMetadata: ({})
    property bool deltaUpdateInProgress: false
    property int deltaUpdateProgress: 0
    property string deltaUpdateMessage: ""

    // Power and resets
    property bool rebootInProgress: false
    property bool shutdownInProgress: false
    property bool factoryResetInProgress: false
    property bool networkResetInProgress: false
    property bool lumarcResetInProgress: false
    property int lumarcRegenerationProgress: 0
    property string lumarcRegenerationMessage: ""

    // Hotspot
    property bool hotspotUpdateInProgress: false
    property bool hasWifiDongle: false
    property bool useInternalWifi: true

    // Ethernet: true for Direct, false for Auto. While a change is pending the desired mode is shown.
    property bool ethernetActivationInProgress: false
    property bool ethernetDeactivationInProgress: false
    property bool ethernetModeDirect: false
    property bool ethernetChangePending: false
    property bool ethernetModeDesiredDirect: false
    property string pendingEthernetIP: ""

    // Pictures directory
    property string picturesDirectory: "/home/noctaris/Pictures"
    property bool picturesDirectoryUpdateInProgress: false
    property bool picturesDirectoryModeInternal: true
    property bool picturesDirectoryEditing: false
    property string originalPicturesDirectory: ""
    property var externalStorageDevices: []
    property bool externalStorageLoaded: false
    property string selectedExternalDevice: ""

    // Release channel
    property string releaseType: "stable"
    property string stableVersion: ""
    property string betaVersion: ""
    property bool releaseTypeUpdateInProgress: false
    property int flatpakInstallProgress: 0
    property string flatpakInstallStatusText: ""

    // Remote support
    property bool remoteSupportActive: false
    property bool remoteSupportInProgress: false
    property string remoteSupportId: ""
    property string remoteSupportStatusText: ""

    // More of a device's text than anyone reads; laying out megabytes would freeze the window.
    readonly property int maxShownLength: 4096

    readonly property var theme: themeManager // qmllint disable unqualified
    readonly property bool dark: theme.isDarkTheme
    readonly property color cardColor: dark ? "#2a2a2a" : "#ffffff"
    readonly property color borderColor: dark ? "#3a3a3a" : "#e0e0e0"
    readonly property color textColor: dark ? "white" : "#1a1a1a"
    readonly property color secondaryTextColor: dark ? "#999999" : "#666666"

    function getInterfaceInfo(interfaceName: string): var {
        const list = networkInterfacesLoaded && networkInterfaces ? networkInterfaces.interfaces : null
        for (let i = 0; list && i < list.length; ++i) {
            if (list[i].interface !== interfaceName)
                continue
            const ip = list[i].ip || ""
            return { ip: ip, connected: ip !== "" && ip !== "0.0.0.0", available: true }
        }
        return { ip: "", connected: false, available: false }
    }

    function getPrimaryDeviceIP(): string {
        return hasDevice() ? deviceDiscovery.data(deviceDiscovery.index(deviceIndex, 0), 257) || "" : ""
    }

    function getDeviceIpAddress(): string {
        if (!hasDevice())
            return "192.168.1.219"
        return deviceDiscovery.data(deviceDiscovery.index(deviceIndex, 0), 257) || ""
    }

    function getHostnameText(): string {
        if (!hasDevice())
            return "observatory"
        return deviceDiscovery.data(deviceDiscovery.index(deviceIndex, 0), 258) || ""
    }

    function formatMarkdown(text: var): string {
        return text ? String(text).replace(/\*\*/g, "") : ""
    }

    function isOurs(ipAddress: string): bool {
        return ipAddress === getDeviceIpAddress()
    }

    function hasDevice(): bool {
        return !!deviceDiscovery && deviceIndex >= 0
    }

    function restartDevice() {
        if (!hasDevice())
            return
        rebootInProgress = true
        deviceDiscovery.reboot(deviceIndex)
    }

    function queryHotspotSettings() {
        if (!hasDevice())
            return
        deviceDiscovery.queryHotspotInterface(deviceIndex)
        deviceDiscovery.queryNetworkInterfaces(deviceIndex)
    }

    function queryExternalStorage() {
        if (hasDevice())
            deviceDiscovery.queryExternalStorage(deviceIndex)
    }

    function updatePicturesDirectoryMode(useInternal: bool) {
        picturesDirectoryModeInternal = useInternal
        if (!useInternal)
            queryExternalStorage()
    }

    function queryReleaseType() {
        if (hasDevice())
            deviceDiscovery.queryReleaseType(deviceIndex)
    }

    // For whoever holds the page and wants to pass a result on by hand. Nobody does: results come by the
    // Connections below.
    function onSoftwareUpdateTimedOut() {}
    function onHostnameUpdated() {}
    function onHotspotInterfaceUpdated() {}
    function onWifiDongleStatusChanged() {}
    function onRebootCompleted() {}
    function onShutdownCompleted() {}
    function onPicturesDirectoryUpdated() {}
    function onNetworkResetCompleted() {}
    function onLumarcResetCompleted() {}
    function onFactoryResetCompleted() {}

    color: dark ? "#1a1a1a" : "#f5f5f5"
}
