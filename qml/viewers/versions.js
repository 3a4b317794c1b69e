// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
.pragma library

const systemPrefix = "@system-"

/// 1 if the first version is the higher one, -1 if it is the lower, 0 if they are equal. A part that is missing or no
/// number counts as 0: "2.0" equals "2.0.0".
function compareVersions(v1, v2) {
    return compareParts(partsOf(v1), partsOf(v2))
}

function partsOf(version) {
    return String(version).split(".").map(part => parseInt(part, 10) || 0)
}

function compareParts(parts1, parts2) {
    for (let i = 0; i < Math.max(parts1.length, parts2.length); ++i) {
        const part1 = parts1[i] || 0
        const part2 = parts2[i] || 0
        if (part1 !== part2)
            return part1 > part2 ? 1 : -1
    }
    return 0
}

/// Versions from the highest to the lowest, in a new list.
function descending(versions) {
    const read = versions.map(version => ({ version: version, parts: partsOf(version) }))
    return read.sort((a, b) => compareParts(b.parts, a.parts)).map(entry => entry.version)
}

/// The version of a system that a subvolume holds; null if it holds something else.
function extractSystemVersion(subvolume) {
    if (typeof subvolume !== "string" || !subvolume.startsWith(systemPrefix))
        return null
    return subvolume.substring(systemPrefix.length)
}

/// The highest version below the active one; null if there is none.
function findRollbackTarget(systemVersions, activeVersion) {
    const target = descending(systemVersions).find(version => compareVersions(version, activeVersion) < 0)
    return target === undefined ? null : target
}

/// The map from versions to their notes in an answer, wrapped or not; undefined if the answer holds none.
function changelogMapIn(answer) {
    if (answer.result !== undefined && answer.payload !== undefined)
        return answer.payload
    const isMap = typeof answer === "object" && Object.keys(answer).some(key => /^\d+\.\d+(\.\d+)?$/.test(key))
    return isMap ? answer : undefined
}
