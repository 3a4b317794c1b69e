// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// The videos of a device, from the settings page's button: how they are found, selected and deleted.
PageCase {
    name: "VideosViewer"

    readonly property string folders: "POST /api/info/directoryfolders"
    readonly property string files: "POST /api/info/directory"
    readonly property string removal: "POST /api/system/deletefile"
    readonly property string home: "/home/andromeda/Videos"
    readonly property var paths: [home + "/Moon_001.ser", home + "/Jupiter/Jupiter_RGB_001.ser", home + "/Jupiter/Jupiter_IR_001.SER"]
    readonly property var videos: ["263.67 MB", "940.72 MB", "1.58 GB"].map((size, index) => row(paths[index], size))

    function viewer(): Item { return findChild(page, "VideosViewer") }
    /// The viewer's parts come before those of the page under it, which have some of the names too.
    function part(name: string): Item { return viewer() && findChild(viewer(), name) || findChild(page, name) || findChild(win.header, name) }
    function asks(key: string, directory: string): string { return key + " " + JSON.stringify(key === files ? { directory: directory, stat: true } : { directory: directory }) }
    /// All that is asked for a listing.
    function walk(...directories): var { return [asks(folders, directories[0])].concat(directories.map(directory => asks(files, directory))) }
    function list(entries: var): string { return "body:" + JSON.stringify({ result: true, files: entries }) }
    function row(path: string, size = "0 Bytes", name = path.split("/").pop()): string { return "🎥 | " + name + " | 📁 " + path + " | 💾 " + size }
    function item(index: int): Item { return part("videosView").itemAtIndex(index) }
    function rows(): string { return Array.from({ length: part("videosView").count }, (_, index) => item(index) ? textsOf(item(index)).join(" | ") : "-").join("\n") }
    // What follows makes steps of a scene.
    function shows(...lines): var { return () => { for (let ms = 0; ms < 12000 && rows() !== lines.join("\n"); ms += 10) wait(10); compare(rows(), lines.join("\n")) } }
    function selects(...indexes): var { return shows(...videos.map((text, index) => (indexes.includes(index) ? "✓ | " : "") + text)) }
    function presses(key: int): var { return () => keyClick(key) }
    function types(text: string): var { return () => type(text) }
    /// The device answers what it keeps waiting, and keeps the next waiting.
    function answers(key: string, fault = ""): var { return () => { verify(lab.release(0, key, fault) === 1); lab.hold(0, key) } }
    function selected(count: int): var { return { "selectedText+selectAllButton+deselectAllButton+deleteButton": count ? count + " selected + ✔️ + ❌ + 🗑️" : " + ✔️ + ❌ [off] + 🗑️ [off]" } }
    /// Opens the viewer of a device with three videos.
    function open(...steps) { play(0, () => lab.fillDisk(0, 0, 3), "videosButton", ...steps) }
    function openAll() { open(walk(home, home + "/Jupiter"), shows(...videos)) }

    function test_walk() {
        const faults = ["status:500", "partial", "body:nonsense", "body:null", "body:{\"result\":true,\"files\":{}}", "body:{\"result\":false,\"files\":[{\"name\":\"no.ser\"}]}"], loading = { noteText: "Loading videos...", countText: "0 videos", "videosView+messageDialog": " + ", "selectAllButton+deselectAllButton+deleteButton+refreshButton": "✔️ [off] + ❌ [off] + 🗑️ [off] + 🔄 Refresh [off]" }
        play(() => lab.hold(0, folders), () => lab.hold(0, files), open)
        // One folder that fails does not keep the others from being listed.
        for (const fault of faults) {
            play([asks(folders, home)], loading, answers(folders, "body:{\"folders\":[{\"name\":\"a\"},{\"name\":\"b\"}]}"), [asks(files, home)], loading, answers(files, list([{ file: "2.ser" }, { file: "1.ser" }])), [asks(files, home + "/a")], loading, answers(files, fault), [asks(files, home + "/b")], loading, answers(files, list([{ file: "0.ser" }])))
            play(shows(row(home + "/2.ser"), row(home + "/1.ser"), row(home + "/b/0.ser")), { "noteText+messageDialog": " + ", "countText+refreshButton": "3 videos + 🔄 Refresh" }, selected(0), [], "refreshButton")
        }
    }

    function test_folders() {
        const list = (entries, result) => "body:" + JSON.stringify({ result: result, folders: entries }), cases = [
            // The first of several names, and of several paths, is the one that counts.
            [list([{ name: "a", folder: "b" }, { folder: "b" }, { path: "/c", fullpath: "/d", name: "e" }, { fullpath: "/d", folder: "e" }, {}, { other: "f" }, { name: "" }]), [home + "/a", home + "/b", "/c", "/d"]],
            [list([null, 7, "x", { path: 7, name: "a" }, { name: {} }]), [home + "/a"]],
            [list([{ name: "a" }], false), [home + "/a"]]
        ].concat([list([]), list("a"), "body:{}", "body:[]", "body:null", "body:", "body:{\"folders\":[", "status:500", "partial"].map(fault => [fault, []]))
        openAll()
        for (const [fault, walked] of cases)
            play(() => lab.setFault(0, folders, fault), "refreshButton", walk(home, ...walked), { "refreshButton+messageDialog": "🔄 Refresh + " })
    }

    function test_files() {
        const named = (...names) => list(names.map(name => ({ file: name }))), sized = (...files) => list(files.map((file, index) => Object.assign(file, { file: index + ".ser" }))), at = name => home + "/" + name, cases = [
            [list([{ file: "a.ser", name: "b.ser", filename: "c.ser", path: "/p/1", fullpath: "/p/2" }, { name: "b.ser", filename: "c.ser", fullpath: "/p/2" }, { filename: "c.ser" }, { file: "a.txt", name: "b.ser" }, { path: "/p/d.ser" }]), [["/p/1", "0 Bytes", "a.ser"], ["/p/2", "0 Bytes", "b.ser"], [at("c.ser")]]],
            [named("a.SER", "b.sEr", "c.ser.txt", "d.series", "eser", "f.serx", ".ser", "g.ser "), [[at("a.SER")], [at("b.sEr")], [at(".ser")]]],
            [sized({ stat: { st_size: 1536 }, size: 1 }, { stat: {}, size: 1023 }, { stat: null, size: 1024 }, { stat: { st_size: 0 } }, { size: Math.pow(1024, 5) }, { size: "many" }), ["1.5 KB", "1023 Bytes", "1 KB", "0 Bytes", "1024 TB", "0 Bytes"].map((size, index) => [at(index + ".ser"), size])],
            [list([null, 7, "x.ser", { file: 7 }, { file: {}, name: "a.ser", path: [], stat: 7 }]), [[at("a.ser")]]],
            [list([]), []], ["body:{\"result\":false,\"files\":[{\"file\":\"a.ser\"}]}", []], ["drop", []]
        ]
        openAll()
        lab.setFault(0, folders, "body:{}")
        for (const [fault, videos] of cases)
            play(() => lab.setFault(0, files, fault), "refreshButton", shows(...videos.map(video => row(...video))), { "countText+noteText+messageDialog": videos.length + " videos + " + (videos.length ? "" : "No .ser video files found") + " + " })
        play({ VideosViewer: "🎥 Videos Gallery | (.ser files) | ✔️ | ❌ | 🗑️ | 📁 Directory: | " + home + " | ✏️ Edit | No .ser video files found | ✖️ Close | 0 videos | 🔄 Refresh" })
    }

    function test_selection() {
        openAll()
        const box = index => () => mouseClick(findChild(item(index), "checkBox")), line = index => () => mouseClick(item(index))
        play(selected(0), line(1), selects(1), selected(1), box(0), selects(0, 1), selected(2), line(1), selects(0), box(0), selects(), selected(0), presses(Qt.Key_Space), selects(0), presses(Qt.Key_Down), presses(Qt.Key_Space), selects(0, 1))
        play("selectAllButton", selects(0, 1, 2), selected(3), () => compare(["selectAll", "deselectAll", "delete"].map(name => part(name + "Button").tip).join(), "Select All,Deselect All,Delete Selected (3)"), line(1), selects(0, 2), selected(2), "selectAllButton", selected(3), "deselectAllButton", selects(), selected(0), [])
        play(line(2), selected(1), "refreshButton", walk(home, home + "/Jupiter"), selects(), selected(0))
    }

    function test_directory_data() {
        const save = "videosDirectoryButton", empty = "❌ Error | Videos directory path cannot be empty. Please enter a valid directory path. | OK"
        return [
            { tag: "button", steps: [types(" /data/a b "), save], sent: "/data/a b", text: "/data/a b" },
            { tag: "Enter", steps: [types("/x"), presses(Qt.Key_Enter)], sent: "/x", text: "/x" },
            { tag: "unchanged", steps: [types(" " + home + " "), presses(Qt.Key_Return)] },
            { tag: "untouched", steps: [presses(Qt.Key_Return)], text: home },
            { tag: "Escape", steps: [types("/x"), presses(Qt.Key_Escape)], text: home },
            { tag: "given up", steps: [types("/x"), "videosDirectoryCancelButton"], text: home },
            { tag: "empty", steps: [presses(Qt.Key_Delete), save], message: empty, text: "" },
            { tag: "blank", steps: [types("  "), presses(Qt.Key_Return)], message: empty, text: "  " }
        ]
    }
    function test_directory(data) {
        const field = "videosDirectoryField", buttons = "videosDirectoryButton+videosDirectoryCancelButton", idle = { [field]: home, [buttons]: "✏️ Edit + " }
        openAll()
        play(field, types("x"), idle, "videosDirectoryButton", { [buttons]: "💾 Save + ❌" }, ...data.steps, { messageDialog: data.message || "" })
        play(data.sent ? walk(data.sent) : [], { [buttons]: data.message ? "💾 Save + ❌" : "✏️ Edit + " }, "text" in data ? { [field]: data.text } : [])
        if (data.message)
            play("messageDialog.okButton", { messageDialog: "" }, field, presses(Qt.Key_Escape), idle)
        play(...(data.sent ? [{ noteText: "No .ser video files found" }, "refreshButton", walk(data.sent)] : []))
        // The edit's Escape left the viewer open; this one closes it, and a new one starts at the default.
        play(() => verify(viewer()), presses(Qt.Key_Escape), () => tryVerify(() => !viewer()), "videosButton", walk(home, home + "/Jupiter"), { [field]: home }, selects())
    }

    function test_directoryInTheMiddle() {
        lab.hold(0, files)
        open(walk(home), "videosDirectoryButton", types("/x"), presses(Qt.Key_Return), walk("/x"), () => compare(lab.release(0, files), 2), { noteText: "No .ser video files found", videosDirectoryField: "/x" }, [])
    }

    function test_delete_data() {
        const done = count => "✅ Success | Successfully deleted " + count + " video(s) | OK", failed = (count, of, ...indexes) => "❌ Error | Deleted " + count + " of " + of + " videos.\n\nFailed to delete:\n" + indexes.map(index => paths[index]).join("\n") + " | OK"
        return [
            { tag: "one", chosen: [1], faults: [""], message: done(1), left: [0, 2] },
            { tag: "in the list's order", chosen: [2, 0], faults: ["", ""], message: done(2), left: [1] },
            { tag: "nothing said", chosen: [0, 1, 2], faults: ["body:", "body:null", "body: \n"], message: done(3), left: [0, 1, 2] },
            { tag: "something said", chosen: [0, 1, 2], faults: ["body:nonsense", "body:{\"result\":0}", "body:[]"], message: done(3), left: [0, 1, 2] },
            { tag: "one fails", chosen: [0, 1, 2], faults: ["", refusal, ""], message: failed(2, 3, 1), left: [1] },
            { tag: "all fail", chosen: [0, 1, 2], faults: ["partial", refusal, "status:500"], message: failed(0, 3, 0, 1, 2), left: [1] },
            { tag: "by the status alone", chosen: [0, 1], faults: ["status:500", "status:201"], message: failed(0, 2, 0, 1), left: [2] }
        ]
    }
    function test_delete(data) {
        const question = "⚠️ Confirm Delete | Are you sure you want to delete " + data.chosen.length + " selected video(s)?\n\nThis action cannot be undone! | Cancel | 🗑️ Delete"
        openAll()
        data.chosen.forEach(index => mouseClick(item(index)))
        play("deleteButton", { confirmDeleteDialog: question }, "confirmDeleteDialog.cancelButton", { confirmDeleteDialog: "" }, selects(...data.chosen), [], () => lab.hold(0, removal), "deleteButton", "confirmDeleteDialog.confirmButton", { confirmDeleteDialog: "" })
        data.chosen.slice().sort().forEach((chosen, index) => play([asks(removal, paths[chosen])], { deleteProgressDialog: "🗑️ Deleting Videos | " + (index + 1) + " / " + data.chosen.length, messageDialog: "" }, () => verify(Math.abs(part("fill").parent.percent - 100 * (index + 1) / data.chosen.length) < 1), answers(removal, data.faults[index])))
        play({ messageDialog: data.message, deleteProgressDialog: "" }, walk(home, ...(data.left.some(index => index > 0) ? [home + "/Jupiter"] : [])), shows(...data.left.map(index => videos[index])), { messageDialog: data.message }, selected(0), "messageDialog.okButton", { messageDialog: "" })
    }

    function test_noDevice() {
        const leaves = () => viewer().deviceIndex = -1, [none, noDevice] = ["No videos selected", "Unable to get device IP address"].map(text => "❌ Error | " + text + " | OK")
        openAll()
        play(() => viewer().deleteSelected(), { messageDialog: none }, "messageDialog.okButton", () => viewer().performDelete(), { messageDialog: none }, "messageDialog.okButton")
        play("selectAllButton", leaves, "refreshButton", { messageDialog: noDevice, refreshButton: "🔄 Refresh" }, selects(0, 1, 2), "messageDialog.okButton", "deleteButton", "confirmDeleteDialog.confirmButton", { messageDialog: noDevice, deleteProgressDialog: "" }, [])
        // One that goes in the middle of a listing is asked to its end.
        play("closeViewerButton", () => lab.hold(0, files), "videosButton", walk(home), leaves, () => lab.release(0, files), [asks(files, home + "/Jupiter")], () => lab.release(0, files), selects())
    }

    /// A viewer that is left open shows one device's videos, and so does nothing to another.
    function test_otherDevice() {
        openAll()
        play("themeButton", () => verify(!viewer().visible), 0, () => verify(viewer().visible && viewer().activeFocus), selects(), () => compare(viewer().deviceIndex, 0), "themeButton", 1, () => compare(viewer().deviceIndex, -1))
        play("selectAllButton", "deleteButton", "confirmDeleteDialog.confirmButton", { messageDialog: "❌ Error | Unable to get device IP address | OK" }, [])
        play("versionBadge", () => tryVerify(() => part("leaveButton")), "leaveButton", presses(Qt.Key_Escape), () => tryVerify(() => !viewer() && win.showSettings))
    }

    function test_closing_data() { return [{ tag: folders, count: 1 }, { tag: files, count: 2 }, { tag: removal, count: 4 }] }
    function test_closing(data) {
        for (const leave of [presses(Qt.Key_Escape), "closeViewerButton"]) {
            lab.hold(0, data.tag)
            open(...(data.tag === removal ? [selects(), "selectAllButton", "deleteButton", "confirmDeleteDialog.confirmButton"] : []))
            tryVerify(() => lab.requestCount(0) === data.count)
            play(leave, () => tryVerify(() => !viewer()), () => lab.takeRequests(0), () => lab.release(0, data.tag), () => wait(50), [], "videosButton", data.tag === removal ? () => tryVerify(() => part("videosView").count > 0) : selects(), selected(0), "closeViewerButton", "closeButton")
            verify(!win.showSettings)
        }
    }

    function test_hostile_data() { return ["<b>bold</b><img src='file:///x'>", "x".repeat(4000), "\u202e\n\n../../" + "W ".repeat(2000)].map((text, index) => ({ tag: "name " + index, text: text })) }
    function test_hostile(data) {
        const name = data.text + ".ser", path = home + "/" + name, message = "Deleted 0 of 1 videos.\n\nFailed to delete:\n" + path
        const inside = (item, box) => { const corner = item.mapToItem(box, item.width, item.height); return item.width > 0 && corner.x <= box.width && corner.y <= box.height }
        lab.setFault(0, folders, "body:{}")
        lab.setFault(0, files, list([{ file: name, stat: { st_size: 1024 } }, { file: "b.ser" }]))
        lab.setFault(0, removal, refusal)
        open(walk(home), shows(row(path, "1 KB", name), row(home + "/b.ser")), () => mouseClick(item(0)), "deleteButton", "confirmDeleteDialog.confirmButton", [asks(removal, path)].concat(walk(home)))
        // Of what no one reads to the end, the end is left out.
        play({ messageDialog: "❌ Error | " + message.substring(0, 4096) + " | OK" }, shows(row(path, "1 KB", name), row(home + "/b.ser")), () => waitForRendering(win.contentItem))
        const texts = ["nameText", "pathText", "sizeText"].map(name => findChild(item(0), name))
        verify(texts.concat(part("messageText")).every(text => text.textFormat === Text.PlainText))
        verify(texts.every(text => inside(text, item(0))) && inside(item(0), viewer()))
        verify(inside(part("messageDialog"), viewer()) && inside(part("okButton"), part("messageDialog")))
    }
}
