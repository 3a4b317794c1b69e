// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <functional>

/// Time and other costs, as the tools measure them.
namespace measure {
/// How long after its first frame a window's memory is looked at.
inline constexpr int settlingMs = 500;

/// Time since the machine's start, in ms: the same clock in every process.
double nowMs();
/// The processor time that this process has used so far, in ms.
double processorMs();
/// The most memory (RSS) that this process has held so far, in KiB.
qint64 peakMemoryKib();
/// Serves events until the condition holds; false if it does not within the limit. It is looked at every
/// few ms, so what is to be timed exactly notes its time itself.
bool waitUntil(const std::function<bool()> &isReached, int limitMs);
/// Serves events for so long.
void pass(int durationMs);
} // namespace measure
