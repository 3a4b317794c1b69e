// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import "../components"
import "contrast.js" as Contrast

/// The ID for the support person. A click puts it on the clipboard, and the box turns green for a moment.
Rectangle {
    id: remoteIdContainer
    objectName: "remoteIdContainer"

    required property var page

    function copyId() {
        try {
            // Only an item of text can reach the clipboard from here.
            const carrier = Qt.createQmlObject('import QtQuick 2.15; TextInput { }', page)
            carrier.text = page.remoteSupportId
            carrier.selectAll()
            carrier.copy()
            carrier.destroy()
            color = "#22c55e"
            copyFeedbackTimer.start()
        } catch (error) {
            console.log("Copy failed:", error)
        }
    }

    implicitWidth: remoteIdText.implicitWidth + 20
    implicitHeight: 32
    radius: 6
    color: page.borderColor
    visible: page.remoteSupportActive && page.remoteSupportId.length > 0
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: "Copy the remote support ID " + remoteIdText.text
    Accessible.onPressAction: copyId()
    Keys.onSpacePressed: copyId()
    Keys.onReturnPressed: copyId()

    PlainText {
        id: remoteIdText
        objectName: "remoteIdText"
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        deviceText: remoteIdContainer.page.remoteSupportId
        font.family: "Consolas, Monaco, monospace"
        color: Contrast.textOn(remoteIdContainer.color)
        Accessible.ignored: true
    }

    FocusRing {
        radius: 10
        visible: remoteIdContainer.activeFocus
    }

    MouseArea {
        anchors.fill: parent
        cursorShape: Qt.PointingHandCursor
        onClicked: remoteIdContainer.copyId()
    }

    Timer {
        id: copyFeedbackTimer
        objectName: "copyFeedbackTimer"
        interval: 800
        onTriggered: remoteIdContainer.color = remoteIdContainer.page.dark ? "#3a3a3a" : "#e0e0e0"
    }
}
