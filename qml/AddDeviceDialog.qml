// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Templates as T

/// Asks for the address of a device that the search did not find, has it probed, and closes a moment after
/// the device has been admitted.
T.Dialog {
    id: root
    objectName: "AddDeviceDialog"

    property var deviceDiscovery: null
    property bool isValidating: false

    readonly property bool dark: themeManager.isDarkTheme // qmllint disable unqualified
    readonly property color cardColor: dark ? "#2a2a2a" : "#ffffff"
    readonly property color borderColor: dark ? "#3a3a3a" : "#e0e0e0"
    readonly property color textColor: dark ? "white" : "#1a1a1a"
    readonly property color secondaryTextColor: dark ? "#999999" : "#666666"

    /// The field, the status line and the buttons, once prepare() has made them.
    readonly property var form: formLoader.item

    /// The device at ipAddress was admitted.
    signal deviceAdded(string ipAddress)
    /// The wait for the device at ipAddress ran out.
    signal deviceAddFailed(string ipAddress, string error)

    /// Makes what the dialog shows. The first frame of the window does not wait for it.
    function prepare() {
        if (form)
            return
        headerLoader.setSource("components/AddDeviceHeading.qml", { dialog: root })
        formLoader.setSource("components/AddDeviceForm.qml", { dialog: root })
    }

    function isValidIP(ip: string): bool {
        return /^(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\.){3}(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$/.test(ip)
    }

    function updateButtonState() {
        form.addButton.enabled = isValidIP(form.ipInput.text.trim()) && !root.isValidating
    }

    function showStatus(text, color) {
        form.statusText.text = text
        form.statusText.color = color
    }

    function addDevice() {
        const ipAddress = form.ipInput.text.trim()
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

    function reset() {
        form.ipInput.text = ""
        form.statusText.text = ""
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

    onAboutToShow: prepare()
    onOpened: {
        form.statusText.text = ""
        root.isValidating = false
        updateButtonState()
    }
    onAccepted: reset()
    onRejected: reset()

    Connections {
        target: root.deviceDiscovery

        // Also holds for a device that the search finds by itself at this very address.
        function onDeviceAdded(ipAddress) {
            if (ipAddress !== root.form.ipInput.text.trim())
                return
            root.isValidating = false
            root.showStatus("Device added successfully!", "#10b981")
            root.deviceAdded(ipAddress)
            closeTimer.start()
        }

        function onStatusTextChanged() {
            if (!root.isValidating || !root.deviceDiscovery)
                return
            if (root.deviceDiscovery.statusText.includes(root.form.ipInput.text.trim()))
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
            root.deviceAddFailed(root.form.ipInput.text.trim(), "Validation timeout")
        }
    }

    background: Rectangle {
        radius: 12
        color: root.cardColor
        border.width: 1
        border.color: root.borderColor
    }

    header: Loader {
        id: headerLoader
    }
    contentItem: Loader {
        id: formLoader
        focus: true
    }
}
