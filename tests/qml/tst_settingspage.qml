// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// The page itself: how it opens and closes, what it shows of a device, and how the device is renamed.
PageCase {
    name: "SettingsPage"

    function test_openingAsks() {
        // While no device is shown, results are taken to come from this address.
        deviceDiscovery.rebootCompleted("192.168.1.219", false, "Too early")
        const asked = ["GET /api/flatpak/app", "GET /api/info/all_interfaces", "GET /api/info/all_interfaces", "GET /api/info/hostname", "GET /api/info/machine-id", "GET /api/info/model", "GET /api/info/pictures", "GET /api/info/version", "GET /api/system/hotspot_interface", "GET /api/system/hotspot_interface", "POST /api/service/isactive {\"service\":\"rustdesk\"}"]
        // With the pictures elsewhere the drives are asked for too, and the next time at once as well.
        for (const [storage, directory] of [[0, "/home/noctaris/x"], [1, "/home/noctari"], [2, "/data"]]) {
            lab.setFault(0, "/api/info/pictures", "body:{\"result\":true,\"payload\":\"" + directory + "\"}")
            const lines = openPage(0)
            wait(50)
            compare(lines.concat(lab.takeRequests(0)).sort().join("\n"), asked.concat(Array(storage).fill("GET /api/info/storage")).sort().join("\n"))
            play("closeButton")
        }
        play(1, { hostnameField: "orion [off]", messageDialog: "❌ Error | Too early | OK" })
    }

    function test_interfaces_data() { return [
        { tag: "all", list: "eth0=10.0.0.5,wlan0=10.42.0.1,wlan1=0.0.0.0", fields: "10.0.0.5 + 10.42.0.1 + 0.0.0.0", lamps: "#22c55e #22c55e #ef4444" },
        { tag: "cable without an address", list: "eth0=,eth0:1=10.55.0.1", fields: "10.55.0.1 +  + ", lamps: "#ef4444 #6c757d #6c757d" },
        { tag: "alias only", list: "eth0:1=0.0.0.0,wlan0=", fields: "0.0.0.0 +  + ", lamps: "#ef4444 #ef4444 #6c757d" },
        { tag: "direct by the alias", list: "eth0=10.0.0.5,eth0:1=192.168.100.1,eth0=1.1.1.1", fields: "10.0.0.5 +  + ", lamps: "#22c55e #6c757d #6c757d", isDirect: true },
        { tag: "direct", list: "eth0=192.168.100.1", fields: "192.168.100.1 +  + ", lamps: "#22c55e #6c757d #6c757d", isDirect: true },
        { tag: "that address elsewhere", list: "wlan0=192.168.100.1", fields: " + 192.168.100.1 + ", lamps: "#6c757d #22c55e #6c757d" }
    ] }
    function test_interfaces(data) {
        const list = data.list.split(",").map(entry => ({ interface: entry.split("=")[0], ip: entry.split("=")[1] }))
        const lamps = () => ["ethernetLamp", "wlan0Lamp", "wlan1Lamp"].map(name => part(name).color).join(" ")
        lab.setFault(0, "/api/info/all_interfaces", "body:" + JSON.stringify({ result: true, interfaces: list }))
        play(0, { "ethernetField+wlan0Field+wlan1Field": data.fields, ethernetDirectRadio: data.isDirect ? "Direct [on]" : "Direct" })
        compare(lamps() + part("externalWifiRadio").visible, data.lamps + (data.tag === "all"))
        // A list that cannot be had takes the addresses away, and says nothing of the dongle.
        play(() => lab.setFault(0, "/api/info/all_interfaces", refusal), () => deviceDiscovery.queryNetworkInterfaces(0), { "ethernetField+wlan0Field+wlan1Field": " +  + ", ethernetAutoRadio: "Auto [on]" })
        compare(lamps() + part("externalWifiRadio").visible, "#6c757d #6c757d #6c757d" + (data.tag === "all"))
    }

    function rename(typed: string, message: string, sent: string) {
        play("hostnameButton", () => keyClick(Qt.Key_Delete), () => type(typed), () => keyClick(Qt.Key_Return), { messageDialog: message }, ...(message ? ["messageDialog.okButton"] : []))
        compare(lab.takeRequests(0).filter(line => line.startsWith("POST")).join(), sent ? "POST /api/info/hostname/" + sent : "")
    }

    function test_rename() {
        const longest = "a".repeat(63), empty = "Hostname cannot be empty. Please enter a valid hostname.", format = "Invalid hostname format. Use only letters, numbers, and hyphens. Cannot start or end with a hyphen."
        openPage(0)
        // A success shows what the dialog held before: nothing at first.
        rename(longest, "❌ Error | OK", longest)
        rename(" 7 ", "❌ Error | OK", "7")
        rename("7", "", "")
        for (const [typed, error] of [["", empty], ["  ", empty], ["-a", format], ["a-", format], ["a.b", format], [longest + "_a", format], [longest + "a", "Hostname is too long. Maximum length is 63 characters."]]) {
            rename(typed, "❌ Error | " + error + " | OK", "")
            play({ hostnameButton: "Save", hostnameCancelButton: "❌" }, () => keyClick(Qt.Key_Escape), { "hostnameField+hostnameButton+hostnameCancelButton": "7 [off] + Modify + " })
        }
        rename("lyra", "❌ Error | Hostname is too long. Maximum length is 63 characters. | OK", "lyra")
        lab.setFault(0, "/api/info/hostname/vega", refusal)
        rename("vega", "❌ Error | Failed to update hostname for 127.0.0.2: Server returned result=false | OK", "vega")
        // What was written back by hand stays, for any device.
        play({ "hostnameField+hostnameButton": "lyra [off] + Modify" }, "closeButton", () => openPage(1), { hostnameField: "lyra [off]" })
    }

    function test_escape_data() { return [
        { tag: "at once", presses: 1, steps: [] },
        { tag: "over a question", presses: 1, steps: ["rebootButton"] },
        { tag: "after a question", presses: 1, steps: ["rebootButton", "rebootConfirmDialog.cancelButton"] },
        { tag: "after a rename", presses: 1, steps: ["hostnameButton", () => type("x"), "hostnameButton"] },
        { tag: "both edits", presses: 3, steps: ["hostnameButton", "picturesDirectoryButton"] },
        { tag: "both, the host name last", presses: 3, steps: ["picturesDirectoryButton", "hostnameButton"] },
        { tag: "given up by the mouse", presses: 1, steps: ["hostnameButton", "hostnameCancelButton"] },
        { tag: "after a check", presses: 1, steps: ["updaterButton", () => tryVerify(() => read("deltaUpdateDialog") !== "")] }
    ] }
    function test_escape(data) {
        play(0, ...data.steps)
        for (let press = 0; press < data.presses; ++press) {
            verify(win.showSettings, "press " + press)
            keyClick(Qt.Key_Escape)
        }
        verify(!win.showSettings)
    }

    function test_otherDevices() {
        lab.setFault(0, "/api/flatpak/app", "body:[{\"application_id\":\"org.kde.kstars\",\"branch\":\"master\",\"version\":\"9.9\",\"active\":true}]")
        openPage(0)
        const before = textsOf(page).join(), other = lab.address(1)
        for (const result of ["hostnameUpdated", "hotspotInterfaceUpdated", "picturesDirectoryUpdated", "releaseTypeUpdated", "ethernetActivationCompleted", "ethernetDeactivationCompleted", "rebootCompleted", "shutdownCompleted", "networkResetCompleted", "lumarcResetCompleted", "factoryResetCompleted", "flatpakInstallCompleted"])
            deviceDiscovery[result](other, false, "x")
        for (const [result, ...values] of [["softwareUpdateTimedOut"], ["softwareUpdateCheckCompleted", true, true, "", false, {}], ["softwareUpdateStarted", false, ""], ["softwareUpdateProgressReceived", 100], ["deltaUpdateStarted", true, ""], ["deltaUpdateProgressReceived", 100, ""], ["deltaStatusReceived", true, ""], ["externalStorageReceived", ["/media/noctaris/x"]], ["picturesDirectoryReceived", "/x"], ["releaseTypeReceived", "stable", "7", "8"], ["remoteSupportStarted", true, "", "12"], ["remoteSupportStatusReceived", true, "12"], ["networkInterfacesReceived", { result: true, interfaces: [] }], ["hotspotInterfaceReceived", false]])
            deviceDiscovery[result](other, ...values)
        compare(textsOf(page).join(), before)
        play({ internalWifiRadio: "Internal WiFi [on]", [releases]: "Stable + Beta v9.9 [on]" }, [], "closeButton", () => lab.hold(1))
        // The next device starts with what is known of this one.
        play(() => openPage(1, 0), { [releases]: "Stable + Beta v9.9 [on]", ethernetField: "" }, () => lab.release(1), { [releases]: "Stable v3.7.6 [on] + Beta" })
    }

    function test_badAnswers_data() {
        const hostile = "<b>\u202e" + "x".repeat(4000)
        const all = payload => "body:" + JSON.stringify({ result: true, status: "active", interfaces: ["eth0", "wlan1"].map(name => ({ interface: name, ip: hostile })), payload: payload })
        return ["status:500", "body:[]", "body:{}", "body:nonsense", "body:{\"result\":true,\"payload\":{\"interface\":[],\"id\":7},\"interfaces\":{\"ip\":3}}", "drop"].map(kind => ({ tag: kind, kind: kind })).concat({ tag: "hostile", kind: all("/home/noctaris" + hostile), applications: all(["stable", "master"].map(branch => ({ application_id: "org.kde.kstars", branch: branch, version: hostile }))) })
    }
    function test_badAnswers(data) {
        for (const path of ["info/all_interfaces", "info/pictures", "info/storage", "flatpak/app", "service/isactive", "system/hotspot_interface", "software/rustdesk/id"])
            lab.setFault(0, "/api/" + path, path === "flatpak/app" && data.applications || data.kind)
        openPage(0)
        if (!data.applications)
            play({ [releases]: "Stable [on] + Beta", picturesDirectoryEditField: "/home/noctaris/Pictures [off]", ethernetField: "", remoteSupportSwitch: "OFF" })
        deviceDiscovery.rebootCompleted(lab.address(0), false, data.kind)
        waitForRendering(win.contentItem)
        for (const item of ["ethernetLamp", "wlan1Lamp", "picturesDirectoryButton", "betaReleaseRadio", "vncButton", "messageDialog"].map(part))
            verify(item.mapToItem(page, item.width, 0).x <= page.width && item.mapToItem(page, 0, item.height).y <= page.height, item.objectName)
        play("messageDialog.okButton", "closeButton")
        verify(!win.showSettings)
    }

    function test_keyboard() {
        openPage(0)
        const reached = []
        for (let presses = 0; presses < 28; ++presses) {
            keyClick(Qt.Key_Tab)
            reached.push(win.activeFocusItem.objectName)
        }
        compare(reached.join(" "), "versionBadge updaterButton themeButton hostnameButton ethernetField ethernetAutoRadio ethernetDirectRadio wlan0Field wlan1Field internalWifiRadio externalWifiRadio internalPicturesRadio externalPicturesRadio picturesDirectoryButton stableReleaseRadio betaReleaseRadio remoteSupportSwitch networkResetButton factoryResetButton lumarcResetButton webManagerButton dashboardButton vncButton closeButton imagesButton videosButton shutdownButton rebootButton")
        play(...[Qt.Key_Space, Qt.Key_Tab, Qt.Key_Tab, Qt.Key_Space].map(key => () => keyClick(key)), ["POST /api/system/reboot"])
    }
}
