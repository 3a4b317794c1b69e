// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

/// Raises the process's own limit of open files as far as the system lets it. A sweep of one network
/// alone opens over a thousand connections, which is more than the usual limit.
void raiseOpenFileLimit();
