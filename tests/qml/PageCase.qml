// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQuick
import QtTest
import NoctarisTools 1.0

/// A test of the settings page, which is opened by a click in a window that lists three devices: one with a
/// delta update, one with an upgrade, one with neither. It fails if the engine complains of anything.
TestCase {
    property var win: null
    property Item page: null
    property int device: 0
    property int answers: 0
    readonly property string releases: "stableReleaseRadio+betaReleaseRadio"
    readonly property string refusal: "body:{\"result\":false}"
    readonly property Component program: Main {}

    function init() {
        wait(0)
        lab.renewGateway()
        for (const name of ["hotspotInterface", "networkInterfaces", "picturesDirectory", "releaseType", "remoteSupportStatus"])
            deviceDiscovery[name + "Received"].connect(() => ++answers)
        win = createTemporaryObject(program, null, { height: 1000 })
        win.requestActivate()
        tryVerify(() => win.active)
        page = findChild(win.contentItem, "settingsPage")
        for (let number = 0; number < 3; ++number) {
            verify(lab.start(number))
            deviceDiscovery.addManualDevice(lab.address(number))
            tryCompare(deviceDiscovery, "deviceCount", number + 1)
            lab.takeRequests(number)
        }
    }

    function cleanup() {
        lab.stopAll()
        win.close()
        // Known: the page passes a property on to itself, and a button writes to a name that the page does not have.
        compare(lab.takeWarnings().filter(line => !/"imageDownloader"|"deltaPendingReboot"/.test(line)).join("\n"), "")
    }

    /// Opens the page of a device, waits until it shows what the device says, and returns what was asked.
    function openPage(number: int, expectedAnswers = 7): var {
        const view = findChild(win.contentItem, "tableView")
        device = number
        answers = 0
        wait(0)
        view.forceLayout()
        mouseClick(findChild(view.itemAtIndex(number), "settingsButton"))
        tryVerify(() => answers >= expectedAnswers && findChild(page, "overlaysLoader").item)
        return lab.takeRequests(number)
    }

    /// Plays a scene: a number opens a device's page, a text clicks on a part or "overlay.part", an object is what
    /// is to be read on parts, a list all that the device was asked since the last one, a function anything else.
    function play(...steps) {
        const seen = texts => Object.keys(texts).forEach(names => tryRead(names, texts[names]))
        const kinds = { number: openPage, string: path => click(...path.split(".")), function: act => act(), object: texts => Array.isArray(texts) ? tryRequests(texts) : seen(texts) }
        for (const step of steps)
            kinds[typeof step](step)
    }

    function click(name: string, inner = "") {
        const item = inner ? findChild(part(name), inner) : part(name)
        verify(item && item.visible && item.enabled, name + " cannot be clicked")
        mouseClick(item)
    }

    function tryRequests(expected: var) {
        tryVerify(() => lab.requestCount(device) >= expected.length)
        wait(30)
        compare(lab.takeRequests(device).join("\n"), expected.join("\n"))
    }

    function tryRead(names: string, text: string) {
        for (let ms = 0; ms < 12000 && read(names) !== text; ms += 10)
            wait(10)
        compare(read(names), text, names)
    }

    /// What is to be read on parts "name+name" of the page, from top to bottom; nothing of what is hidden.
    function read(names: string): string {
        const states = item => (item.checked ? " [on]" : "") + (item.enabled ? "" : " [off]")
        return names.split("+").map(part).map(item => item && item.visible ? textsOf(item).join(" | ") + states(item) : "").join(" + ")
    }

    function textsOf(item: Item): var {
        const isText = item instanceof Text || item instanceof TextEdit || item instanceof TextInput
        const own = isText && item.text !== "" ? [item.text] : []
        return item.visible ? Array.from(item.children).reduce((all, child) => all.concat(textsOf(child)), own) : []
    }

    function part(name: string): Item { return findChild(page, name) || findChild(win.header, name) }
    function type(text: string) { Array.from(text).forEach(letter => keyClick(letter)) }
    /// Those of the buttons of heavy operations that can be pressed.
    function enabledButtons(): string { return ["shutdown", "reboot", "networkReset", "factoryReset", "lumarcReset", "updater"].filter(name => part(name + "Button").enabled).join(" ") }
}
