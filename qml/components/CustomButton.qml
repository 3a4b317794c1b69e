// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

/// The push button of the program. Its text is plain and stays on one line.
T.Button {
    id: root
    objectName: "CustomButton"

    property color backgroundColor: "#FF6600"
    property color textColor: "white"
    property color borderColor: "transparent"
    property color hoverColor: Qt.darker(backgroundColor, 1.1)
    property color disabledColor: Qt.alpha(backgroundColor, 0.5)
    property color disabledTextColor: Qt.alpha(textColor, 0.5)

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: 40
    horizontalPadding: 20
    verticalPadding: 0
    hoverEnabled: true
    font.pixelSize: 14
    font.weight: Font.DemiBold
    scale: hovered && enabled ? 1.02 : 1.0
    // A screen reader says the words, not the pictures in front of them.
    Accessible.name: text.replace(/^[^A-Za-z0-9]+/, "")

    contentItem: PlainText {
        text: root.text
        font: root.font
        color: root.enabled ? root.textColor : root.disabledTextColor
        horizontalAlignment: Text.AlignHCenter
        Accessible.ignored: true
    }

    background: Rectangle {
        radius: 8
        color: {
            if (!root.enabled)
                return root.disabledColor
            if (root.pressed)
                return Qt.darker(root.hoverColor, 1.1)
            return root.hovered ? root.hoverColor : root.backgroundColor
        }
        border.width: Qt.colorEqual(root.borderColor, "transparent") ? 0 : 2
        border.color: root.enabled ? root.borderColor : Qt.alpha(root.borderColor, 0.5)

        Behavior on color {
            ColorAnimation {
                duration: 200
            }
        }

        ShadowEdge {
            reach: 1
            opacity: 0.12
        }

        ShadowEdge {
            reach: 3
            opacity: 0.05
        }

        FocusRing {
            visible: root.visualFocus
        }
    }

    Behavior on scale {
        NumberAnimation {
            duration: 200
        }
    }

    // One step of the soft shadow. Hollow, so that nothing darkens a translucent button.
    component ShadowEdge: Rectangle {
        required property int reach

        z: -1
        anchors.fill: parent
        anchors.margins: -reach
        radius: 8 + reach
        color: "transparent"
        border.width: reach
        border.color: "black"
        visible: !Qt.colorEqual(root.backgroundColor, "transparent")
    }
}
