// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class RunningProgram;

/// The program with devices in its table. What measures prints its numbers and returns the
/// probe's exit code.
namespace page {
/// Lists so many devices, whose addresses count up; false if they do not come. Others may be found as well.
bool listDevices(RunningProgram &program, const QString &firstAddress, int count);
/// Opens the settings of a device. Prints the time to the page's first frame and the longest pause of the
/// main thread while it fills, both in ms, and the share of a core (%) that the open page takes for so many
/// seconds.
int open(RunningProgram &program, const QString &address, int seconds);
/// Lists so many devices, whose addresses count up from one, and has an operation done on the last. Prints
/// the processor time of the main thread, in ms, from the call to the result.
int operate(RunningProgram &program, const QString &firstAddress, int count);
} // namespace page
