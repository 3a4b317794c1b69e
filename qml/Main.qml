// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Material
import QtQuick.Layouts
import NoctarisTools 1.0
import "components"

/// The window of the program: the table of devices, or the settings of one of them.
ApplicationWindow {
    id: mainWindow
    objectName: "Main"

    property bool showSettings: false
    property int selectedDeviceIndex: -1
    // The gateway under a second name: inside the settings page its first one means the page's own property.
    property var deviceDiscoveryObject: deviceDiscovery // qmllint disable unqualified
    // These four are held values. They follow the selection and the number of devices, not the device's data.
    property string selectedDeviceHostname: selectedDeviceText(DeviceDiscovery.HostnameRole, "Unknown Hostname", "No Device Selected") // qmllint disable unqualified
    property string selectedDeviceVersion: selectedDeviceText(DeviceDiscovery.VersionRole, "1.9.0", "1.9.0") // qmllint disable unqualified
    property string selectedDeviceModel: selectedDeviceText(DeviceDiscovery.ModelRole, "N/A", "N/A") // qmllint disable unqualified
    property string selectedDeviceIpAddress: selectedDeviceText(DeviceDiscovery.IpAddressRole, "", "") // qmllint disable unqualified

    readonly property var theme: themeManager // qmllint disable unqualified
    readonly property string programVersion: appVersion // qmllint disable unqualified
    readonly property bool dark: theme.isDarkTheme
    readonly property color cardColor: dark ? "#2a2a2a" : "#ffffff"
    readonly property color borderColor: dark ? "#3a3a3a" : "#e0e0e0"
    readonly property color textColor: dark ? "white" : "#1a1a1a"
    readonly property color secondaryTextColor: dark ? "#999999" : "#666666"

    function selectedDeviceText(role: int, whenEmpty: string, whenNone: string): string {
        if (selectedDeviceIndex === -1 || selectedDeviceIndex >= deviceDiscoveryObject.deviceCount)
            return whenNone
        const row = deviceDiscoveryObject.index(selectedDeviceIndex, 0)
        return deviceDiscoveryObject.data(row, role) || whenEmpty
    }

    function closeSettings() {
        showSettings = false
        selectedDeviceIndex = -1
    }

    function removeCurrentDevice() {
        if (deviceTable.currentIndex < 0)
            return
        deviceDiscoveryObject.removeDevice(deviceTable.currentIndex)
        if (selectedDeviceIndex === deviceTable.currentIndex) {
            selectedDeviceIndex = -1
            showSettings = false
        } else if (selectedDeviceIndex > deviceTable.currentIndex) {
            --selectedDeviceIndex
        }
    }

    width: 1200
    height: 800
    minimumWidth: 960
    minimumHeight: 600
    visible: true
    title: "Noctaris Tools"
    color: dark ? "#1a1a1a" : "#f5f5f5"
    Material.theme: dark ? Material.Dark : Material.Light
    Material.primary: "#FF6600"
    Material.accent: "#FF6600"

    onShowSettingsChanged: {
        if (!showSettings)
            deviceTable.takeFocus()
        else if (!settingsHeader.item)
            settingsHeader.setSource("components/SettingsHeader.qml", { window: mainWindow, page: settingsPage })
    }

    header: Rectangle {
        implicitHeight: 80
        color: mainWindow.cardColor

        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: mainWindow.borderColor
        }

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 30
            anchors.rightMargin: 30
            spacing: 16

            Rectangle {
                Layout.preferredWidth: 40
                Layout.preferredHeight: 40
                radius: 8
                color: mainWindow.theme.primaryColor

                PlainText {
                    objectName: "headerIcon"
                    anchors.centerIn: parent
                    text: mainWindow.showSettings ? "🔧" : "🔭"
                    font.pixelSize: 20
                    font.weight: Font.DemiBold
                    Accessible.ignored: true
                }
            }

            RowLayout {
                visible: !mainWindow.showSettings
                spacing: 10

                PlainText {
                    id: programName
                    text: "Noctaris Tools"
                    font.pixelSize: 20
                    font.weight: Font.DemiBold
                    color: mainWindow.textColor
                }

                PlainText {
                    Layout.alignment: Qt.AlignBaseline
                    text: "v" + mainWindow.programVersion
                    color: mainWindow.secondaryTextColor
                }
            }

            Loader {
                id: settingsHeader
                visible: mainWindow.showSettings
                Layout.fillWidth: true
            }

            Item {
                Layout.fillWidth: !mainWindow.showSettings
            }

            CustomButton {
                objectName: "themeButton"
                text: {
                    if (mainWindow.showSettings)
                        return "Home"
                    if (mainWindow.theme.isAutoTheme)
                        return "🔄 Auto"
                    return mainWindow.dark ? "☀️ Light" : "🌙 Dark"
                }
                Layout.minimumWidth: 110
                backgroundColor: mainWindow.borderColor
                textColor: mainWindow.textColor
                onClicked: {
                    if (mainWindow.showSettings)
                        mainWindow.closeSettings()
                    else
                        mainWindow.theme.toggleTheme()
                }
            }
        }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 30
        spacing: 20
        // Covered by the settings page anyway; hidden, it is also out of the way of the Tab key.
        visible: !mainWindow.showSettings

        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 50
            radius: 8
            color: mainWindow.cardColor
            border.width: 1
            border.color: mainWindow.borderColor

            Rectangle {
                width: 4
                height: parent.height
                radius: 2
                color: "#FF6600"
            }

            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: 20
                anchors.rightMargin: 20
                spacing: 16

                PlainText {
                    objectName: "statusLine"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 0
                    text: mainWindow.deviceDiscoveryObject.statusText
                    color: mainWindow.textColor
                }

                Pill {
                    objectName: "countPill"
                    maximumWidth: 200
                    text: mainWindow.deviceDiscoveryObject.deviceCount + " devices found"
                    color: "#FF6600"
                }
            }
        }

        // The bar's place stays when there is no scan, so that the table never moves under the pointer.
        Item {
            Layout.fillWidth: true
            Layout.preferredHeight: 4

            Rectangle {
                objectName: "scanIndicator"
                anchors.fill: parent
                radius: 2
                clip: true
                color: mainWindow.borderColor
                visible: mainWindow.deviceDiscoveryObject.isScanning

                Rectangle {
                    id: progressFill
                    objectName: "progressFill"
                    width: parent.width * 0.3
                    height: parent.height
                    radius: 2
                    color: "#FF6600"

                    SequentialAnimation on x {
                        running: mainWindow.deviceDiscoveryObject.isScanning
                        loops: Animation.Infinite

                        NumberAnimation {
                            from: -progressFill.width
                            to: 0
                            duration: 1000
                            easing.type: Easing.InOutQuad
                        }

                        NumberAnimation {
                            from: 0
                            to: mainWindow.width
                            duration: 1000
                            easing.type: Easing.InOutQuad
                        }
                    }
                }
            }
        }

        RowLayout {
            spacing: 12

            CustomButton {
                objectName: "scanButton"
                text: mainWindow.deviceDiscoveryObject.isScanning ? "Stop Scan" : "Rescan Network"
                onClicked: {
                    if (mainWindow.deviceDiscoveryObject.isScanning)
                        mainWindow.deviceDiscoveryObject.stopDiscovery()
                    else
                        mainWindow.deviceDiscoveryObject.startDiscovery()
                }
            }

            CustomButton {
                objectName: "addManuallyButton"
                text: "➕ Add Manually"
                onClicked: {
                    addDeviceDialog.deviceDiscovery = mainWindow.deviceDiscoveryObject
                    addDeviceDialog.open()
                }
            }

            Item {
                Layout.fillWidth: true
            }

            CustomButton {
                objectName: "refreshButton"
                text: "Refresh Info"
                backgroundColor: "transparent"
                textColor: "#FF6600"
                borderColor: "#FF6600"
                enabled: deviceTable.currentIndex >= 0
                onClicked: {
                    if (deviceTable.currentIndex >= 0)
                        mainWindow.deviceDiscoveryObject.refreshDevice(deviceTable.currentIndex)
                }
            }

            CustomButton {
                objectName: "removeButton"
                text: "Remove Selected"
                backgroundColor: "#ef4444"
                enabled: {
                    if (deviceTable.currentIndex < 0)
                        return false
                    const row = mainWindow.deviceDiscoveryObject.index(deviceTable.currentIndex, 0)
                    return !mainWindow.deviceDiscoveryObject.data(row, DeviceDiscovery.IsLocalRole) // qmllint disable unqualified
                }
                onClicked: mainWindow.removeCurrentDevice()
            }
        }

        DeviceTable {
            id: deviceTable
            objectName: "deviceTable"
            Layout.fillWidth: true
            Layout.fillHeight: true
            model: mainWindow.deviceDiscoveryObject
            onDeviceSettingsRequested: function(index) {
                if (index < 0 || index >= mainWindow.deviceDiscoveryObject.deviceCount)
                    return
                // In this order: the page reads the selection when it becomes visible.
                mainWindow.selectedDeviceIndex = index
                mainWindow.showSettings = true
            }
        }
    }

    AddDeviceDialog {
        id: addDeviceDialog
        objectName: "addDeviceDialog"
        // The dialog has asked for the device itself and its signal names none, so this asks for no address:
        // one more attempt, which fails.
        onAccepted: function(ipAddress) { // qmllint disable signal
            mainWindow.deviceDiscoveryObject.addManualDevice(ipAddress)
        }
    }

    SettingsPage {
        id: settingsPage
        objectName: "settingsPage"
        visible: mainWindow.showSettings
        deviceDiscovery: mainWindow.deviceDiscoveryObject
        deviceIndex: mainWindow.selectedDeviceIndex
        // The page's own property, and so null: nobody offers a downloader from outside.
        imageDownloader: imageDownloader
        onClosed: mainWindow.closeSettings()
    }

    Connections {
        target: mainWindow.deviceDiscoveryObject

        function onDataChanged() {
            mainWindow.selectedDeviceHostnameChanged()
            mainWindow.selectedDeviceVersionChanged()
            mainWindow.selectedDeviceModelChanged()
            mainWindow.selectedDeviceIpAddressChanged()
        }

        function onDeviceCountChanged() {
            if (mainWindow.selectedDeviceIndex >= mainWindow.deviceDiscoveryObject.deviceCount) {
                mainWindow.selectedDeviceIndex = -1
                mainWindow.showSettings = false
            }
        }
    }

    Shortcut {
        sequence: "F5"
        enabled: !mainWindow.showSettings
        onActivated: {
            if (!mainWindow.deviceDiscoveryObject.isScanning)
                mainWindow.deviceDiscoveryObject.startDiscovery()
        }
    }

    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: Qt.quit()
    }
}
