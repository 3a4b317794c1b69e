// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtTest
import NoctarisTools 1.0

/// One row of the table over a model that the test writes, aloud or without a notification.
Item {
    width: 1000
    height: 400

    DeviceTable {
        id: table
        anchors.fill: parent
        model: rowModel
    }

    SignalSpy {
        id: settingsSpy
        target: table
        signalName: "deviceSettingsRequested"
    }

    TestCase {
        id: test
        name: "DeviceRow"
        when: windowShown

        property Item row: null

        function part(name: string): Item {
            return findChild(row, name)
        }

        function init() {
            rowModel.mute(false)
            rowModel.fill(2)
            writeRow(0, "10.1.1.1", "orion", "2.3.1", "Noctaris Pro", true)
            writeRow(1, "10.1.1.2", "lyra", "2.4.0", "Noctaris Max", false)
            const view = findChild(table, "tableView")
            view.forceLayout()
            row = view.itemAtIndex(0)
            verify(row)
            settingsSpy.clear()
        }

        function writeRow(index, address, hostname, version, model, isOnline) {
            rowModel.write(index, 257, address)
            rowModel.write(index, 258, hostname)
            rowModel.write(index, 259, version)
            rowModel.write(index, 260, model)
            rowModel.write(index, 261, isOnline)
            rowModel.write(index, 262, false)
            rowModel.write(index, 263, isOnline ? "Online" : "Offline")
            rowModel.writeAddresses(index, [])
        }

        function test_networkIcons_data() {
            return [
                { tag: "cable", primary: "192.168.100.1", others: [], icons: "ethernet" },
                { tag: "own hotspot", primary: "10.250.250.1", others: [], icons: "hotspot" },
                { tag: "joined 192.168", primary: "192.168.100.10", others: [], icons: "station" },
                { tag: "joined 172.16", primary: "172.16.0.9", others: [], icons: "station" },
                { tag: "not private", primary: "172.17.0.1", others: [], icons: "" },
                { tag: "hotspot hides the joined network", primary: "10.0.0.5", others: ["10.250.250.1"], icons: "hotspot" },
                { tag: "all kinds", primary: "192.168.100.1", others: ["10.250.250.1", "10.0.0.5"], icons: "ethernet hotspot" },
                { tag: "second address only", primary: "8.8.8.8", others: ["192.168.1.2"], icons: "station" },
                { tag: "no address", primary: "", others: [], icons: "" }
            ]
        }

        function test_networkIcons(data) {
            rowModel.write(0, 257, data.primary)
            rowModel.writeAddresses(0, data.others)
            const shown = ["ethernet", "hotspot", "station"].filter(name => part(name + "Icon").visible)
            compare(shown.join(" "), data.icons)
        }

        function test_whatFollowsANotification() {
            writeRow(0, "10.9.9.9", "renamed", "9.9", "Other", false)
            rowModel.write(0, 262, true)
            rowModel.writeAddresses(0, ["192.168.100.1", "10.250.250.1"])
            compare(part("statusPill").text, "Offline")
            compare(part("versionText").text, "9.9")
            compare(findChild(row, "secondaryAddressText").text, "192.168.100.1")
            verify(!part("settingsButton").enabled)
            // These are read once for a place in the table.
            compare(part("addressText").text, "10.1.1.1")
            compare(part("hostnameText").text, "orion")
            compare(part("modelText").text, "Noctaris Pro")
            verify(!part("localPill").visible)
        }

        function test_missedNotificationsAreCaughtUp() {
            rowModel.mute(true)
            rowModel.writeAddresses(0, ["10.250.250.1"])
            rowModel.write(0, 261, false)
            rowModel.write(0, 263, "Offline")
            compare(part("statusPill").text, "Online")
            tryVerify(() => part("hotspotIcon").visible, 1000)
            tryCompare(part("statusPill"), "text", "Offline", 2500)
            rowModel.write(0, 259, "9.9")
            tryCompare(part("versionText"), "text", "9.9", 2500)
        }

        function test_heightGrowsWithAddresses() {
            compare(row.height, 60)
            rowModel.writeAddresses(0, ["10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4"])
            tryVerify(() => row.height > 60)
            compare(row.height, part("outerIpColumn").implicitHeight + 20)
        }

        function test_emptyValuesHaveNames() {
            rowModel.fill(1)
            findChild(table, "tableView").forceLayout()
            row = findChild(table, "tableView").itemAtIndex(0)
            compare(part("addressText").text, "Unknown")
            compare(part("hostnameText").text, "Unknown")
            compare(part("versionText").text, "Unknown")
            compare(part("modelText").text, "Noctaris")
        }

        function test_clicks() {
            const view = findChild(table, "tableView")
            compare(view.currentIndex, 0)
            const second = view.itemAtIndex(1)
            mouseClick(second, 300, 30)
            compare(table.currentIndex, 1)
            // An offline device has no settings to open.
            mouseClick(findChild(second, "settingsButton"))
            compare(settingsSpy.count, 0)
            mouseClick(part("settingsButton"))
            compare(table.currentIndex, 0)
            compare(settingsSpy.count, 1)
            compare(settingsSpy.signalArguments[0][0], 0)
        }

        function test_hostileTextsStayInTheirCells_data() {
            return [
                { tag: "long", text: "x".repeat(4000) },
                { tag: "megabytes", text: "x".repeat(8000000) },
                { tag: "markup", text: "<h1>big</h1><img src='http://10.0.0.1/x'>".repeat(20) },
                { tag: "right to left", text: "\u202e\u202b" + "\u05d0\u05d1".repeat(500) },
                { tag: "lines", text: "a\nb\r\nc\u2028d\n".repeat(200) }
            ]
        }

        function test_hostileTextsStayInTheirCells(data) {
            rowModel.fill(1)
            writeRow(0, "10.1.1.1", data.text, data.text, data.text, true)
            rowModel.write(0, 263, data.text)
            rowModel.writeAddresses(0, [data.text])
            const view = findChild(table, "tableView")
            view.forceLayout()
            row = view.itemAtIndex(0)
            tryVerify(() => findChild(row, "secondaryAddressText"))
            for (const name of ["hostnameText", "versionText", "modelText", "secondaryAddressText", "statusPill"]) {
                const item = part(name)
                const label = name === "statusPill" ? item.children[0] : item
                compare(label.textFormat, Text.PlainText, name)
                verify(label.truncated, name)
                compare(label.lineCount, 1, name)
                const right = item.mapToItem(row, item.width, 0).x
                verify(right <= part("settingsButton").mapToItem(row, 0, 0).x, name + " ends at " + right)
            }
            verify(row.height < 100)
        }
    }
}
