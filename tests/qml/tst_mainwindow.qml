// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtTest
import NoctarisTools 1.0

/// The home screen and the way to a device's settings and back, with real devices behind it.
Item {
    Component {
        id: program

        Main {}
    }

    TestCase {
        name: "MainWindow"

        property var win: null
        property Item table: null
        property Item view: null

        function init() {
            // The last test's window is gone by then, and with the old gateway go answers that were under way.
            wait(0)
            lab.renewGateway()
            win = createTemporaryObject(program, null)
            win.requestActivate()
            tryVerify(() => win.active)
            table = findChild(win.contentItem, "deviceTable")
            view = findChild(win.contentItem, "tableView")
        }

        function cleanup() {
            if (deviceDiscovery.isScanning)
                deviceDiscovery.stopDiscovery()
            lab.stopAll()
            win.close()
        }

        function button(name: string): Item {
            return findChild(win.contentItem, name) || findChild(win.header, name)
        }

        function listDevices(count) {
            for (let number = 0; number < count; ++number) {
                verify(lab.start(number))
                deviceDiscovery.addManualDevice(lab.address(number))
                tryCompare(deviceDiscovery, "deviceCount", number + 1)
            }
            view.forceLayout()
        }

        function openSettings(row) {
            mouseClick(findChild(view.itemAtIndex(row), "settingsButton"))
            verify(win.showSettings)
        }

        function test_emptyTableAndFirstRow() {
            tryVerify(() => findChild(table, "emptyState"))
            verify(findChild(table, "emptyState").visible)
            compare(button("countPill").text, "0 devices found")
            verify(!button("refreshButton").enabled)
            verify(!button("removeButton").enabled)
            listDevices(1)
            verify(!findChild(table, "emptyState").visible)
            compare(button("countPill").text, "1 devices found")
            verify(button("refreshButton").enabled)
            verify(button("removeButton").enabled)
        }

        function test_refreshAndRemoveActOnTheCurrentRow() {
            listDevices(2)
            mouseClick(view.itemAtIndex(1), 300, 20)
            lab.setVersion(1, "9.9.9")
            mouseClick(button("refreshButton"))
            tryCompare(button("statusLine"), "text", "Device " + lab.address(1) + " refreshed successfully")
            tryCompare(findChild(view.itemAtIndex(1), "versionText"), "text", "9.9.9")
            mouseClick(button("removeButton"))
            compare(button("statusLine").text, "Device " + lab.address(1) + " removed")
            compare(deviceDiscovery.deviceCount, 1)
        }

        function test_removalKeepsTheSelection_data() {
            return [
                { tag: "row above", current: 0, selected: 1, after: 0, shown: true },
                { tag: "row above the last", current: 0, selected: 2, after: -1, shown: false },
                { tag: "row below", current: 2, selected: 0, after: 0, shown: true },
                { tag: "the selected row", current: 1, selected: 1, after: -1, shown: false }
            ]
        }

        function test_removalKeepsTheSelection(data) {
            listDevices(3)
            table.currentIndex = data.current
            win.selectedDeviceIndex = data.selected
            win.showSettings = true
            win.removeCurrentDevice()
            compare(deviceDiscovery.deviceCount, 2)
            compare(win.selectedDeviceIndex, data.after)
            compare(win.showSettings, data.shown)
        }

        function test_settingsOpenAndClose_data() {
            return [
                { tag: "Home", close: () => mouseClick(button("themeButton")) },
                { tag: "Close", close: () => mouseClick(button("closeButton")) },
                { tag: "Escape", close: () => keyClick(Qt.Key_Escape) },
                { tag: "device gone", close: () => deviceDiscovery.removeDevice(1) }
            ]
        }

        function test_settingsOpenAndClose(data) {
            listDevices(2)
            openSettings(1)
            compare(win.selectedDeviceIndex, 1)
            compare(table.currentIndex, 1)
            compare(button("deviceTitle").text, "Noctaris Tools - " + lab.hostname(1))
            compare(button("themeButton").text, "Home")
            verify(button("updaterButton").enabled)
            data.close()
            verify(!win.showSettings)
            compare(win.selectedDeviceIndex, -1)
        }

        function test_headerHoldsWhatItRead() {
            listDevices(1)
            openSettings(0)
            lab.rename(0, "renamed")
            deviceDiscovery.refreshDevice(0)
            tryCompare(deviceDiscovery, "statusText", "Device " + lab.address(0) + " refreshed successfully")
            tryVerify(() => deviceDiscovery.data(deviceDiscovery.index(0, 0), 258) === "renamed")
            compare(button("deviceTitle").text, "Noctaris Tools - andromeda")
            keyClick(Qt.Key_Escape)
            openSettings(0)
            compare(button("deviceTitle").text, "Noctaris Tools - renamed")
        }

        function test_withoutADevice() {
            win.showSettings = true
            compare(button("deviceTitle").text, "Noctaris Tools - No Device Selected")
            compare(win.selectedDeviceVersion, "1.9.0")
            compare(win.selectedDeviceModel, "N/A")
            compare(win.selectedDeviceIpAddress, "")
        }

        function test_scanButtonAndKey() {
            const scan = button("scanButton")
            const indicator = button("scanIndicator")
            compare(scan.text, "Rescan Network")
            verify(!indicator.visible)
            keyClick(Qt.Key_F5)
            verify(deviceDiscovery.isScanning)
            compare(scan.text, "Stop Scan")
            verify(indicator.visible)
            mouseClick(scan)
            verify(!deviceDiscovery.isScanning)
            compare(button("statusLine").text, "Discovery stopped")
            mouseClick(scan)
            verify(deviceDiscovery.isScanning)
        }

        function test_keyboardInTheTable() {
            listDevices(3)
            view.forceActiveFocus()
            keyClick(Qt.Key_Down)
            compare(table.currentIndex, 1)
            keyClick(Qt.Key_End)
            compare(table.currentIndex, 2)
            keyClick(Qt.Key_Home)
            compare(table.currentIndex, 0)
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Return)
            verify(win.showSettings)
            compare(win.selectedDeviceIndex, 1)
        }

        function test_everyButtonIsReachedByTab() {
            listDevices(1)
            view.forceActiveFocus()
            const reached = []
            for (let i = 0; i < 12; ++i) {
                keyClick(Qt.Key_Tab)
                reached.push(win.activeFocusItem.objectName)
            }
            for (const name of ["themeButton", "scanButton", "addManuallyButton", "refreshButton", "removeButton", "settingsButton"])
                verify(reached.includes(name), name + " is not among " + reached)
        }

        function test_themeButton() {
            const theme = button("themeButton")
            compare(theme.text, "🔄 Auto")
            const wasDark = themeManager.isDarkTheme
            mouseClick(theme)
            compare(themeManager.isDarkTheme, !wasDark)
            compare(theme.text, wasDark ? "🌙 Dark" : "☀️ Light")
            mouseClick(theme)
            compare(theme.text, wasDark ? "☀️ Light" : "🌙 Dark")
            verify(Qt.colorEqual(win.color, wasDark ? "#1a1a1a" : "#f5f5f5"))
        }

        function test_hostileNamesInTheHeader() {
            lab.start(0)
            lab.rename(0, "<b>" + "x".repeat(4000))
            lab.setModel(0, "\u202e" + "m".repeat(4000))
            lab.setVersion(0, "v".repeat(4000))
            deviceDiscovery.addManualDevice(lab.address(0))
            tryCompare(deviceDiscovery, "deviceCount", 1)
            view.forceLayout()
            openSettings(0)
            waitForRendering(win.contentItem)
            for (const name of ["deviceTitle", "headerModel"]) {
                tryVerify(() => button(name).truncated, 5000, name)
                compare(button(name).textFormat, Text.PlainText)
            }
            const updater = button("updaterButton")
            verify(updater.mapToItem(null, updater.width, 0).x < win.width)
        }
    }
}
