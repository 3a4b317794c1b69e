// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import NoctarisTools 1.0

/// The dialog behind the version badge: which systems it offers, what it says of them, and the switch to one of them.
PageCase {
    name: "RollbackDialog"

    readonly property string systems: "/api/software/delta/subvolumes"
    readonly property string notes: "/api/software/delta/changelogs"
    readonly property string rollback: "/api/software/delta/rollback"
    readonly property var asked: ["GET " + systems, "GET " + notes]
    readonly property var told: ["POST " + rollback + " {\"target_version\":\"2.1.4\"}"]
    readonly property string states: "loadingState+noVersionsState+errorState+mainState"
    readonly property string noteParts: "releaseTitle+releaseDate+removedChanges+targetChanges+noNotes+preparedNotice"
    readonly property string footer: "leaveButton+closeMark+switchButton"
    readonly property string ready: "Cancel + ✕ + Switch Version"
    readonly property string preparing: "Preparing... [off] +  + Preparing... [off]"
    // The first device has 2.3.1, and goes back to 2.1.4 if it is not told otherwise.
    readonly property string removed: "Changes in 2.3.1 (will be removed) | • | Cameras: four new models | • | Fans stop while an exposure runs | • | Remote support asks for a password"
    readonly property string changes: " | • | Guiding recovers by itself after clouds | • | The hotspot starts ten seconds earlier"
    readonly property string offered: "Steadier tracking + 2025-03-02 + " + removed + " + Changes in 2.1.4 (Switching to)" + changes + " +  + "
    readonly property string question: "🔄 Rollback Prepared | The rollback has been prepared successfully.\n\nWould you like to restart now to apply the rollback? | Later | Restart Now"
    readonly property Component lone: RollbackDialog {}
    function dialog(): Item { return findChild(page, "rollbackDialogLoader").item }
    // The dialog's own question has the name of one of the page's.
    function part(name: string): Item { return dialog() && findChild(dialog(), name) || findChild(page, name) || findChild(win.header, name) }
    function pills(): var { return Array.from({ length: part("versionPillRepeater").count }, (none, index) => part("versionPillRepeater").itemAt(index)) }
    function press(version: string) { mouseClick(pills().find(pill => pill.modelData === version)) }
    function escapeIn(item: Item) { play(() => item.forceActiveFocus(), () => keyClick(Qt.Key_Escape)) }
    function body(object: var): string { return "body:" + JSON.stringify(object) }
    function subvolumes(active: var, list: var): string { return body({ result: true, payload: { subvolumes: list, active_version: active } }) }
    /// Has the device answer so, or leave, and compares what the dialog shows then, up to its closing by a button.
    function show(systemsAnswer: string, notesAnswer: string, names: var, text: string): var {
        lab.setFault(0, notes, notesAnswer)
        systemsAnswer ? lab.setFault(0, systems, systemsAnswer) : lab.stop(0)
        play("versionBadge", () => tryVerify(() => read("RollbackDialog") !== "" && read("loadingState") === ""))
        compare(names.map(read).join("; "), text, systemsAnswer + notesAnswer)
        // A button that has just come into view has its place with the next frame.
        tryVerify(() => !part("switchButton").visible || part("switchButton").x > 0)
        play("leaveButton", { RollbackDialog: "" })
        return lab.takeRequests(0)
    }
    function openDialog() { play(0, "versionBadge", asked, { [noteParts]: offered, [footer]: ready }, () => tryVerify(() => part("switchButton").x > 0)) }
    /// Tells the device to switch. It has not answered to that yet.
    function prepare() { play(() => lab.hold(0, rollback), "switchButton", told, { [footer]: preparing, [noteParts]: offered }) }

    function test_loading() {
        play(0, () => lab.hold(0, systems), () => lab.hold(0, notes), "versionBadge", { [states]: "Checking available system versions... +  +  + ", [footer]: "Close + ✕ + " }, [asked[0]])
        play(() => lab.release(0, systems), { [states]: "Fetching release notes... +  +  + ", [footer]: "Close + ✕ + " }, [asked[1]])
        play(() => lab.release(0, notes), { loadingState: "", [noteParts]: offered, [footer]: ready }, [])
        // The header stays within reach, but a second click there changes nothing.
        play("versionBadge", [], { [noteParts]: offered })
    }

    function test_systems_data() {
        const none = " + 📦 | No available versions to switch. +  + ", failed = words => " +  + ⚠️ | " + words + " + "
        return [
            { tag: "status", answers: ["status:404", "status:202", "status:500"], text: failed("Failed to fetch system versions. (HTTP %1)") },
            { tag: "connection lost", answers: ["drop", "partial", ""], text: failed("Failed to fetch system versions. (HTTP 0)") },
            { tag: "unreadable", answers: ["body:", "body:{\"result\":true,", "body:null", subvolumes("2.3.1", "@system-2.1.4")], text: failed("Failed to parse subvolumes data") },
            { tag: "invalid", answers: ["body:7", "body:[]", body({ result: true, payload: "" }), body({ result: false, payload: { subvolumes: ["@system-2.1.4"], active_version: "2.3.1" } })], text: failed("Invalid subvolumes response") },
            { tag: "nothing older", answers: [subvolumes("2.3.1", ["@", "@home", "@system-2.3.1"]), subvolumes("2.3", ["@system-2.3.0", "@system-2.10"]), subvolumes("", ["@system-2.1.4"]), subvolumes(null, ["@system-2.1.4"])], text: none },
            { tag: "nothing at all", answers: [body({ result: "yes", payload: 5 }), subvolumes("2.3.1", null), subvolumes("2.3.1", ["@home", "system-1.0", "@System-1.0", "@@system-1.0", ""])], text: none }
        ]
    }
    function test_systems(data) {
        openPage(0)
        data.answers.forEach(answer => verify(!show(answer, "delay:0", [states, footer], data.text.replace("%1", answer.slice(-3)) + "; Close + ✕ + ").includes(asked[1])))
    }
    function test_pills() {
        openPage(0)
        for (const [active, list, text] of [["2.10.0", ["2.9.5", "2.10.0", "2.10.1", "10.0", "2.2"], "10.0 | 2.10.1 | 2.10.0 | current | 2.9.5 | 2.2 | Version 2.9.5"], ["2.3.0", ["2.1-a", "2.4-beta"], "2.4-beta | 2.3.0 | current | 2.1-a | Version 2.1-a"], [2.5, [null, "2.0"], "2.5 | current | 2.0 | Version 2.0"]])
            show(subvolumes(active, list.map(version => version && "@system-" + version)), body({ "2.1-a": { release_title: "T" }, "v2.1": {}, "1.2.3.4": {} }), ["mainState"], "Select version to switch to | " + text + " | No release notes available for this version.")
    }

    function test_choice() {
        const accent = colors => colors.map(color => Qt.colorEqual(color, "#FF6600")).join()
        openDialog()
        compare(pills().map(pill => [pill.modelData, pill.opacity].join(" ")).join(), "2.4.2 1,2.3.1 0.6,2.1.4 1,2.0.1 1")
        play(() => press("2.3.1"), { [noteParts]: offered, switchButton: "Switch Version" }, () => press("2.0.1"), { [noteParts]: "Version 2.0.1 +  + " + removed + " +  +  + " })
        play(() => press("2.4.2"), { [noteParts]: "Steadier tracking + 2025-03-02 + " + removed + " + Changes in 2.4.2 (Switching to)" + changes + " +  + " })
        compare(accent(pills().map(pill => pill.background.color)), "true,false,false,false")
        play(() => mouseMove(pills()[3]), () => tryVerify(() => accent([pills()[3].background.border.color]) === "true"))
        play([], "switchButton", [told[0].replace("2.1.4", "2.4.2")], { rebootConfirmDialog: question, preparedNotice: "✓ Rollback prepared! Restart required to apply changes." })
        // What is prepared stays so, whatever is looked at.
        play(() => press("2.1.4"), { targetChanges: "Changes in 2.1.4 (Switching to)" + changes, switchButton: "Restart Now" })
    }
    function test_changelog_data() {
        const bare = "Version 2.1.4 +  +  +  + No release notes available for this version. + "
        const entry = { changelog: ["**a** b*", "*"] }, target = title => title + " +  + Changes in 2.1.4 (Switching to) | • | a b* | • | * +  + "
        const dated = (title, first, second) => ({ "2.1.4": Object.assign({ release_title: title, release_date: first, releaseDate: second }, entry) })
        return [
            { tag: "direct", answers: [{ "2.1.4": entry }, { x: 1, "1.0": {}, "2.1.4": entry }, { payload: {}, "2.1.4": entry }, dated(0, "", null)], text: target("Version 2.1.4 + ") },
            { tag: "wrapped", answers: [{ result: false, payload: dated("T", "", "d2") }, dated("T", "d2", "d1")], text: target("T + d2") },
            { tag: "only the current version", answers: [{ "2.3.1": entry }], text: "Version 2.1.4 +  + Changes in 2.3.1 (will be removed) | • | a b* | • | * +  +  + " },
            { tag: "lines of other types", answers: [{ "2.1.4": { changelog: [null, 7], release_title: 8 } }], text: "8 +  +  + Changes in 2.1.4 (Switching to) | • | • | 7 +  + " },
            { tag: "no version keys", answers: [{ a: entry, "2": entry, "2.1.4-a": entry, "v2.1": entry, "1.2.3.4": entry }, { payload: { "2.1.4": entry } }, [], null], text: bare },
            { tag: "other types", answers: [{ result: true, payload: null }, { "2.1.4": null, "2.3.1": "x" }, { "2.1.4": { changelog: "abc" }, "2.3.1": { changelog: 5 } }], text: bare },
            { tag: "failure", answers: ["body:{", "body:", "status:404", "status:500", "drop"], text: bare }
        ]
    }
    function test_changelog(data) {
        openPage(0)
        data.answers.forEach(answer => show("delay:0", typeof answer === "string" ? answer : body(answer), [noteParts, "errorState", footer], data.text + "; ; " + ready))
    }
    function test_prepared_data() { return [{ tag: "cancelButton" }, { tag: "leaveButton" }, { tag: "confirmButton", asks: ["POST /api/system/reboot"] }, { tag: "switchButton", asks: ["POST /api/system/reboot"] }] }
    function test_prepared(data) {
        play(openDialog, prepare, () => lab.release(0, rollback), { rebootConfirmDialog: question, [footer]: "Cancel + ✕ + Restart Now" }, () => lab.hold(0, "/api/system/reboot"), () => click("RollbackDialog", data.tag), { RollbackDialog: "", rebootButton: "Reboot", messageDialog: "" }, data.asks || [])
        if (data.asks)
            play(() => lab.release(0, "/api/system/reboot"), { messageDialog: "✅ Success | Device 127.0.0.2 reboot initiated successfully. The device will be unavailable for a few minutes.\n\n✅ The device is rebooting and will be available in a few minutes. You may need to refresh the device list after reboot. | OK" })
        else
            play("versionBadge", { [noteParts]: offered, [footer]: ready, rebootConfirmDialog: "" }, asked)
    }
    function test_failed() {
        openDialog()
        for (const [act, text] of [[() => lab.release(0, rollback, body({ result: false, message: "no room" })), "no room"], [() => deviceDiscovery.rollbackApplyCompleted(lab.address(0), false, ""), "Failed to prepare rollback. Please try again."]])
            play(prepare, act, { [states]: " +  + ⚠️ | " + text + " + ", [footer]: ready, rebootConfirmDialog: "" })
        verify(Qt.colorEqual(findChild(part("errorState"), "stateText").color, "#ef4444"))
        play(prepare, () => lab.release(0, rollback), { rebootConfirmDialog: question })
    }

    function test_noWayOut_data() { return [{ tag: "but home", leave: () => play("themeButton") }, { tag: "but escape on the page", leave: () => escapeIn(page) }] }
    function test_noWayOut(data) {
        play(openDialog, prepare)
        const opened = dialog()
        for (const act of [() => mouseClick(part("surround"), 5, 5), () => mouseClick(part("leaveButton")), () => mouseClick(part("closeMark")), () => escapeIn(opened), () => keyClick(Qt.Key_Escape), () => press("2.4.2"), () => deviceDiscovery.rollbackApplyCompleted(lab.address(1), true, "other"), () => deviceDiscovery.rollbackApplyCompleted("", false, "Invalid device index")])
            play(act, { [footer]: preparing, [noteParts]: offered, rebootConfirmDialog: "" }, [])
        verify(win.showSettings && dialog() === opened && part("preparingIndicator").running)
        play(data.leave, () => verify(!win.showSettings && !opened.visible), () => lab.release(0, rollback), () => wait(30))
    }
    function test_waysOut_data() { return [
        { tag: "cross", leave: () => play("closeMark") }, { tag: "button", leave: () => play("leaveButton") },
        { tag: "surround", leave: () => mouseClick(part("surround"), 5, part("surround").height - 5) },
        { tag: "escape inside", leave: () => escapeIn(dialog()) },
        { tag: "escape on a pill", leave: () => { press("2.0.1"); keyClick(Qt.Key_Escape) } },
        { tag: "escape at once", leave: () => keyClick(Qt.Key_Escape), leavesPage: true }
    ] }
    function test_waysOut(data) {
        openDialog()
        const opened = dialog(), box = part("container")
        play(() => mouseClick(box, 5, box.height / 2), () => mouseClick(box, 200, 30), () => mouseClick(box, 300, box.height - 5), [], () => verify(opened.visible), () => data.leavesPage || press("2.4.2"), data.leave)
        compare([!!dialog() && dialog().visible, win.showSettings].join(), "false," + !data.leavesPage)
        // What the device says now is for nobody; the next dialog knows nothing of the last one.
        if (!data.leavesPage)
            play({ RollbackDialog: "" }, () => deviceDiscovery.rollbackApplyCompleted(lab.address(0), true, "late"), [], "versionBadge", asked, { [noteParts]: offered, [footer]: ready }, () => verify(dialog() !== opened), "leaveButton", () => keyClick(Qt.Key_Escape), () => verify(!win.showSettings))
    }
    function test_closedWhileAsked_data() { return [{ tag: "systems", key: systems, count: 1 }, { tag: "notes", key: notes, count: 2 }] }
    function test_closedWhileAsked(data) {
        openPage(0)
        for (const [way, answer] of [["closeMark", "delay:0"], ["closeMark", "body:{"], ["closeMark", "drop"], [() => win.close(), "delay:0"]])
            play(() => lab.hold(0, data.key), "versionBadge", asked.slice(0, data.count), way, () => tryVerify(() => !dialog() || !win.visible), () => compare(lab.release(0, data.key, answer), 1), () => wait(50), () => lab.takeRequests(0))
    }

    /// Texts that leave the box, or may be read as markup.
    function badTexts(item: Item, box: Item): var {
        const left = item.mapToItem(box, 0, 0).x, isText = item instanceof Text || item instanceof TextEdit
        const isBad = isText && (left < 0 || left + Math.max(item.width, item.contentWidth) > box.width || item.textFormat !== Text.PlainText)
        return item.visible ? Array.from(item.children).reduce((all, child) => all.concat(badTexts(child, box)), isBad ? [item.text.substring(0, 30)] : []) : []
    }
    function test_hostile() {
        const evil = "<img src=\"http://" + lab.address(0) + ":8624/x\"><b>**", letters = evil + "W".repeat(4000), words = letters + " w".repeat(2000), tryTexts = () => compare(badTexts(part("container"), part("container")).join("\n"), "")
        const entry = { release_title: letters, release_date: letters, changelog: [letters, words, evil] }, version = "2.0" + letters, current = "2.3.1" + letters
        play(0, () => lab.setFault(0, systems, subvolumes(current, ["@system-" + version, "@system-1.0" + words])), () => lab.setFault(0, notes, body({ result: true, payload: { [version]: entry, [current]: entry } })), () => lab.setFault(0, rollback, body({ result: false, message: words })), "versionBadge", { releaseTitle: letters }, asked)
        verify(read("targetChanges").endsWith(" | • | " + evil.replace("**", "")))
        play(tryTexts, "switchButton", { errorState: "⚠️ | " + words.substring(0, 4096) }, () => wait(50), tryTexts)
        verify(!lab.takeRequests(0).some(line => line.startsWith("GET")))
        let shown = part("errorState")
        for (let item = shown; item !== part("container"); item = item.parent) shown = item.clip ? item : shown
        verify(shown.mapToItem(part("container"), 0, 0).y >= 60 && shown.mapToItem(part("container"), 0, shown.height).y <= part("container").height - 70, "the error lies over the bars")
    }

    function test_alone() {
        for (const [discovery, row, text] of [[null, 0, "Device not connected"], [deviceDiscovery, -1, "Device not connected"], [deviceDiscovery, 99, "Device IP address not available"]]) {
            const alone = createTemporaryObject(lone, win.contentItem, { deviceDiscovery: discovery, deviceIndex: row })
            compare([alone.visible, alone.isLoading, alone.loadingMessage].join(), "false,true,Checking for rollback options...")
            play(() => alone.show(), () => compare(textsOf(findChild(alone, "errorState")).join(), "⚠️," + text))
        }
    }
    function test_functions_data() { return [
        { tag: "compareVersions", rows: [["2.9", "2.10", -1], ["2.10", "2.9", 1], ["2.0", "2.0.0.1", -1], ["", "0.1", -1], ["1.1", "1.x", 1], ["2.3-rc9", "2.4", -1], ["2.0", "2.0.0", 0], ["2.3", "2.3-rc1", 0], ["", "0", 0], ["02.1", "2.1", 0]] },
        { tag: "extractSystemVersion", rows: [["@system-2.0.1", "2.0.1"], ["@system-", ""], ["@system-@system-1", "@system-1"], ["@System-1", null], [" @system-1", null], ["", null], [null, null]] },
        { tag: "findRollbackTarget", rows: [[["1.9", "2.1", "2.0", "3.0"], "2.1", "2.0"], [["2.9", "2.10"], "2.11", "2.10"], [["2.0.0"], "2.0", null], [[], "2.0", null], [["1.0"], "", null]] },
        { tag: "formatMarkdown", rows: [["**a** b **", "a b "], ["***", "*"], ["*a*", "*a*"], ["", ""], [null, ""], [undefined, ""]] }
    ] }
    function test_functions(data) {
        const alone = createTemporaryObject(lone, win.contentItem)
        data.rows.forEach(row => compare(alone[data.tag](...row.slice(0, -1)), row[row.length - 1], row.join()))
    }
}
