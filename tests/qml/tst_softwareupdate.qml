// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// From the updater button to the last message: the upgrade, and the delta update with its restart.
PageCase {
    name: "SoftwareUpdate"

    readonly property string check: "/api/software/upgradable"
    readonly property var checked: ["GET " + check + "?force_check=true"]
    readonly property var commands: ["/api/software/delta/apply", "/api/software/upgrade"]
    readonly property var progress: ["deltaProgressDialog", "softwareUpdateProgressDialog"]

    /// Takes up the offer that a device makes: 0 a delta, 1 an upgrade. The device has not answered to that yet.
    function acceptOffer(number: int) {
        const overlay = ["deltaUpdateDialog", "softwareUpdateConfirmDialog"][number]
        play(number, "updaterButton", () => tryVerify(() => read(overlay) !== ""), checked, () => lab.hold(number, commands[number]), overlay + ".confirmButton", { [overlay]: "" }, [number ? "GET " + commands[1] : "POST " + commands[0] + " {\"target_version\":\"2.5.0\"}"], () => verify(read(progress[number]) !== ""))
    }

    function test_offer_data() {
        const upgradeOffer = "📡 Software Update Available | A software update is available for this Noctaris device.\n\n⚠️ The update process may take several minutes. Please do not disconnect power or network during the update. | ❌ Cancel | 📡 Start Update"
        const title = "📡 System Update Available | ", bare = title + "System Update | CURRENT | N/A | → | NEW | N/A", last = " | ⚠️ Do not disconnect power or network during update. | Later | 📥 Download & Install"
        const metadata = text => "body:{\"result\":true,\"payload\":{\"upgradable\":true,\"delta_metadata\":" + text + "}}"
        return [
            { tag: "delta before upgrade", number: 0, overlay: "deltaUpdateDialog", press: "cancelButton", text: title + "Clearer nights | 2025-09-14 | CURRENT | 2.3.1 | → | NEW | 2.5.0 (48.3 MB) | What's New | • Focus finds its way in half the time | • Recordings of more than 4 GB are listed" + last },
            { tag: "bare delta", number: 1, answer: metadata("{\"available\":true,\"changelog\":[],\"size_mb\":0}"), overlay: "deltaUpdateDialog", press: "confirmButton", text: bare + last },
            { tag: "large delta", number: 1, answer: metadata("{\"available\":true,\"size_mb\":1234.56}"), overlay: "deltaUpdateDialog", press: "confirmButton", text: bare + " (1234.6 MB)" + last },
            { tag: "delta that is not available", number: 2, answer: metadata("{\"available\":false}"), overlay: "softwareUpdateConfirmDialog", press: "cancelButton", text: upgradeOffer },
            { tag: "upgrade", number: 1, overlay: "softwareUpdateConfirmDialog", press: "cancelButton", text: upgradeOffer },
            { tag: "neither", number: 2, overlay: "messageDialog", press: "okButton", text: "✅ Success | All software is already up to date. | OK" },
            { tag: "refused", number: 0, answer: refusal, overlay: "messageDialog", press: "okButton", text: "❌ Error | Invalid API response format | OK" }
        ]
    }
    function test_offer(data) {
        play(data.number, () => lab.hold(data.number, check), "updaterButton", { updaterButton: "⏳ Checking... [off]" }, checked, () => lab.release(data.number, check, data.answer), { [data.overlay]: data.text, updaterButton: "📱 Software Updater" })
        compare(["deltaUpdateDialog", "softwareUpdateConfirmDialog", "messageDialog"].filter(name => read(name) !== "").join(), data.overlay)
        play(data.overlay + "." + data.press, { [data.overlay]: "" }, [])
    }

    function test_stages_data() { return [
        { tag: "upgrade", number: 1, text: "📡 Software Update in Progress | Please wait while the software is being updated...\n\n⚠️ Do not disconnect power or network | ", first: "Initializing update...", more: [[99.5, "100% | Completing..."]] },
        { tag: "delta", number: 0, text: "📡 Downloading Update | Please wait while the update is being downloaded...\n\n⚠️ Do not disconnect power or network | ", first: "Initializing download...", more: [[0, "0% | Own words", "Own words"], [60, "60% | Own words"]] }
    ] }
    function test_stages(data) {
        acceptOffer(data.number)
        compare(part("updaterButton").enabled, data.number === 0)
        for (const [percent, text, words] of [[0, "0% | " + data.first], [1, "1% | Downloading updates..."], [24, "24% | Downloading updates..."], [25, "25% | Preparing installation..."], [49, "49% | Preparing installation..."], [50, "50% | Installing updates..."], [74, "74% | Installing updates..."], [75, "75% | Finalizing..."], [98, "98% | Finalizing..."], [99, "99% | Completing..."]].concat(data.more)) {
            deviceDiscovery.softwareUpdateProgressReceived(lab.address(data.number), percent)
            deviceDiscovery.deltaUpdateProgressReceived(lab.address(data.number), percent, words || "")
            compare(read(progress[data.number]), data.text + text)
        }
    }

    function test_run_data() {
        const state = word => "body:{\"result\":true,\"payload\":{\"pending_reboot\":false,\"state\":\"" + word + "\"}}"
        const restart = "✅ Update Downloaded | The update has been downloaded successfully.\n\nWould you like to restart now to apply the update? | Later | 🔄 Restart Now"
        return [
            { tag: "upgrade", number: 1, message: "✅ Success | Software update completed successfully!\n\n✅ Please reboot the device to apply changes. | OK" },
            { tag: "upgrade refused", number: 1, answer: "body:{\"result\":false,\"upgrade\":\"busy\"}", message: "❌ Error | Failed to start update: Software upgrade busy | OK" },
            { tag: "lost in the upgrade", number: 1, key: "/api/software/progress", fault: "drop", message: "❌ Error | Software update timed out or connection lost.\n\nPlease check:\n• Network connection\n• Device status\n• Try refreshing the device list | OK" },
            { tag: "delta", number: 0, restart: restart },
            { tag: "delta, nothing pending", number: 0, key: "/api/software/delta/status", fault: state("idle"), message: "✅ Success | Update completed successfully! | OK" },
            { tag: "delta, unknown state", number: 0, key: "/api/software/delta/status", fault: state("applying") },
            { tag: "delta waits for a restart", number: 0, answer: "body:{\"result\":false,\"error\":\"is pending_reboot\"}", restart: restart },
            { tag: "delta refused", number: 0, answer: "body:{\"result\":false,\"error\":\"no room\"}", message: "❌ Error | Failed to start update: no room | OK" }
        ]
    }
    function test_run(data) {
        acceptOffer(data.number)
        lab.setFault(data.number, data.key || "/none", data.fault || refusal)
        lab.release(data.number, commands[data.number], data.answer)
        if (!data.number && !data.answer)
            play(() => tryVerify(() => read(progress[0]).endsWith("0% | Initiating download...")), ["GET /api/software/progress", "GET /api/software/delta/status"])
        play({ [progress[data.number]]: "", messageDialog: data.message || "", deltaRebootDialog: data.restart || "", updaterButton: "📱 Software Updater" })
    }

    function test_restart() {
        const offer = () => deviceDiscovery.deltaStatusReceived(lab.address(0), true, "completed")
        play(0, offer, "deltaRebootDialog.cancelButton", { deltaRebootDialog: "" }, [], offer, () => lab.hold(0, "/api/system/reboot"), "deltaRebootDialog.confirmButton", { deltaRebootDialog: "", rebootButton: "Rebooting... [off]" }, ["POST /api/system/reboot"])
        compare(enabledButtons(), "networkReset lumarcReset")
        play(() => lab.release(0, "/api/system/reboot"), { rebootButton: "Reboot" }, () => verify(read("messageDialog").startsWith("✅ Success | Device 127.0.0.2 reboot")))
    }

    function test_closedInTheMiddle() {
        acceptOffer(0)
        play(() => lab.release(0, commands[0]), () => lab.hold(0, check), "updaterButton", checked, "themeButton", () => lab.release(0, check), () => wait(2200), [])
        play(0, () => verify(read(progress[0]) !== ""), { updaterButton: "⏳ Checking... [off]" }, ["GET /api/software/progress", "GET /api/software/delta/status"])
    }
}
