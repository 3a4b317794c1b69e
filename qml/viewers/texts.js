// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
.pragma library

const byteUnits = ["Bytes", "KB", "MB", "GB", "TB", "PB", "EB", "ZB", "YB"]

/// What a device says in a place for words: a text or a number; empty if it is something else.
function textOf(value) {
    return typeof value === "string" ? value : typeof value === "number" ? String(value) : ""
}

/// A size in bytes as people read it, in one of the first so many units, without trailing zeros: "1.5 KB". What is
/// no size reads as none.
function formatBytes(bytes, decimals, unitCount) {
    const size = Number(textOf(bytes))
    if (!size || !isFinite(size))
        return "0 Bytes"
    const power = Math.floor(Math.log(Math.abs(size)) / Math.log(1024))
    const unit = Math.min(Math.max(power, 0), unitCount - 1)
    return parseFloat((size / Math.pow(1024, unit)).toFixed(decimals)) + " " + byteUnits[unit]
}

/// The text of release notes without the marks of bold letters.
function formatMarkdown(text) {
    return textOf(text || "").replace(/\*\*/g, "")
}
