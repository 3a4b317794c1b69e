// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import "components"

/// Asks for the address of a device that the search did not find, has it probed, and closes a moment after
/// the device has been admitted.
T.Dialog {
    id: root
    objectName: "AddDeviceDialog"

    property var deviceDiscovery: null
    property bool isValidating: false

    readonly property bool dark: themeManager.isDarkTheme // qmllint disable unqualified
    readonly property color cardColor: dark ? "#2a2a2a" : "#ffffff"
    readonly property color fieldColor: dark ? "#1a1a1a" : "#ffffff"
    readonly property color borderColor: dark ? "#3a3a3a" : "#e0e0e0"
    readonly property color fieldBorderColor: dark ? "#3a3a3a" : "#d0d0d0"
    readonly property color textColor: dark ? "white" : "#1a1a1a"
    readonly property color secondaryTextColor: dark ? "#999999" : "#666666"

    /// The device at ipAddress was admitted.
    signal deviceAdded(string ipAddress)
    /// The wait for the device at ipAddress ran out.
    signal deviceAddFailed(string ipAddress, string error)

    function isValidIP(ip: string): bool {
        return /^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\.){3}(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$/.test(ip)
    }

    function updateButtonState() {
        addButton.enabled = isValidIP(ipInput.text.trim()) && !root.isValidating
    }

    function showStatus(text, color) {
        statusText.text = text
        statusText.color = color
    }

    function addDevice() {
        const ipAddress = ipInput.text.trim()
        if (!isValidIP(ipAddress) || !root.deviceDiscovery || root.isValidating)
            return

        // The gateway object has no role names, so this compares with the display text of each row, which
        // is never an address alone. It is the gateway that refuses an address it has, by a status line.
        for (let i = 0; i < root.deviceDiscovery.rowCount(); ++i) {
            const row = root.deviceDiscovery.index(i, 0)
            if (root.deviceDiscovery.data(row, root.deviceDiscovery.IpAddressRole) === ipAddress) {
                showStatus("Device with IP " + ipAddress + " already exists.", "#f59e0b")
                return
            }
        }

        root.isValidating = true
        showStatus("Validating device at " + ipAddress + "...", root.secondaryTextColor)
        updateButtonState()
        validationTimeout.start()
        root.deviceDiscovery.addManualDevice(ipAddress)
    }

    function forgetInput() {
        ipInput.text = ""
        statusText.text = ""
        root.isValidating = false
        validationTimeout.stop()
        closeTimer.stop()
    }

    anchors.centerIn: parent
    width: 400
    height: 300
    modal: true
    focus: true
    padding: 24
    topPadding: 16
    title: "Add Noctaris Device Manually"
    T.Overlay.modal: Rectangle {
        color: Qt.alpha("black", 0.5)
    }

    onOpened: {
        statusText.text = ""
        root.isValidating = false
        updateButtonState()
    }
    onAccepted: forgetInput()
    onRejected: forgetInput()

    Connections {
        target: root.deviceDiscovery

        // Also holds for a device that the search finds by itself at this very address.
        function onDeviceAdded(ipAddress) {
            if (ipAddress !== ipInput.text.trim())
                return
            root.isValidating = false
            root.showStatus("Device added successfully!", "#10b981")
            root.deviceAdded(ipAddress)
            closeTimer.start()
        }

        function onStatusTextChanged() {
            if (!root.isValidating || !root.deviceDiscovery)
                return
            if (root.deviceDiscovery.statusText.includes(ipInput.text.trim()))
                root.showStatus(root.deviceDiscovery.statusText, root.secondaryTextColor)
        }
    }

    Timer {
        id: closeTimer
        objectName: "closeTimer"
        interval: 1500
        onTriggered: root.accept()
    }

    Timer {
        id: validationTimeout
        objectName: "validationTimeout"
        interval: 15000
        onTriggered: {
            if (!root.isValidating)
                return
            root.isValidating = false
            root.showStatus("Device validation timed out. Please check the IP address and try again.", "#ef4444")
            root.updateButtonState()
            root.deviceAddFailed(ipInput.text.trim(), "Validation timeout")
        }
    }

    background: Rectangle {
        radius: 12
        color: root.cardColor
        border.width: 1
        border.color: root.borderColor
    }

    header: Column {
        topPadding: 22
        leftPadding: 24
        spacing: 4

        PlainText {
            objectName: "dialogTitle"
            width: root.width - 48
            text: "Add Noctaris Device Manually"
            font.pixelSize: 20
            font.weight: Font.DemiBold
            color: root.textColor
        }

        PlainText {
            width: root.width - 48
            text: "Enter the IP address of your Noctaris device"
            color: root.secondaryTextColor
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 6

        PlainText {
            text: "IP Address"
            font.weight: Font.DemiBold
            color: root.textColor
        }

        Rectangle {
            objectName: "inputFrame"
            Layout.fillWidth: true
            Layout.preferredHeight: 40
            radius: 8
            color: root.fieldColor
            border.width: ipInput.activeFocus ? 2 : 1
            border.color: {
                if (ipInput.activeFocus)
                    return "#FF6600"
                return hintText.visible ? "#ef4444" : root.fieldBorderColor
            }

            MouseArea {
                anchors.fill: parent
                cursorShape: Qt.IBeamCursor
                onClicked: ipInput.forceActiveFocus()
            }

            TextInput {
                id: ipInput
                objectName: "ipInput"
                anchors.fill: parent
                anchors.leftMargin: 12
                anchors.rightMargin: 12
                verticalAlignment: TextInput.AlignVCenter
                clip: true
                focus: true
                activeFocusOnTab: true
                selectByMouse: true
                enabled: !root.isValidating
                opacity: enabled ? 1.0 : 0.5
                font.pixelSize: 14
                color: root.textColor
                selectionColor: "#FF6600"
                selectedTextColor: "white"
                Accessible.name: "IP Address"
                onTextChanged: root.updateButtonState()
                Keys.onReturnPressed: {
                    if (addButton.enabled && !root.isValidating)
                        root.addDevice()
                }
            }

            PlainText {
                objectName: "placeholderText"
                anchors.fill: ipInput
                text: "192.168.1.100"
                color: root.secondaryTextColor
                opacity: ipInput.text === "" && !ipInput.activeFocus ? 1.0 : 0.0
                Accessible.ignored: true

                Behavior on opacity {
                    NumberAnimation {
                        duration: 150
                    }
                }
            }
        }

        PlainText {
            id: hintText
            objectName: "hintText"
            Layout.fillWidth: true
            // Judges the text as typed; a blank beside a valid address thus shows, though it does no harm.
            visible: ipInput.text !== "" && !root.isValidIP(ipInput.text)
            text: "Please enter a valid IP address (e.g., 192.168.1.100)"
            font.pixelSize: 12
            color: "#ef4444"
        }

        PlainText {
            id: statusText
            objectName: "statusText"
            Layout.fillWidth: true
            Layout.preferredWidth: 0
            visible: text !== ""
            wrapMode: Text.Wrap
            maximumLineCount: 2
            font.pixelSize: 12
            color: root.secondaryTextColor
        }

        Item {
            Layout.fillHeight: true
        }

        RowLayout {
            spacing: 12

            Item {
                Layout.fillWidth: true
            }

            CustomButton {
                objectName: "cancelButton"
                text: "Cancel"
                backgroundColor: "transparent"
                textColor: "#FF6600"
                borderColor: "#FF6600"
                enabled: !root.isValidating
                onClicked: root.reject()
            }

            CustomButton {
                id: addButton
                objectName: "addButton"
                text: root.isValidating ? "Validating..." : "Add Device"
                enabled: false
                onClicked: root.addDevice()

                // Made when it is needed: the window's start would have to load what it is drawn with.
                Loader {
                    anchors.centerIn: parent
                    width: 16
                    height: 16
                    active: root.isValidating
                    source: "settings/SmallBusyIndicator.qml"
                    onLoaded: item.palette.dark = root.textColor // qmllint disable
                }
            }
        }
    }
}
