// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Covers the content of the window while one device is looked at. It names the device; the header of the
/// window reads the flags that say which of the device's operations are under way.
Rectangle {
    id: root
    objectName: "SettingsPage"

    property var deviceDiscovery: null
    property int deviceIndex: -1
    property var imageDownloader: null
    property bool softwareUpdateInProgress: false
    property bool softwareUpdateCheckInProgress: false
    property bool rebootInProgress: false
    property bool shutdownInProgress: false
    property bool factoryResetInProgress: false
    property bool networkResetInProgress: false
    property bool lumarcResetInProgress: false

    readonly property bool dark: themeManager.isDarkTheme // qmllint disable unqualified

    signal closed()

    anchors.fill: parent
    z: 1000
    color: dark ? "#1a1a1a" : "#f5f5f5"

    onVisibleChanged: {
        if (!visible)
            return
        // Made when it is first wanted, so that the window stands sooner.
        if (!content.item)
            content.setSource("components/DeviceSummary.qml", { page: root })
        forceActiveFocus()
    }
    Keys.onEscapePressed: closed()

    // Clicks end here instead of reaching what the page covers.
    MouseArea {
        anchors.fill: parent
        onClicked: {}
    }

    Loader {
        id: content
        anchors.fill: parent
    }
}
