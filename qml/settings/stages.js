// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
.pragma library

/// What an update is about, as far as its percentage tells.
function stageOf(percent, atTheStart) {
    if (percent === 0)
        return atTheStart
    const stages = [[25, "Downloading updates..."], [50, "Preparing installation..."], [75, "Installing updates..."], [99, "Finalizing..."]]
    for (const [end, words] of stages) {
        if (percent < end)
            return words
    }
    return "Completing..."
}
