// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import "../components"

/// Says something for three seconds, above everything else.
Rectangle {
    id: root

    property string message
    property bool isSuccess: true

    function show(text: string, success: bool) {
        message = text
        isSuccess = success
        fadeOut.stop()
        fadeIn.restart()
        hideTimer.restart()
    }

    anchors.horizontalCenter: parent.horizontalCenter
    anchors.bottom: parent.bottom
    anchors.bottomMargin: 100
    width: Math.min(row.implicitWidth + 40, parent.width - 40)
    height: row.implicitHeight + 28
    z: 6000
    visible: opacity > 0
    opacity: 0
    radius: 24
    color: "#323232"
    border.width: 1
    border.color: mark.color
    Accessible.role: Accessible.AlertMessage
    Accessible.name: message

    Row {
        id: row
        anchors.centerIn: parent
        spacing: 10

        PlainText {
            id: mark
            objectName: "mark"
            anchors.verticalCenter: parent.verticalCenter
            text: root.isSuccess ? "✓" : "✗"
            font.pixelSize: 18
            font.weight: Font.Bold
            color: root.isSuccess ? "#4CAF50" : "#F44336"
            Accessible.ignored: true
        }

        PlainText {
            objectName: "text"
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, root.parent.width - 110)
            deviceText: root.message
            wrapMode: Text.Wrap
            maximumLineCount: 4
            color: "white"
            Accessible.ignored: true
        }
    }

    Timer {
        id: hideTimer
        interval: 3000
        onTriggered: {
            fadeIn.stop()
            fadeOut.start()
        }
    }

    NumberAnimation {
        id: fadeIn
        target: root
        property: "opacity"
        to: 1
        duration: 300
        easing.type: Easing.OutCubic
    }

    NumberAnimation {
        id: fadeOut
        target: root
        property: "opacity"
        to: 0
        duration: 300
        easing.type: Easing.InCubic
    }
}
