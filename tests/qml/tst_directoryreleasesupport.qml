// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// Where the pictures go, which release runs, who may help from afar, and what opens in a browser.
PageCase {
    name: "DirectoryReleaseSupport"

    function directory(path: string): string { return "body:{\"result\":true,\"payload\":\"" + path + "\"}" }

    function test_directory_data() { return [
        { tag: "new", typed: " /data/a b ", button: "picturesDirectoryButton", sent: "/data/a b", press: "confirmButton", asked: ["POST /api/system/reboot"] },
        { tag: "refused", typed: "nowhere", button: "picturesDirectoryButton", sent: "nowhere" },
        { tag: "empty", typed: " ", button: "picturesDirectoryButton", message: "❌ Error | Pictures directory path cannot be empty. Please enter a valid directory path. | OK" },
        { tag: "the same", typed: " /home/noctaris/Old ", button: "picturesDirectoryButton" },
        { tag: "default", typed: "", button: "picturesDirectoryDefaultButton", sent: "/home/noctaris/Pictures", press: "cancelButton", asked: [] },
        { tag: "given up", typed: "/x", button: "picturesDirectoryCancelButton", text: "/home/noctaris/Old" },
        { tag: "answered meanwhile", typed: "/x", received: "/home/noctaris/New", text: "/home/noctaris/Old", message: "❌ Error | Refused | OK" }
    ] }
    function test_directory(data) {
        lab.setFault(0, "GET /api/info/pictures", directory("/home/noctaris/Old"))
        play(0, "picturesDirectoryButton", () => type(data.typed), ...(data.button ? [data.button] : []), ...(data.typed ? [] : ["picturesDirectoryButton"]))
        if (data.received)
            play(() => deviceDiscovery.picturesDirectoryReceived(lab.address(0), data.received), { picturesDirectoryEditField: data.received }, () => deviceDiscovery.picturesDirectoryUpdated(lab.address(0), false, "Refused"))
        play(data.sent ? ["POST /api/info/pictures {\"directory\":\"" + data.sent + "\"}"] : [], { picturesDirectoryEditField: (data.text || data.typed || data.sent) + (data.message ? "" : " [off]") })
        play({ messageDialog: data.message || "", picturesDirectoryButton: data.message ? "Save" : "Modify", picturesDirectorySetDialog: data.press ? "✅ Directory Set | Picture directory has been set successfully. Please reboot to apply the changes. | Later | 🔄 Reboot Now" : "" })
        play(...(data.press ? ["picturesDirectorySetDialog." + data.press, { picturesDirectorySetDialog: "", rebootButton: data.asked.length ? "Rebooting... [off]" : "Reboot" }, data.asked] : []))
    }

    function test_drives() {
        const box = "externalStorageComboBox", astro = "▾ | /media/noctaris/ASTRO", ask = "GET /api/info/storage"
        lab.setFault(0, "GET /api/info/pictures", directory("/run/media/noctaris/Backup"))
        play(0, { [box]: "▾ | /run/media/noctaris/Backup" }, "internalPicturesRadio", { [box]: "" }, () => lab.takeRequests(0), "externalPicturesRadio", [ask], box, () => keyClick(Qt.Key_Up), () => keyClick(Qt.Key_Return), { [box]: astro }, () => lab.setFault(0, "POST /api/info/pictures", refusal))
        // Refused without a word, and still the choice.
        play("picturesDirectorySetButton", ["POST /api/info/pictures {\"directory\":\"/media/noctaris/ASTRO\"}"], () => lab.setFault(0, ask, "body:{\"result\":true,\"payload\":[[1,\"/media/noctaris/B\"],[1,\"/media/noctaris/ASTRO\"]]}"))
        play("externalStorageRefreshButton", () => tryVerify(() => part(box).currentIndex === 1), { [box]: astro, messageDialog: "", picturesDirectorySetDialog: "" })
        play(() => lab.setFault(0, ask, "status:500"), "externalStorageRefreshButton", { [box]: "▾ | No external devices found", picturesDirectorySetButton: "💾 Set [off]" }, () => lab.hold(0, ask), "closeButton", () => openPage(0), { [box]: "▾ | Loading external devices... [off]" })
    }

    function test_release_data() { return [
        { tag: "installed", after: "Stable v3.7.6 + Beta v3.8.0.beta [on]" },
        { tag: "not to be installed", key: "POST /api/flatpak/app", answer: refusal, message: "❌ Error | Failed to start flatpak installation | OK", after: "Stable v3.7.6 [on] + Beta" },
        { tag: "installation fails", key: "/api/flatpak/app/progress", answer: "body:{\"result\":true,\"payload\":{\"status\":\"Error\",\"message\":\"No space\"}}", message: "❌ Error | Installation failed: No space | OK", after: "Stable v3.7.6 [on] + Beta" },
        { tag: "not made the default", key: "PUT /api/flatpak/default", answer: refusal, message: "❌ Error | Failed to update release type for 127.0.0.2: Server returned result=false | OK", after: "Stable v3.7.6 [on] + Beta v3.8.0.beta" }
    ] }
    function test_release(data) {
        openPage(0)
        lab.setFault(0, data.key || "/none", data.answer || refusal)
        play("stableReleaseRadio", { [releases]: "Stable v3.7.6 [on] + Beta" }, "betaReleaseRadio", { [releases]: "Stable v3.7.6 [off] + Beta [off]" })
        play(() => verify(part("releaseTypeBusy").visible), { messageDialog: data.message || "", [releases]: data.after }, () => verify(!part("releaseTypeBusy").visible))
        compare(lab.takeRequests(0).includes("PUT /api/flatpak/default {\"application_id\":\"org.kde.kstars\",\"branch\":\"master\"}"), data.after.includes("3.8"))
    }

    function test_remoteSupport() {
        const support = "remoteSupportSwitch+remoteIdContainer", path = "/api/service", request = operation => "POST /api/service {\"operation\":\"" + operation + "\",\"service\":\"rustdesk\"}"
        const paper = Qt.createQmlObject("import QtQuick; TextInput {}", page)
        play(0, () => lab.hold(0, path), "remoteSupportSwitch", { [support]: "ON [on] [off] + " }, () => verify(part("remoteSupportBusy").visible), [request("enable")])
        play(() => lab.release(0, path), { [support]: "ON [on] + 173939133" }, () => verify(!part("remoteSupportBusy").visible), "remoteIdContainer", () => paper.paste())
        verify(Qt.colorEqual(part("remoteIdContainer").color, "#22c55e"))
        compare(paper.text, "173939133")
        tryVerify(() => Qt.colorEqual(part("remoteIdContainer").color, themeManager.isDarkTheme ? "#3a3a3a" : "#e0e0e0"))
        // What fails leaves the switch where the user put it, and says nothing.
        play(() => lab.setFault(0, path, "status:500"), "remoteSupportSwitch", { [support]: "OFF + 173939133", messageDialog: "" })
        play(() => deviceDiscovery.remoteSupportStopped(lab.address(0), true, ""), "remoteSupportSwitch", { [support]: "ON [on] + ", messageDialog: "" })
        play(() => lab.release(0, path), () => lab.takeRequests(0), "remoteSupportSwitch", { [support]: "OFF + " }, [request("stop"), request("disable")])
    }

    function test_webInterfaces() {
        play(0, "webManagerButton", "dashboardButton", "vncButton", () => compare(lab.takeUrls().join(), "http://127.0.0.2:8624,http://127.0.0.2:3000,http://127.0.0.2:6080"))
    }
}
