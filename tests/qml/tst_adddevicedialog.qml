// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtTest
import NoctarisTools 1.0

/// The way from the button to a device in the table and back, by the keys and clicks of a user.
Item {
    id: scene

    Component {
        id: program

        Main {}
    }

    TestCase {
        name: "AddDeviceDialog"

        property var win: null
        property var dialog: null
        property Item input: null
        property Item status: null
        property Item addButton: null

        SignalSpy {
            id: addedSpy
            signalName: "deviceAdded"
        }

        SignalSpy {
            id: failedSpy
            signalName: "deviceAddFailed"
        }

        function init() {
            // The last test's window is gone by then, and with the old gateway go answers that were under way.
            wait(0)
            lab.renewGateway()
            win = createTemporaryObject(program, null)
            win.requestActivate()
            tryVerify(() => win.active)
            dialog = findChild(win, "addDeviceDialog")
            input = findChild(dialog.contentItem, "ipInput")
            status = findChild(dialog.contentItem, "statusText")
            addButton = findChild(dialog.contentItem, "addButton")
            for (const spy of [addedSpy, failedSpy]) {
                spy.target = dialog
                spy.clear()
            }
            openDialog()
        }

        function cleanup() {
            lab.stopAll()
            win.close()
        }

        function openDialog() {
            mouseClick(findChild(win.contentItem, "addManuallyButton"))
            tryVerify(() => dialog.opened)
            mouseClick(findChild(dialog.contentItem, "inputFrame"))
            verify(input.activeFocus)
        }

        function type(text) {
            for (const letter of text)
                keyClick(letter)
        }

        function test_validation_data() {
            return [
                { tag: "empty", text: "", enabled: false, hint: false },
                { tag: "whole", text: "10.0.0.5", enabled: true, hint: false },
                { tag: "blanks around", text: " 10.0.0.5 ", enabled: true, hint: true },
                { tag: "leading zeros", text: "010.001.00.5", enabled: true, hint: false },
                { tag: "largest", text: "255.255.255.255", enabled: true, hint: false },
                { tag: "field too large", text: "256.1.1.1", enabled: false, hint: true },
                { tag: "too short", text: "1.2.3", enabled: false, hint: true },
                { tag: "too long", text: "1.2.3.4.5", enabled: false, hint: true },
                { tag: "a name", text: "orion.local", enabled: false, hint: true }
            ]
        }

        function test_validation(data) {
            type(data.text)
            compare(input.text, data.text)
            compare(addButton.enabled, data.enabled)
            compare(findChild(dialog.contentItem, "hintText").visible, data.hint)
            // Another place to go shows what the field's frame thinks of the text.
            findChild(dialog.contentItem, "cancelButton").forceActiveFocus()
            const frame = findChild(dialog.contentItem, "inputFrame")
            compare(Qt.colorEqual(frame.border.color, "#ef4444"), data.hint)
        }

        function test_success() {
            verify(lab.start(0))
            type(" " + lab.address(0) + " ")
            keyClick(Qt.Key_Enter, Qt.KeypadModifier)
            verify(!dialog.isValidating)
            keyClick(Qt.Key_Return)
            verify(dialog.isValidating)
            verify(!input.enabled)
            verify(!findChild(dialog.contentItem, "cancelButton").enabled)
            compare(addButton.text, "Validating...")
            tryCompare(status, "text", "Device added successfully!")
            verify(Qt.colorEqual(status.color, "#10b981"))
            compare(addedSpy.signalArguments[0][0], lab.address(0))
            verify(!addButton.enabled)
            compare(deviceDiscovery.deviceCount, 1)
            tryVerify(() => !dialog.visible, 2500)
            // The accepted dialog has the gateway asked once more, for nothing.
            compare(deviceDiscovery.statusText, "Adding device ...")
            compare(input.text, "")
        }

        function test_silentDeviceThenLateAnswer() {
            verify(lab.start(1))
            lab.hold(1)
            type(lab.address(1))
            mouseClick(addButton)
            verify(dialog.isValidating)
            compare(status.text, "Adding device " + lab.address(1) + "...")
            keyClick(Qt.Key_Return)
            tryVerify(() => !dialog.isValidating, 16000)
            compare(status.text, "Device validation timed out. Please check the IP address and try again.")
            verify(Qt.colorEqual(status.color, "#ef4444"))
            compare(failedSpy.signalArguments[0][0], lab.address(1))
            compare(failedSpy.signalArguments[0][1], "Validation timeout")
            verify(dialog.opened && addButton.enabled && input.enabled)
            // What comes in later by another way counts all the same.
            lab.release(1)
            deviceDiscovery.addManualDevice(lab.address(1))
            tryCompare(status, "text", "Device added successfully!")
            tryVerify(() => !dialog.visible, 2500)
        }

        function test_duplicateIsRefusedByTheGateway() {
            verify(lab.start(0))
            deviceDiscovery.addManualDevice(lab.address(0))
            tryCompare(deviceDiscovery, "deviceCount", 1)
            type(lab.address(0))
            mouseClick(addButton)
            compare(status.text, "Device " + lab.address(0) + " already exists")
            verify(dialog.isValidating)
            tryVerify(() => !dialog.isValidating, 16000)
            compare(deviceDiscovery.deviceCount, 1)
        }

        function test_statusLinesOfOthersStayOut() {
            verify(lab.start(0))
            lab.hold(0)
            type("127.0.0.9")
            mouseClick(addButton)
            deviceDiscovery.addManualDevice("10.0.0.1")
            compare(status.text, "Adding device 127.0.0.9...")
        }

        function test_cancelForgetsTheText() {
            type("10.0.0.5")
            mouseClick(findChild(dialog.contentItem, "cancelButton"))
            tryVerify(() => !dialog.visible)
            openDialog()
            compare(input.text, "")
            compare(status.text, "")
            verify(!addButton.enabled)
        }
    }
}
