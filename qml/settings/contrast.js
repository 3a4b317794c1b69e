// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
.pragma library

function linear(part) {
    return part <= 0.04045 ? part / 12.92 : Math.pow((part + 0.055) / 1.055, 2.4)
}

/// The colour of letters that is read best on a colour: dark ones from the luminance on at which their contrast
/// is the greater.
function textOn(color) {
    const luminance = 0.2126 * linear(color.r) + 0.7152 * linear(color.g) + 0.0722 * linear(color.b)
    return luminance > 0.197 ? "#1a1a1a" : "white"
}
