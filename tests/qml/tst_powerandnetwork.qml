// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// What can cut a device off: its restarts and resets, its ethernet mode and its hotspot.
PageCase {
    name: "PowerAndNetwork"

    function test_operations_data() {
        const row = (tag, request, question, busy, enabled, refused, done, more) => ({ tag: tag, request: request, question: question, busy: busy, enabled: enabled, refused: refused, done: done, more: more })
        const down = "\n\n⚠️ The device is powering off. To use it again, you will need to manually power it on."
        const up = "\n\n✅ The device is rebooting and will be available in a few minutes. You may need to refresh the device list after reboot."
        return [
            row("shutdown", "POST /api/system/shutdown", "⚠️ Shutdown Confirmation | You are about to shutdown this Noctaris device. | ❌ Cancel | 🔌 Shutdown Device", "Shutting Down...", "networkReset lumarcReset", "✅ Success | Device 127.0.0.2 shutdown command sent. The device should be powering off now." + down, "Device 127.0.0.2 shutdown initiated successfully. The device will power off.", down),
            row("reboot", "POST /api/system/reboot", "🔄 Reboot Confirmation | You are about to reboot this Noctaris device. | ❌ Cancel | 🔄 Reboot Device", "Reboot", "shutdown reboot networkReset factoryReset lumarcReset updater", "✅ Success | Device 127.0.0.2 reboot command sent. The device should be rebooting now." + up, "Device 127.0.0.2 reboot initiated successfully. The device will be unavailable for a few minutes.", up),
            row("networkReset", "POST /api/system/network_reset", "⚠️ Network Reset Confirmation | You are about to reset the network configuration of this Noctaris device. | ⚠️ Are you sure you want to proceed? | ❌ Cancel | \ufffd Reset Network", "Resetting Network...", "", "❌ Error | Failed to reset network for 127.0.0.2: Server returned result=false", "Network reset successfully initiated for device 127.0.0.2. The device will restart and may have a new IP address.", "\n\n⚠️ Important: The device is restarting and may have a new IP address. You may need to discover devices again."),
            row("factoryReset", "POST /api/system/factory_reset", "⚠️ Factory Reset Confirmation | You are about to perform a FACTORY RESET on this Noctaris device. | 🚨 This action CANNOT be undone! | ❌ Cancel | 🏭 FACTORY RESET", "Factory Resetting...", "shutdown reboot networkReset lumarcReset", "❌ Error | Factory reset failed for 127.0.0.2: Server returned result=false", "Factory reset successfully initiated for device 127.0.0.2. All settings have been restored to defaults.", "\n\n✅ Factory reset completed. The device will now reboot with factory settings. You may need to discover devices again."),
            row("lumarcReset", "GET /reset", "🎥 Lumarc Reset Confirmation | You are about to reset the Lumarc service on this Noctaris device. | ❌ Cancel | 🎥 Reset Lumarc", "⏳ Resetting Lumarc...", "networkReset", "❌ Error | Initial Lumarc reset failed for 127.0.0.2: Server returned result=false", "Lumarc Reset is Successful", "\n\n✅ Lumarc has been reset successfully. The service is now ready for use.")
        ]
    }
    function test_operations(data) {
        const button = data.tag + "Button", overlay = data.tag + "ConfirmDialog", progress = data.tag === "lumarcReset" ? "🎥 Lumarc Reset in Progress | " : ""
        openPage(0)
        const label = read(button)
        play(button, { [overlay]: data.question }, overlay + ".cancelButton", { [overlay]: "" }, [])
        for (const answer of [refusal, ""]) {
            lab.hold(0, data.request)
            play(button, overlay + ".confirmButton", { [overlay]: "", lumarcProgressDialog: progress && progress + "0% | Resetting Lumarc service and regenerating images..." }, [data.request])
            compare(part(button).text + ": " + enabledButtons(), data.busy + ": " + data.enabled)
            lab.release(0, data.request, answer)
            if (progress && !answer)
                play({ lumarcProgressDialog: progress + "5% | Starting regeneration..." }, () => deviceDiscovery.lumarcRegenerationProgressReceived(lab.address(0), 7, "", true), { lumarcProgressDialog: progress + "7% | Starting regeneration..." })
            play({ messageDialog: (answer ? data.refused : "✅ Success | " + data.done + data.more) + " | OK", lumarcProgressDialog: "", [button]: label }, "messageDialog.okButton", () => lab.takeRequests(0))
        }
    }

    function test_ethernet() {
        const auto = { "ethernetAutoRadio+ethernetDirectRadio": "Auto [on] + Direct" }, toDirect = { "ethernetAutoRadio+ethernetDirectRadio": "Auto [off] + Direct [on] [off]" }
        const direct = { "ethernetAutoRadio+ethernetDirectRadio": "Auto + Direct [on]" }, toAuto = { "ethernetAutoRadio+ethernetDirectRadio": "Auto [on] [off] + Direct [off]" }
        const question = "ethernetActivateConfirmDialog", done = "ethernetActivateSuccessDialog", ask = "GET /api/info/all_interfaces", on = "POST /api/system/activate_direct_ethernet", off = "POST /api/system/deactivate_direct_ethernet"
        const report = ip => () => lab.setFault(0, ask, "body:[{\"interface\":\"eth0:1\",\"ip\":\"" + ip + "\"}]")
        play(0, "ethernetAutoRadio", auto, "ethernetDirectRadio", toDirect, question + ".cancelButton", auto, [])
        // What the device says of itself ends the wait; the question can still be answered.
        play("ethernetDirectRadio", toDirect, () => deviceDiscovery.queryNetworkInterfaces(0), auto, [ask], { [question]: "⚠️ Activate Ethernet | This will enable ethernet and your current network connection will be lost, Do you want to continue? | ❌ Cancel | 🔌 Connect" })
        for (const answer of [refusal, ""]) {
            play(() => lab.hold(0, on), ...(answer ? [] : ["ethernetDirectRadio"]), question + ".confirmButton", toDirect, [on])
            play({ ethernetActivationProgressDialog: "🔌 Activating Direct Ethernet... | Please wait while the ethernet connection is being configured...\n\n⚠️ Your current network connection may be interrupted." })
            play(() => deviceDiscovery.networkInterfacesReceived(lab.address(0), { result: true, interfaces: [] }), toAuto, () => lab.release(0, on, answer), { ethernetActivationProgressDialog: "" }, answer ? auto : direct)
            play(...(answer ? [{ messageDialog: "❌ Error | Failed to activate direct ethernet for 127.0.0.2: Server returned result=false | OK" }, "messageDialog.okButton"] : []))
        }
        play({ messageDialog: "", [done]: "✅ Ethernet Activated | Connect Ethernet cable directly between Noctaris and your PC. Set your PC IP address to 192.168.100.2 and gateway to 192.168.100.1 | ▶️ Video tutorial | OK" }, done + ".tutorialButton", () => verify(/^https:\/\/[^\/]+\/images\/fss\/videos\/noctaris-direct-ethernet.mp4$/.test(lab.takeUrls().join())))
        // Asked at once, and again when the device has had time for its second address.
        play(report("192.168.100.1"), done + ".okButton", { [done]: "" }, [ask, ask], report("10.0.0.5"))
        for (const answer of [refusal, ""]) {
            play(() => lab.hold(0, off), "ethernetDirectRadio", "ethernetAutoRadio", toAuto, [off])
            play({ ethernetDeactivationProgressDialog: "🔌 Deactivating Direct Ethernet... | Please wait while the ethernet connection is being reset to Auto mode..." }, () => lab.release(0, off, answer))
            play({ messageDialog: (answer ? "❌ Error | Failed to deactivate direct ethernet for 127.0.0.2: Server returned result=false" : "✅ Success | Direct ethernet deactivated successfully for device 127.0.0.2.") + " | OK" }, "messageDialog.okButton", answer ? direct : auto)
        }
        play([ask])
    }

    function test_hotspot() {
        const path = "/api/system/hotspot_interface", adapters = "internalWifiRadio+externalWifiRadio"
        openPage(0)
        for (const [answer, message, after] of [[refusal, "❌ Error | Failed to update hotspot interface | OK", "Internal WiFi [on] + External WiFi"], ["", "✅ Success | Hotspot interface updated successfully. Verifying... | OK", "Internal WiFi + External WiFi [on]"]]) {
            play(() => lab.hold(0, path + "/wlan1"), "internalWifiRadio", "externalWifiRadio", { [adapters]: "Internal WiFi [off] + External WiFi [off]" }, ["POST " + path + "/wlan1"])
            play(() => lab.release(0, path + "/wlan1", answer), { messageDialog: message }, "messageDialog.okButton", ["GET " + path, "GET /api/info/all_interfaces"], { [adapters]: after })
        }
    }
}
