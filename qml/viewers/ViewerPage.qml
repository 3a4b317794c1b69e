// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Layouts
import "../settings"

/// A full page with the files of one kind that a device keeps, some of which may be selected. It has the keyboard
/// from the moment it is there.
Rectangle {
    id: root

    property var deviceDiscovery: null
    property int deviceIndex: -1
    property bool isLoading: true
    property int selectedCount: 0
    /// What one of the files is called.
    required property string noun
    /// What has the keyboard while no control has it.
    property Item keyItem: root
    /// Whether something lies over the content that has to be dealt with first.
    property bool isCovered: false

    readonly property var theme: themeManager // qmllint disable unqualified
    readonly property bool dark: theme.isDarkTheme
    readonly property color cardColor: dark ? "#2D2D2D" : "#FFFFFF"
    readonly property color borderColor: dark ? "#3D3D3D" : "#E0E0E0"
    readonly property color textColor: dark ? "#FFFFFF" : "#212121"
    readonly property color secondaryTextColor: dark ? "#B0B0B0" : "#757575"
    readonly property color accentOrange: "#FF8F00"
    readonly property color accentDark: "#E67E00"
    readonly property color accentLight: "#FFA726"
    // More of a device's text than anyone reads; laying out megabytes would freeze the window.
    readonly property int maxShownLength: 4096
    readonly property bool canSelect: !isLoading && selectedCount > 0

    default property alias content: column.data
    /// What lies over the content.
    property alias overlays: layer.data

    signal closed()
    signal deletionConfirmed()

    function hasDevice(): bool {
        return !!deviceDiscovery && deviceIndex >= 0
    }

    /// What the list of devices says of this one; empty if there is none.
    function deviceText(role: int): string {
        return hasDevice() ? deviceDiscovery.data(deviceDiscovery.index(deviceIndex, 0), role) || "" : ""
    }

    function deviceIpAddress(): string {
        return deviceText(257)
    }

    function takeFocus() {
        keyItem.forceActiveFocus()
    }

    function showMessage(isSuccess: bool, text: string) {
        messageDialog.isSuccess = isSuccess
        messageDialog.messageText = text
        messageDialog.visible = true
    }

    function deleteSelected() {
        if (selectedCount === 0)
            showMessage(false, "No " + noun + "s selected")
        else
            confirmDeleteDialog.visible = true
    }

    anchors.fill: parent
    color: dark ? "#1E1E1E" : "#F5F5F5"
    Component.onCompleted: takeFocus()

    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onClicked: root.forceActiveFocus()
        onWheel: {}
    }

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 20
        spacing: 12
        enabled: !root.isCovered
    }

    Item {
        id: layer
        anchors.fill: parent

        MessageDialog {
            id: messageDialog
            page: root
        }

        ConfirmOverlay {
            id: confirmDeleteDialog
            objectName: "confirmDeleteDialog"
            page: root
            accentColor: "#ef4444"
            title: "⚠️ Confirm Delete"
            text: "Are you sure you want to delete " + root.selectedCount + " selected " + root.noun + "(s)?\n\nThis action cannot be undone!"
            cancelText: "Cancel"
            confirmText: "🗑️ Delete"
            needsDevice: false
            onConfirmed: root.deletionConfirmed()
        }
    }
}
