// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtTest
import NoctarisTools 1.0
import "qrc:/qt/qml/NoctarisTools/qml/settings/maker.js" as Maker
import "qrc:/qt/qml/NoctarisTools/qml/viewers/pictures.js" as Pictures
import "qrc:/qt/qml/NoctarisTools/qml/viewers/texts.js" as Texts
import "qrc:/qt/qml/NoctarisTools/qml/viewers/versions.js" as Versions

/// What the viewers and the list of systems reckon, without a device.
TestCase {
    name: "ViewerScripts"

    readonly property Component imagesViewer: ImagesViewer {}
    readonly property Component videosViewer: VideosViewer {}

    /// A function's rows: what goes in, and last what comes out.
    function rows(work: var, table: var): var {
        return table.map((row, index) => ({ tag: work.name + " " + index + " " + String(row[0]).substring(0, 40), work: work, given: row.slice(0, -1), result: row[row.length - 1] }))
    }

    function test_function_data() {
        const entry = { changelog: [] }, notes = { "2.5": entry, note: "" }, longNotes = { "2.5.10": entry }
        const bytes = rows(Texts.formatBytes, [
            [0, 2, 9, "0 Bytes"], ["abc", 2, 9, "0 Bytes"], [null, 2, 9, "0 Bytes"], [undefined, 2, 9, "0 Bytes"], [{}, 2, 9, "0 Bytes"], [Infinity, 2, 9, "0 Bytes"],
            [1, 2, 9, "1 Bytes"], [0.5, 2, 9, "0.5 Bytes"], [1023, 2, 9, "1023 Bytes"], [1024, 2, 9, "1 KB"], [1126, 2, 9, "1.1 KB"], [1131, 2, 9, "1.1 KB"], [1136, 2, 9, "1.11 KB"],
            [1536, 1, 9, "1.5 KB"], [1536, 0, 9, "2 KB"], [1048575, 2, 9, "1024 KB"], ["2048", 2, 9, "2 KB"], [-1536, 1, 9, "-1.5 KB"], [-512, 2, 9, "-512 Bytes"], [Math.pow(1024, 5), 2, 5, "1024 TB"], [Math.pow(1024, 9), 2, 9, "1024 YB"]
        ].concat(["KB", "MB", "GB", "TB"].map((unit, power) => [1.5 * Math.pow(1024, power + 1), 2, 5, "1.5 " + unit]), ["KB", "MB", "GB", "TB", "PB", "EB", "ZB", "YB"].map((unit, power) => [Math.pow(1024, power + 1), 2, 9, "1 " + unit])))
        const words = rows(Texts.formatMarkdown, [["**New:** a * b", "New: a * b"], ["****", ""], ["***x***", "*x*"], ["", ""], [null, ""], [undefined, ""]])
        const versions = [].concat(
            rows(Versions.compareVersions, [["2.10", "2.9", 1], ["2.9", "2.10", -1], ["2.0", "2.0.0", 0], ["2", "2.0.1", -1], ["1.9.9", "2", -1], ["2.x", "2.0", 0], ["2.5-beta", "2.5", 0], ["2.5rc1.1", "2.5.1", 0], ["v9.1", "0.1", 0], ["2..1", "2.0.1", 0], ["", "0", 0], ["010", "10", 0]]),
            rows(Versions.extractSystemVersion, [["@system-2.0.1", "2.0.1"], ["@system-a b", "a b"], ["@home", null], ["x@system-2.0", null], ["@System-2.0", null], ["", null], [null, null], [7, null]]),
            rows(Versions.findRollbackTarget, [[["2.0", "2.9", "2.10", "2.11"], "2.10", "2.9"], [["2.9.0", "2.10"], "2.9", null], [["1.0.0", "1.0"], "1.0.1", "1.0.0"], [["2.0"], "", null], [[], "2.0", null]]),
            rows(Versions.descending, [[["2.9", "2.10", "2"], ["2.10", "2.9", "2"]]]),
            rows(Versions.changelogMapIn, [[{ result: false, payload: notes }, notes], [{ result: true, payload: {} }, {}], [notes, notes], [longNotes, longNotes], [{ payload: entry, "1.0": entry }, { payload: entry, "1.0": entry }], [{ result: true }, undefined], [{ payload: notes }, undefined], [{ "2.5.0.1": entry, "v2.5": entry, "2": entry }, undefined], ["2.5", undefined], [7, undefined], [[], undefined]]))
        const ip = "10.0.0.5", factory = "http://" + Maker.factoryHost
        const urls = [].concat(
            // The port that comes with the factory name stands even if the URL has one already.
            rows(Pictures.rewriteUrl, [[factory + "/a.jpg", "http://10.0.0.5:3000/a.jpg"], [factory + ":3000/a.jpg", "http://10.0.0.5:3000:3000/a.jpg"], [factory + "/?" + Maker.factoryHost, "http://10.0.0.5:3000/?" + Maker.factoryHost], ["https" + factory.substring(4) + "/a", "https://10.0.0.5:3000/a"], [factory.replace(".", "x") + "/a", factory.replace(".", "x") + "/a"],
                ["http://orion.local:3000/a", "http://10.0.0.5:3000/a"], ["http://192.168.7.9:8080/a:1", "http://10.0.0.5:8080/a:1"], ["http://a:1/?http://b:2", "http://10.0.0.5:1/?http://b:2"], ["http://a/?http://b:2/", "http://a/?http://10.0.0.5:2/"], ["http://orion.local/a", "http://orion.local/a"], ["http://orion.local/a:7", "http://orion.local/a:7"], ["https://orion.local:3000/a", "https://orion.local:3000/a"], ["/images/a", "/images/a"], ["", ""], [undefined, ""], [null, ""], [7, ""], [{}, ""]
            ].map(([url, result]) => [url, ip, result])),
            rows(Pictures.reachable, [[{ src: "http://a:1/s", raw: "http://a:2/r", thumbnail: "http://a:3/t", metadata: 7 }, ip, { src: "http://10.0.0.5:1/s", raw: "http://10.0.0.5:2/r", thumbnail: "http://10.0.0.5:3/t", metadata: 7 }], [null, ip, { src: "", raw: "", thumbnail: "", metadata: undefined }]]),
            rows(Pictures.webAddress, [["http://h/a b", "x", "http://h/a b#x"], ["HTTPS://h/a#b#c", "x", "HTTPS://h/a#x"], ["file:///etc/passwd", "x", ""], ["data:image/png;base64,AA", "x", ""], ["qrc:/http://h", "x", ""], [" http://h", "x", ""], ["http:/h", "x", ""], ["", "x", ""]]),
            rows(Pictures.uuidOf, [[{ metadata: { uuid: "u" } }, "u"], [{ metadata: { uuid: 7 } }, "7"], [{ metadata: { uuid: { toString: 1 } } }, ""], [{ metadata: null }, ""], [null, ""]]),
            rows(Pictures.fixed, [[0, 3, "0.000"], [1.23456, 2, "1.23"], ["1.2", 2, "1.2"], [undefined, 2, ""]]))
        return bytes.concat(words, versions, urls)
    }
    function test_function(data) {
        const given = JSON.stringify(data.given)
        compare(data.work(...data.given), data.result)
        compare(JSON.stringify(data.given), given, "what was given is left as it was")
    }

    /// The pictures go on to larger units, and take no decimals for two.
    function test_viewers() {
        const images = createTemporaryObject(imagesViewer, this), videos = createTemporaryObject(videosViewer, this)
        compare([[1640], [1640, 0], [1640, 1], [Math.pow(1024, 5)]].map(given => images.formatBytes(...given)).join(), "1.6 KB,1.6 KB,1.6 KB,1 PB")
        compare([[1640], [1640, 0], [1640, 1], [Math.pow(1024, 5)]].map(given => videos.formatBytes(...given)).join(), "1.6 KB,2 KB,1.6 KB,1024 TB")
    }
}
