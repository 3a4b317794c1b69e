// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts

/// One device of the table. Hostname, address, model and the local mark are read when the row appears or
/// moves; status, version and further addresses are kept in properties that follow the model.
Rectangle {
    id: root
    objectName: "DeviceRow"

    required property int index

    property bool isSelected: false
    property bool deviceIsOnline: false
    property string deviceStatus: "Unknown"
    property string deviceVersion: "Unknown"
    property string deviceModel: "Unknown"
    property var secondaryIpsData: []
    property bool isEthernetActive: false
    property bool isHotspotActive: false
    property bool isWifiStationActive: false
    property string deviceHostname: ""

    readonly property bool dark: themeManager.isDarkTheme // qmllint disable unqualified
    readonly property color textColor: dark ? "white" : "#1a1a1a"
    readonly property color secondaryTextColor: dark ? "#999999" : "#666666"
    readonly property color borderColor: dark ? "#3a3a3a" : "#e0e0e0"

    signal clicked()
    signal settingsRequested()

    // Roles: 257 address, 258 hostname, 259 version, 260 model, 261 online, 262 local, 263 status text,
    // 264 further addresses.
    function getDeviceData(role: int): var {
        const view = root.ListView.view
        if (!view || !view.model || root.index < 0)
            return ""
        return view.model.data(view.model.index(root.index, 0), role) || ""
    }

    function getDeviceBoolData(role: int): bool {
        const view = root.ListView.view
        if (!view || !view.model || root.index < 0)
            return false
        return view.model.data(view.model.index(root.index, 0), role) || false
    }

    function updateAllProperties() {
        deviceIsOnline = getDeviceBoolData(261)
        deviceStatus = getDeviceData(263)
        deviceVersion = getDeviceData(259)
        deviceHostname = getDeviceData(258)
    }

    function updateSecondaryIps() {
        secondaryIpsData = getDeviceData(264) || []
    }

    /// Tells from a device's addresses which of its networks are up: its cable and its own hotspot have
    /// fixed addresses, any other private one comes from a network that it has joined.
    function updateNetworkStatus() {
        const primary = getDeviceData(257)
        const addresses = primary && primary !== "Unknown" ? [primary] : []
        for (const address of secondaryAddresses())
            addresses.push(address)

        isEthernetActive = false
        isHotspotActive = false
        isWifiStationActive = false
        for (const address of addresses) {
            if (address === "192.168.100.1")
                isEthernetActive = true
            else if (address === "10.250.250.1")
                isHotspotActive = true
            else if (address.startsWith("192.168.") || address.startsWith("172.16.") || address.startsWith("10."))
                isWifiStationActive = true
        }
    }

    function updateEverything() {
        updateAllProperties()
        updateSecondaryIps()
        updateNetworkStatus()
    }

    /// The further addresses as a plain array, whatever kind of list the model handed over.
    function secondaryAddresses(): var {
        if (Array.isArray(secondaryIpsData))
            return secondaryIpsData
        const isListLike = secondaryIpsData && typeof secondaryIpsData === "object" && secondaryIpsData.length > 0
        return isListLike ? Array.from(secondaryIpsData) : []
    }

    height: Math.max(60, outerIpColumn.implicitHeight + 20)
    color: {
        if (isSelected)
            return dark ? "#2a2a2a" : "#e3f2fd"
        if (rowHover.hovered)
            return dark ? "#333333" : "#f5f5f5"
        return dark ? "#1a1a1a" : "#ffffff"
    }
    border.width: activeFocus ? 1 : 0
    border.color: "#FF6600"
    Accessible.role: Accessible.ListItem
    Accessible.name: hostnameText.text + ", " + addressText.text + ", " + deviceStatus
    Accessible.selected: isSelected

    Component.onCompleted: updateEverything()

    Connections {
        target: root.ListView.view ? root.ListView.view.model : null

        function onDataChanged(topLeft, bottomRight, roles) {
            if (root.index >= topLeft.row && root.index <= bottomRight.row)
                root.updateEverything()
        }
    }

    Timer {
        id: pollingTimer
        objectName: "pollingTimer"
        interval: 500
        repeat: true
        running: true
        onTriggered: {
            const addresses = root.getDeviceData(264)
            if (JSON.stringify(addresses) !== JSON.stringify(root.secondaryIpsData)) {
                root.secondaryIpsData = addresses
                root.updateNetworkStatus()
            }
        }
    }

    // Picks up what a missed notification of the model would leave stale.
    Timer {
        id: statusPollingTimer
        objectName: "statusPollingTimer"
        interval: 2000
        repeat: true
        running: true
        onTriggered: {
            const newOnline = root.getDeviceBoolData(261)
            const newStatus = root.getDeviceData(263)
            const newVersion = root.getDeviceData(259)
            if (newOnline !== root.deviceIsOnline || newStatus !== root.deviceStatus) {
                console.log("Polling detected status change for index", root.index, "from", root.deviceIsOnline, "to", newOnline)
                root.updateAllProperties()
            }
            if (newVersion !== "" && newVersion !== "Unknown")
                root.updateAllProperties()
        }
    }

    HoverHandler {
        id: rowHover
    }

    MouseArea {
        anchors.fill: parent
        onClicked: root.clicked()
    }

    Rectangle {
        objectName: "selectionStripe"
        width: 4
        height: parent.height
        color: "#FF6600"
        visible: root.isSelected
    }

    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: root.borderColor
        visible: !root.activeFocus
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 20
        anchors.rightMargin: 20
        spacing: 15

        Item {
            Layout.preferredWidth: 100
            implicitHeight: statusPill.implicitHeight

            Pill {
                id: statusPill
                objectName: "statusPill"
                deviceText: root.deviceStatus
                color: root.deviceIsOnline ? "#4ade80" : "#ef4444"
            }
        }

        Column {
            id: outerIpColumn
            objectName: "outerIpColumn"
            Layout.preferredWidth: 180

            Row {
                spacing: 8

                Column {
                    width: 150
                    spacing: 3

                    AddressLine {
                        id: addressText
                        objectName: "addressText"
                        text: root.getDeviceData(257) || "Unknown"
                        color: root.textColor
                    }

                    Repeater {
                        model: root.secondaryAddresses()

                        AddressLine {
                            required property string modelData
                            objectName: "secondaryAddressText"
                            deviceText: modelData
                            font.pixelSize: 12
                            color: root.secondaryTextColor
                        }
                    }
                }

                Column {
                    spacing: 2

                    NetworkIcon {
                        objectName: "ethernetIcon"
                        text: "🔌"
                        visible: root.isEthernetActive
                        Accessible.name: "Connected by cable"
                    }

                    NetworkIcon {
                        objectName: "hotspotIcon"
                        text: "🛜"
                        visible: root.isHotspotActive
                        Accessible.name: "Runs its own hotspot"
                    }

                    NetworkIcon {
                        objectName: "stationIcon"
                        text: "📶"
                        visible: root.isWifiStationActive && !root.isHotspotActive
                        Accessible.name: "Connected to a network"
                    }
                }
            }
        }

        PlainText {
            id: hostnameText
            objectName: "hostnameText"
            Layout.fillWidth: true
            Layout.preferredWidth: 0
            deviceText: root.getDeviceData(258) || "Unknown"
            color: root.textColor
            font.weight: Font.DemiBold
        }

        PlainText {
            objectName: "versionText"
            Layout.preferredWidth: 120
            deviceText: root.deviceVersion || "Unknown"
            color: root.secondaryTextColor
        }

        RowLayout {
            Layout.preferredWidth: 120
            Layout.maximumWidth: 120
            spacing: 6

            PlainText {
                objectName: "modelText"
                Layout.fillWidth: true
                Layout.preferredWidth: 0
                deviceText: root.getDeviceData(260) || "Noctaris"
                color: "#FF6600"
            }

            Pill {
                objectName: "localPill"
                visible: root.getDeviceBoolData(262)
                text: "LOCAL"
                color: "#4ade80"
                horizontalPadding: 5
                implicitHeight: 18
            }
        }

        CustomButton {
            objectName: "settingsButton"
            Layout.preferredWidth: 100
            implicitHeight: 36
            horizontalPadding: 8
            text: "Settings"
            backgroundColor: root.borderColor
            textColor: root.textColor
            enabled: root.deviceIsOnline
            // Of the rows' buttons only the current row's is a stop of the Tab key.
            focusPolicy: root.isSelected ? Qt.StrongFocus : Qt.ClickFocus
            Accessible.name: "Settings of " + hostnameText.text
            onClicked: {
                root.clicked()
                root.settingsRequested()
            }
        }
    }

    component AddressLine: PlainText {
        width: 150
        font.family: "Consolas, Monaco, monospace"
    }

    component NetworkIcon: PlainText {
        Accessible.role: Accessible.Graphic
    }
}
