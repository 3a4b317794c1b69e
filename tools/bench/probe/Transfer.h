// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

/// Pictures on their way, without the rest of the program. Both return the process's exit code.
namespace transfer {
constexpr int port = 3000;

/// Answers every request on the loopback device with a file, until it is ended. Says "ready" first.
int serve(const QString &fileName);
/// Fetches one URL so many times into a folder. Prints the time to the end in ms, the memory that it took
/// beyond what was held before in KiB, the longest pause of the main thread in ms, and how many files came.
int fetch(const QString &url, const QString &folder, int count);
} // namespace transfer
