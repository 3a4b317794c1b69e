// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

/// What the add-device dialog is filled in with and answers by. What it does stands in the dialog.
ColumnLayout {
    id: root

    required property var dialog
    readonly property alias ipInput: ipInput
    readonly property alias statusText: statusText
    readonly property alias addButton: addButton
    readonly property color fieldColor: dialog.dark ? "#1a1a1a" : "#ffffff"
    readonly property color fieldBorderColor: dialog.dark ? "#3a3a3a" : "#d0d0d0"

    spacing: 6

    PlainText {
        text: "IP Address"
        font.weight: Font.DemiBold
        color: root.dialog.textColor
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
            enabled: !root.dialog.isValidating
            opacity: enabled ? 1.0 : 0.5
            font.pixelSize: 14
            color: root.dialog.textColor
            selectionColor: "#FF6600"
            selectedTextColor: "white"
            Accessible.name: "IP Address"
            onTextChanged: root.dialog.updateButtonState()
            Keys.onReturnPressed: {
                if (addButton.enabled && !root.dialog.isValidating)
                    root.dialog.addDevice()
            }
        }

        PlainText {
            objectName: "placeholderText"
            anchors.fill: ipInput
            text: "192.168.1.100"
            color: root.dialog.secondaryTextColor
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
        visible: ipInput.text !== "" && !root.dialog.isValidIP(ipInput.text)
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
        color: root.dialog.secondaryTextColor
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
            enabled: !root.dialog.isValidating
            onClicked: root.dialog.reject()
        }

        CustomButton {
            id: addButton
            objectName: "addButton"
            text: root.dialog.isValidating ? "Validating..." : "Add Device"
            enabled: false
            onClicked: root.dialog.addDevice()

            Loader {
                anchors.centerIn: parent
                active: root.dialog.isValidating
                sourceComponent: BusyIndicator {
                    width: 16
                    height: 16
                    padding: 0
                    palette.dark: root.dialog.textColor
                    running: root.dialog.isValidating
                    Accessible.ignored: true
                }
            }
        }
    }
}
