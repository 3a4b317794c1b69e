// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick

/// The pictures of a device: listed, selected, brought into a folder, looked at and deleted.
PageCase {
    name: "ImagesViewer"

    readonly property string host: "http://elsewhere.lan:3000"
    readonly property string raw: "/images/raw/"
    readonly property var files: ["M42_Light_L_001.fits", "M42_Light_Ha_002.fits", "M31_Light_OIII_003.fits"]
    readonly property string bitmap: "P1\n2 2\n1 0 0 1\n"
    readonly property string parseError: "SyntaxError: JSON.parse: Parse error"

    /// Opens the viewer on a device that has so many pictures, or lists these, and waits for all that it shows.
    function open(pictures: var) {
        lab.fillDisk(0, Array.isArray(pictures) ? 0 : pictures, 0)
        if (Array.isArray(pictures))
            lab.setAnswer(0, "/images", 200, JSON.stringify({ success: true, data: pictures }))
        lab.setAnswer(0, "/p.pbm", 200, bitmap)
        play(0, "imagesButton", { countText: (pictures.length ?? pictures) + " images" })
        settle()
        lab.takeRequests(0)
    }

    function settle() {
        tryVerify(() => !viewer().isLoading && !viewer().loadingStorage && states().every(state => state === Image.Ready || state === Image.Null))
        verify(win.update() || waitForRendering(viewer()), "A click needs everything in its place")
    }

    function picture(uuid: var, more: var): var {
        return Object.assign({ src: host + "/p.pbm", raw: host + raw + files[0], thumbnail: host + "/p.pbm", metadata: { uuid: uuid, filename: uuid + ".fits" } }, more)
    }

    function viewer(): Item { return findChild(page, "ImagesViewer") }
    function part(name: string): Item { return viewer() && findChild(viewer(), name) || findChild(page, name) || findChild(win.header, name) }
    function cell(index: int): Item { return part("imagesView").itemAtIndex(index) }
    function cells(): var { return Array.from({ length: part("imagesView").count }, (none, index) => cell(index)) }
    function states(): var { return cells().map(each => findChild(each, "picture").status) }
    function checks(): string { return cells().map(each => textsOf(findChild(each, "checkMark")).join() || "-").join("") }
    function tools(): string { return ["selectAll", "clearSelection", "download", "delete"].map(name => part(name + "Button")).map(tool => tool.tip + (tool.enabled ? "" : " [off]")).join(", ") }
    function select(...indexes) { indexes.forEach(index => mouseClick(cell(index), 30, 200)) }

    function saveTo(folder: string): string {
        play("downloadDirectoryField", () => keyClick(Qt.Key_A, Qt.ControlModifier), () => type(folder), () => keyClick(Qt.Key_Return))
        return folder.trim()
    }

    /// Shows a picture large, the way a user does: the eye is there for the pointer only.
    function look(index: int, position = index + 1) {
        const eye = findChild(cell(index), "eyeButton")
        mouseMove(viewer(), 4, 4)
        tryVerify(() => !eye.visible)
        mouseMove(findChild(cell(index), "thumbnail"), 60, 60)
        tryVerify(() => eye.visible)
        mouseClick(eye)
        tryRead("positionText", position + " / " + part("imagesView").count)
        tryVerify(() => findChild(part("fullImage"), "picture").status !== Image.Loading)
    }

    /// Everything that was asked since the last time but the pictures to look at, in no order.
    function tryRequests(expected: var) {
        let lines = []
        const listen = () => lines = lines.concat(lab.takeRequests(0).filter(line => !/thumbnails|full|pbm/.test(line)))
        tryVerify(() => listen().length >= expected.length)
        wait(30)
        compare(listen().sort().join("\n"), expected.sort().join("\n"))
    }

    function test_list() {
        lab.fillDisk(0, 6, 0)
        lab.setUrlHost(0, "orion.fritz.box")
        play(0, () => lab.hold(0, "/images"), "imagesButton", { noteText: "Loading images...", selectAllButton: "✔️ [off]", refreshButton: "Refresh [off]", "browseButton+imagesView": " + " }, ["GET /api/info/disk-utilization", "GET /images"])
        play(() => lab.release(0, "/images"), { "countText+selectedText+noteText": "6 images +  + ", selectAllButton: "✔️", refreshButton: "Refresh", browseButton: "📁" })
        play(settle)
        compare(cells().map(each => textsOf(each).join(" | ")).join("\n"), ["M42_Light_L_001.fits | Filter: L | Exposure: 0.5s | Bin: 1x1", "M42_Light_Ha_002.fits | Filter: Ha | Exposure: 60.5s | Bin: 1x1", "M31_Light_OIII_003.fits | Filter: OIII | Exposure: 120.5s | Bin: 1x1", "M31_Light_SII_004.fits | Filter: SII | Exposure: 180.5s | Bin: 1x1", "Dark_005.fits | Filter: N/A | Exposure: 240.5s | Bin: 2x2", "Bias_006.fits | Filter: N/A | Exposure: N/As | Bin: 2x2"].join("\n"))
        compare(cells().filter(each => findChild(each, "picture").status === Image.Ready).length, 6)
        lab.takeRequests(0)
        play(() => lab.fillDisk(0, 0, 0), "refreshButton", { countText: "0 images" }, ["GET /images"])
    }

    function test_thumbnails() {
        const ready = Image.Ready, failed = Image.Error
        // The first is for a picture without a thumbnail; of the others not all lead to the device.
        const rows = [["", host + "/a.pbm", ready], [host + "/b.pbm", host + "/p.pbm", ready], ["http://noctaris.local/c.pbm", "", ready], ["http://lyra:8625/d.pbm", "", failed], ["http://127.0.0.1/e.pbm", "", failed]]
        "abc".split("").forEach(letter => lab.setAnswer(0, "/" + letter + ".pbm", 200, bitmap))
        for (const kind of ["body:nonsense", "status:404", "partial", "drop", "endless"]) {
            lab.setFault(0, "/" + rows.length + ".pbm", kind)
            rows.push([host + "/" + rows.length + ".pbm", host + "/a.pbm", failed])
        }
        lab.setAnswer(0, "/images", 200, JSON.stringify({ success: true, data: rows.map(([thumbnail, src]) => ({ thumbnail: thumbnail, src: src })) }))
        play(0, "imagesButton", { countText: "10 images" })
        tryVerify(() => states().slice(0, 9).join() === rows.map(row => row[2]).slice(0, 9).join())
        compare(cells().map(each => textsOf(each)[0].replace("⚠️\nLoad Error", "!")).slice(0, 9).join(), "Filter: N/A,Filter: N/A,Filter: N/A,!,!,!,!,!,!")
        compare(cells().slice(0, 5).map(each => findChild(each, "picture").source.toString().replace(/#.*/, "").replace("127.0.0.2:3000", "")).join(), "http:///a.pbm,http:///b.pbm,http:///c.pbm,http://127.0.0.2:8625/d.pbm,http://127.0.0.1/e.pbm")
        compare(lab.takeRequests(0).filter(line => /[abcp].pbm/.test(line)).sort().join(), "GET /a.pbm,GET /b.pbm,GET /c.pbm")
        tryVerify(() => states()[9] === failed, 10000, "A picture without an end is given up")
        compare(lab.takeWarnings().filter(line => !/QQuickImage: |"imageDownloader"/.test(line)).join("\n"), "")
    }

    function test_hostile() {
        const shown = "⚠️\nLoad Error | ", none = " | Filter: N/A | Exposure: N/As | Bin: 1x1", longName = "x".repeat(4000)
        const schemes = [Qt.resolvedUrl("../../assets/logo.png"), "qrc:/assets/logo.png", "data:,P1%202%202%201%200%200%201", "p.pbm", "/etc/passwd"]
        open([null, {}, { metadata: 7, src: {}, thumbnail: [], raw: true }, { metadata: { uuid: 7, filename: {}, filter: [], exptime: "<i>", "ccd-temp": {}, filesize: "x" } }].concat(schemes.map((url, index) => ({ thumbnail: url, src: url, raw: url, metadata: { uuid: String(index), filename: ["<b>bold<i>", "b", "c", longName, "../../up"][index], filter: "<img src='http://127.0.0.2:3000/x'>" } }))))
        for (const [index, text] of [[0, none], [1, none], [2, none], [4, "<b>bold<i> | Filter: <img src='http://127.0.0.2:3000/x'> | Exposure: N/As | Bin: 1x1"]])
            compare(textsOf(cell(index)).join(" | "), (shown + text).replace("|  |", "|"))
        verify(cells().every(each => textsOf(each)[0] === "⚠️\nLoad Error") && states().every(state => state === Image.Null))
        verify(textsOf(cell(7))[1] === longName && findChild(cell(7), "nameText").width < 250)
        // What follows reads them all, and none of it leads to a file of this computer.
        play(() => look(4), "infoButton")
        for (let index = 4; index < 8; ++index, keyClick(Qt.Key_Right))
            verify(read("fullImage").endsWith("Failed to load image") && !lab.takeRequests(0).length, index)
        for (let index = 8; index >= 0; --index, keyClick(Qt.Key_Left))
            tryRead("positionText", (index + 1) + " / 9")
        keyClick(Qt.Key_Escape)
        const folder = saveTo(lab.newFolder())
        play("selectAllButton", { selectedText: "9 selected" }, "downloadButton", { downloadStatus: "✗ Downloaded 0 image(s), 5 failed.\nSaved to:\n" + folder }, [], () => compare(JSON.stringify(lab.filesIn(folder)), "{}"))
    }

    function test_failures() {
        const cut = "{\"success\":true,\"data\":[" + "1,".repeat(60), unreachable = "Network request failed. Check:\n• Device is online\n• Port 3000 is accessible\n• Lumarc is running"
        const kept = { "countText+selectedText": "2 images + 1 selected", refreshButton: "Refresh" }
        play(() => open([picture("a"), picture("b")]), () => select(1))
        for (const [fault, text] of [["body:", "Server returned empty response"], ["body: \n ", "Server returned empty response"], [refusal, "Server returned success=false"], ["body:{\"success\":true}", "Server returned success=false"], ["body:" + cut, "Error parsing response: " + parseError + "\n\nFirst 100 chars: " + cut.substring(0, 100)], ["status:500", "HTTP error: 500\n\nInternal Server Error"], ["drop", unreachable], ["partial", unreachable]])
            play(() => lab.setFault(0, "/images", fault), "refreshButton", { messageDialog: "❌ Error | " + text + " | OK" }, kept, "messageDialog.okButton", { messageDialog: "" })
        compare(checks(), "-✓")
        play(() => lab.takeRequests(0), () => viewer().deviceIndex = 7, "refreshButton", { "downloadStatus+messageDialog": "✗ Unable to get device IP address + " }, kept, "deleteButton", "confirmDeleteDialog.confirmButton", { messageDialog: "❌ Error | Unable to get device IP address | OK" }, [])
        play(() => viewer().deviceIndex = 0, () => lab.setAnswer(0, "/images", 200, "{\"success\":true,\"data\":[{}]}"), "refreshButton", { "countText+selectedText": "1 images + ", downloadStatus: "✗ Unable to get device IP address" })
    }

    function test_selection() {
        const selected = (marks, count) => {
            compare(checks() + read("selectedText"), marks + (count ? count + " selected" : ""))
            compare(tools(), count ? "Select All, Clear Selection, Download Selected (" + count + "), Delete Selected (" + count + ")" : "Select All, Clear Selection [off], Download Selected (0) [off], Delete Selected (0) [off]")
        }
        const selectAll = () => keyClick(Qt.Key_A, Qt.ControlModifier)
        // Two pictures of one name are selected together, and counted so; all of them are counted one by one.
        open([picture("a"), picture("b"), picture("a"), picture("c")])
        play(() => selected("----", 0), () => select(1), () => selected("-✓--", 1), () => select(2), () => selected("✓✓✓-", 2), () => look(2, 1), "hideButton", () => select(0), () => selected("-✓--", 1))
        play(selectAll, () => selected("✓✓✓✓", 4), () => select(1), () => selected("✓-✓✓", 2), "clearSelectionButton", () => selected("----", 0), "selectAllButton", () => selected("✓✓✓✓", 4))
        // While a folder is being typed its text is selected; the background gives the keyboard back.
        // A button that goes grey leaves the keyboard to the viewer.
        play("clearSelectionButton", () => tryVerify(() => viewer().activeFocus), selectAll, () => selected("✓✓✓✓", 4), "clearSelectionButton", "downloadDirectoryField", selectAll, () => selected("----", 0), () => mouseClick(viewer(), 8, 8), selectAll, () => selected("✓✓✓✓", 4), "refreshButton", { selectedText: "" }, ["GET /images"], () => selected("----", 0))
        play(() => keyClick(Qt.Key_Escape), () => tryVerify(() => !viewer() && win.showSettings), () => keyClick(Qt.Key_Escape), () => verify(!win.showSettings))
    }

    function test_delete() {
        const path = "/images/bulk-delete", question = "⚠️ Confirm Delete | Are you sure you want to delete 3 selected image(s)?\n\nThis action cannot be undone! | Cancel | 🗑️ Delete", done = "✅ Success | Successfully deleted 4 image(s) | OK"
        const confirm = ["deleteButton", "confirmDeleteDialog.confirmButton", { "confirmDeleteDialog+messageDialog": " + " }, ["POST " + path + " {\"uuids\":[\"a\",\"<c>\",\"d\",\"a\"]}"]]
        open([picture("a"), picture("b"), picture("<c>"), picture("d"), picture("a")])
        play(() => select(3, 2, 0), "deleteButton", { confirmDeleteDialog: question }, "confirmDeleteDialog.cancelButton", { confirmDeleteDialog: "" }, [])
        for (const [fault, text] of [["", "Delete failed: There is no such image"], [refusal, "Delete failed: Unknown error"], ["body:{", "Error parsing server response: " + parseError], ["status:404", "HTTP error: 404\nNot Found"], ["partial", "Network request failed"]])
            play(() => lab.hold(0, path), ...confirm, () => lab.release(0, path, fault), { messageDialog: "❌ Error | " + text + " | OK" }, [], "messageDialog.okButton", { selectedText: "3 selected" })
        // The good news stays while the pictures are listed again.
        play(() => lab.hold(0, path), () => lab.hold(0, "/images"), ...confirm, () => lab.release(0, path, "body:{\"success\":true}"), { messageDialog: done, noteText: "Loading images..." }, ["GET /images"])
        play(() => lab.fillDisk(0, 3, 0), () => lab.release(0, "/images"), { "countText+selectedText": "3 images + ", messageDialog: done }, settle, "messageDialog.okButton", { messageDialog: "" }, () => select(2, 0), "deleteButton", "confirmDeleteDialog.confirmButton", { messageDialog: "✅ Success | Successfully deleted 2 image(s) | OK", countText: "1 images" })
        play(settle, () => compare(Object.keys(lab.picturesOf(0)).join(), files[1]))
    }

    function test_download() {
        const folder = lab.newFolder() + "/not/yet", message = "✓ Successfully downloaded 3 image(s) to:\n" + folder
        open(3)
        files.forEach(name => lab.hold(0, raw + name))
        play(() => saveTo("  " + folder + " "), () => saveTo("   "))
        play("selectAllButton", "downloadButton", { downloadStatus: "Downloading " + files[0] + " (1/3)", progressStrip: "Progress: | 33%", refreshButton: "Refresh [off]", downloadButton: "⬇️ [off]", deleteButton: "🗑️" }, ["GET " + raw + files[0]], { floatingNotification: "" })
        compare(part("downloadStatus").color, viewer().theme.textColor)
        // Above the large picture it is said once more.
        play(() => look(1), () => lab.release(0, raw + files[0]), { floatingNotification: "✓ | Downloading " + files[1] + " (2/3)", progressStrip: "Progress: | 67% [off]" }, () => keyClick(Qt.Key_Escape))
        // The last file has only begun, yet that counts as the end.
        play(() => lab.release(0, raw + files[1]), { downloadStatus: "✓ Download completed: 3 files", progressStrip: "", refreshButton: "Refresh", downloadButton: "⬇️" }, () => lab.release(0, raw + files[2]), { downloadStatus: message })
        const told = Date.now()
        compare(part("downloadStatus").color, "#4caf50")
        compare(JSON.stringify(lab.filesIn(folder)), JSON.stringify(lab.picturesOf(0)))
        play("refreshButton", { downloadStatus: message, selectedText: "" }, { downloadStatus: "" })
        verify(Math.abs(Date.now() - told - 5000) < 700, Date.now() - told)
    }

    function test_failedDownload() {
        const failed = (good, bad) => "Downloaded " + good + " image(s), " + bad + " failed.\nSaved to:\n"
        open(3)
        const there = lab.picturesOf(0)
        for (const [fault, number, percent, text, path] of [["status:500", 1, 67, failed(2, 1)], ["drop", 0, 33, failed(1, 2)], ["", 0, 0, "Failed to create download directory: ", "/dev/null/x"], ["partial", 2, 33, failed(0, 3)]]) {
            const folder = saveTo(path || lab.newFolder())
            lab.setFault(0, raw + files[number], fault || "drop")
            play("selectAllButton", "downloadButton", { downloadStatus: "✗ " + text + folder, progressStrip: "Progress: | " + percent + "%", refreshButton: "Refresh [off]", downloadButton: "⬇️ [off]", deleteButton: "🗑️", selectedText: "3 selected" })
            compare(part("downloadStatus").color, "#f44336")
            delete there[files[number]]
            compare(JSON.stringify(lab.filesIn(folder)), JSON.stringify(path ? {} : there))
            // Only another viewer is free of the failure.
            play("closeViewerButton", () => tryVerify(() => !viewer()), "imagesButton", { countText: "3 images", "progressStrip+downloadStatus": " + ", refreshButton: "Refresh" }, settle)
        }
    }

    function test_closedInTheMiddle() {
        open(3)
        const folder = saveTo(lab.newFolder())
        play(() => lab.hold(0, raw + files[1]), "selectAllButton", "downloadButton", { downloadStatus: "Downloading " + files[1] + " (2/3)" }, "closeViewerButton", () => tryVerify(() => !viewer()), () => lab.release(0, raw + files[1]))
        tryVerify(() => JSON.stringify(lab.filesIn(folder)) === JSON.stringify(lab.picturesOf(0)))
        // Nobody answers any more, and the viewer is closed at every stage of its work.
        for (const key of ["/images", "/images/bulk-delete", "/api/info/disk-utilization"])
            lab.hold(0, key)
        play("imagesButton", { noteText: "Loading images..." }, () => keyClick(Qt.Key_Escape), "imagesButton", () => lab.release(0, "/images"), { countText: "3 images" }, "selectAllButton", "deleteButton", "confirmDeleteDialog.confirmButton", () => wait(50), () => mouseClick(viewer(), 8, 8), () => keyClick(Qt.Key_Escape), () => tryVerify(() => !viewer() && win.showSettings))
        play(() => lab.release(0, "/images/bulk-delete"), () => lab.release(0, "/api/info/disk-utilization"), () => wait(100), "imagesButton", { "countText+messageDialog": "0 images + " })
    }

    function test_folderDialog() {
        open([])
        const first = saveTo(lab.newFolder()), second = lab.newFolder()
        const dialog = () => findChild(viewer(), "folderDialog"), browse = () => tryVerify(() => dialog().visible), folderIs = folder => compare(read("downloadDirectoryField") + viewer().imageDownloader.downloadDirectory, folder + folder)
        play("browseButton", browse, () => compare(dialog().title + " " + dialog().currentFolder, "Select Download Directory file://" + first), () => dialog().reject(), () => folderIs(first), "browseButton", browse)
        dialog().selectedFolder = "file://" + second
        play(() => dialog().accept(), { downloadDirectoryField: second }, () => folderIs(second))
    }

    function test_look() {
        open([picture("a"), picture("b"), picture("c")])
        play(() => select(0), { fullImageViewer: "" }, () => look(1))
        const at = (number, name) => ({ positionText: number + " / 3", imageNameText: name + ".fits", previousButton: "◀" + (number === 1 ? " [off]" : ""), nextButton: "▶" + (number === 3 ? " [off]" : "") })
        const press = key => () => keyClick(key), tips = () => ["info", "previous", "next", "downloadImage", "deleteImage"].map(name => part(name + "Button").tip).join()
        play(at(2, "b"), { hintText: "Click anywhere to close | ◀ ▶ Navigate | ℹ️ Info", imageInformation: "" }, press(Qt.Key_Right), at(3, "c"), press(Qt.Key_Right), at(3, "c"), "previousButton", at(2, "b"), press(Qt.Key_Left), at(1, "a"), press(Qt.Key_Left), at(1, "a"), "nextButton", at(2, "b"))
        compare(findChild(part("fullImage"), "picture").status + tips(), Image.Ready + "Show info,Previous image (Left arrow key),Next image (Right arrow key),Download this image,Delete this image")
        play("infoButton", () => verify(tips().startsWith("Hide info,") && part("imageInformation").visible), press(Qt.Key_Escape))
        // Each way out hides the picture and nothing else.
        for (const leave of [press(Qt.Key_Escape), () => click("hideButton"), () => mouseClick(part("fullImageViewer"), 8, 300)])
            play(() => look(0), leave, () => verify(!part("fullImageViewer").visible && viewer()), { selectedText: "1 selected" })
        play(press(Qt.Key_Escape), () => tryVerify(() => !viewer()))
    }

    function test_information() {
        const rows = [
            [{ filename: "<b>.fits", filesize: 1536, frame: "Dark", xbinning: 2, ybinning: 3, "date-obs": "2025-10-03T20:15:30.123", filter: "Ha", exptime: 0, "ccd-temp": -10 }, "<b>.fits,1.5 KB,Dark,2x3,2025-10-03 20:15:30,Ha,0.000,-10.00"],
            [{}, "N/A,N/A,N/A,1x1,N/A,N/A,N/A,N/A"], [{ filesize: 5368709120, xbinning: 2, "date-obs": "2025-10-03", exptime: 1.00051, "ccd-temp": 0 }, "N/A,5 GB,N/A,2x1,2025-10-03,N/A,1.001,0.00"],
            [{ filesize: 1048064, exptime: "30", "ccd-temp": "cold" }, "N/A,1023.5 KB,N/A,1x1,N/A,N/A,30,cold"]
        ]
        open(rows.map(([metadata], index) => picture(index, { metadata: Object.assign({ uuid: String(index) }, metadata) })))
        play(() => look(0), "infoButton")
        for (const [metadata, values] of rows)
            play({ imageInformation: "Image Information | " + values.split(",").map((value, row) => ["Filename:", "Size:", "Frame:", "Binning:", "Captured on:", "Filter:", "Exposure:", "Temperature:"][row] + " | " + value).join(" | ") }, () => keyClick(Qt.Key_Right))
        tryVerify(() => findChild(part("fullImage"), "picture").status !== Image.Loading)
    }

    function test_deleteOne() {
        const uuid = "a/b c", path = "/images/a%2Fb%20c", asked = ["DELETE " + path], question = "⚠️ Delete Image | Are you sure you want to delete this image?\n\nThis action cannot be undone! | Cancel | 🗑️"
        const mark = () => String(findChild(part("floatingNotification"), "mark").color), confirm = ["deleteImageButton", "fullImageDeleteConfirmDialog.confirmButton"]
        open([picture("x"), picture(uuid)])
        play(() => look(1), "deleteImageButton", { fullImageDeleteConfirmDialog: question }, "fullImageDeleteConfirmDialog.cancelButton", { fullImageDeleteConfirmDialog: "" }, [], () => keyClick(Qt.Key_Left), { positionText: "1 / 2" }, () => keyClick(Qt.Key_Right))
        for (const [fault, text] of [["body:{\"success\":false,\"message\":\"in use\"}", "Delete failed: in use"], ["body:{}", "Delete failed: Unknown error"], ["body:{", "Error parsing server response"], ["status:500", "HTTP error: 500"], ["partial", "Network request failed"]])
            play(() => lab.setFault(0, path, fault), ...confirm, { floatingNotification: "✗ | " + text, messageDialog: "" }, asked, () => compare(mark(), "#f44336"), () => verify(part("fullImageViewer").visible))
        // The device or the name may be lost while the question is shown.
        play(confirm[0], () => viewer().deviceIndex = 7, confirm[1], { floatingNotification: "✗ | Unable to get device IP address" }, confirm[0], () => part("fullImageViewer").imageUuid = "", confirm[1], { floatingNotification: "✗ | Unable to identify image" }, confirm[0], { fullImageDeleteConfirmDialog: "" }, [])
        play(() => viewer().deviceIndex = 0, () => keyClick(Qt.Key_Escape))
        for (const status of [200, 204])
            play(() => lab.setAnswer(0, path, status, ""), () => look(1), ...confirm, { floatingNotification: "✓ | Successfully deleted image", fullImageViewer: "" }, asked.concat("GET /images"), () => compare(mark(), "#4caf50"), { countText: "2 images" }, settle)
    }

    function test_lastPicture() {
        open(1)
        const folder = saveTo(lab.newFolder()), message = "Successfully downloaded 1 image(s) to:\n" + folder
        play(() => look(0), () => lab.hold(0, raw + files[0]), "downloadImageButton", { floatingNotification: "✓ | Starting download...", progressStrip: "" }, ["GET " + raw + files[0]])
        // What is asked for in the meantime never begins.
        play(() => keyClick(Qt.Key_Escape), "selectAllButton", "downloadButton", { downloadStatus: "Starting download of 1 files...", progressStrip: "Progress: | 0%" }, [], () => look(0))
        play(() => lab.release(0, raw + files[0]), { "floatingNotification+downloadStatus": "✓ | " + message + " + ✓ " + message + " [off]", progressStrip: "Progress: | 0% [off]" })
        const told = Date.now()
        compare(JSON.stringify(lab.filesIn(folder)), JSON.stringify(lab.picturesOf(0)))
        play("deleteImageButton", "fullImageDeleteConfirmDialog.confirmButton", { floatingNotification: "✓ | Successfully deleted image" })
        const deleted = Date.now()
        play({ "countText+fullImageViewer": "0 images + " }, () => compare(Object.keys(lab.picturesOf(0)).length, 0), { floatingNotification: "" })
        verify(Math.abs(Date.now() - deleted - 3300) < 500, Date.now() - deleted)
        play(() => wait(told + 5300 - Date.now()), { downloadStatus: "✓ " + message })
    }

    function test_storage() {
        const answer = (total, used) => "body:" + JSON.stringify({ result: true, payload: { total: total, used: used } }), [good, alarm] = ["#22c55e", "#ef4444"]
        play(() => open(0), () => saveTo("/x"))
        for (const [fault, text, color, tip] of [
            [answer(2 ** 40, 1.25 * 2 ** 30), "💾 | 1.3 GB / 1 TB | 1022.8 GB free", good, "Total: 1 TB\nUsed: 1.25 GB\nFree: 1022.75 GB"], [answer("10240", "9216.9"), "💾 | 9 KB / 10 KB | 1 KB free", good, "Total: 10 KB\nUsed: 9 KB\nFree: 1 KB"],
            [answer(10240, 9217), "💾 | 9 KB / 10 KB | 1023 Bytes free", alarm, "Total: 10 KB\nUsed: 9 KB\nFree: 1023 Bytes"], [answer(1, 1), "💾 | 1 Bytes / 1 Bytes | 0 Bytes free", alarm, "Total: 1 Bytes\nUsed: 1 Bytes\nFree: 0 Bytes"]
        ].concat([refusal, "body:{\"result\":true}", "body:{", "status:500", "drop"].map(fault => [fault, ""]))) {
            play("closeViewerButton", () => tryVerify(() => !viewer()), () => lab.setFault(0, "/api/info/disk-utilization", fault), "imagesButton", settle, { ImagesViewer: "📷 Images Gallery | " + (text && text + " | ") + "✔️ | ✖️ | ⬇️ | 🗑️ | Save to: | /x | 📁 | No images | ✖️ Close | 0 images | Refresh" })
            if (text)
                compare(findChild(part("storageIndicator"), "freeText").color + findChild(part("storageIndicator"), "storageTip").text, color + tip)
        }
    }

    function test_keyboard() {
        open([picture("a"), picture("b")])
        play(() => select(0), () => mouseClick(viewer(), 8, 8))
        const reached = Array.from({ length: 12 }, () => keyClick(Qt.Key_Tab) || win.activeFocusItem.objectName || "cell")
        compare(reached.join(" "), "versionBadge updaterButton themeButton selectAllButton clearSelectionButton downloadButton deleteButton downloadDirectoryField browseButton cell closeViewerButton refreshButton")
        play(() => keyClick(Qt.Key_Space), { selectedText: "" }, ["GET /images"])
    }
}
