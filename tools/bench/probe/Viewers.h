// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class RunningProgram;

/// A device's pictures and videos in the running program. Each call prints its line of numbers and returns
/// the probe's exit code. The device lies at the address.
namespace viewers {
/// Opens a viewer ("images" or "videos"), scrolls through all of it, and selects everything: ms from the
/// answer to the frame that shows the list, longest and median time between two frames of scrolling (ms), ms
/// to the frame that shows everything selected, extra memory against the empty viewer (KiB).
int browse(RunningProgram &program, const QString &address, const QString &kind);
/// Shows a picture large: ms until it is there, longest pause (ms), extra memory at most, and once it is
/// there (KiB).
int showLarge(RunningProgram &program, const QString &address);
} // namespace viewers
