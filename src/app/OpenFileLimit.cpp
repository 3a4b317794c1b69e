// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/OpenFileLimit.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <sys/resource.h>

#include <algorithm>

void raiseOpenFileLimit()
{
    // Enough for two sweeps at once; an unbounded limit makes some libraries slow.
    constexpr rlim_t wanted = 8192;
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= wanted)
        return;
    limit.rlim_cur = std::min(wanted, limit.rlim_max);
    setrlimit(RLIMIT_NOFILE, &limit);
}
#else
void raiseOpenFileLimit() {}
#endif
