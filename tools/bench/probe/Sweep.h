// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

class RunningProgram;

/// The scan of a whole /24 network, and what its requests cost alone. Both return the process's exit code.
namespace sweep {
/// Prints how long sending blocked the main thread in ms, its longest pause during the whole scan in ms, the
/// time to the scan's end in ms, and the rows that it found.
int scan(RunningProgram &program);
/// Sends as many requests, after as long a wait, by the toolkit alone: no program, no time limits, nobody who
/// listens. Prints how long that blocked the main thread in ms.
int sendBare();
} // namespace sweep
