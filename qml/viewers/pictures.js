// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
.pragma library
.import "../settings/maker.js" as Maker
.import "texts.js" as Texts

/// A picture's URL as it is reached from here. A device names itself in it by its own multicast name, or by
/// whatever name it was last reached by.
function rewriteUrl(url, ipAddress) {
    if (typeof url !== "string")
        return ""
    return url.replace(Maker.factoryHost, () => ipAddress + ":3000")
        .replace(/http:\/\/[^:\/]+:(\d+)/, (match, port) => "http://" + ipAddress + ":" + port)
}

/// A picture as the device lists it, with URLs that can be reached from here.
function reachable(record, ipAddress) {
    const picture = record || {}
    return {
        src: rewriteUrl(picture.src, ipAddress),
        raw: rewriteUrl(picture.raw, ipAddress),
        thumbnail: rewriteUrl(picture.thumbnail, ipAddress),
        metadata: picture.metadata
    }
}

/// What is known of a picture, without the need to ask whether anything is.
function metadataOf(record) {
    return record && record.metadata || {}
}

/// The name by which the device knows a picture; empty if it has none.
function uuidOf(record) {
    return Texts.textOf(metadataOf(record).uuid)
}

/// The names of pictures, each to true.
function uuidMap(records) {
    const map = {}
    for (const uuid of records.map(uuidOf)) {
        if (uuid !== "")
            map[uuid] = true
    }
    return map
}

/// A URL to load a picture from, marked with how large it may be; empty for one that does not lead to a web
/// server. The mark stays here: it is for the program's own network, no server sees it.
function webAddress(url, mark) {
    return /^https?:\/\//i.test(url) ? url.split("#")[0] + "#" + mark : ""
}

/// A number with so many decimals, or the text that there is instead of a number.
function fixed(value, decimals) {
    return typeof value === "number" ? value.toFixed(decimals) : Texts.textOf(value)
}
