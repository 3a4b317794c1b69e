// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "measure/Measure.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <ctime>
#include <sys/resource.h>

double measure::nowMs()
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::milli>(sinceStart).count();
}

double measure::processorMs()
{
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return double(used.tv_sec) * 1e3 + double(used.tv_nsec) / 1e6;
}

qint64 measure::peakMemoryKib()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

bool measure::waitUntil(const std::function<bool()> &isReached, int limitMs)
{
    if (isReached())
        return true;
    QElapsedTimer waited;
    waited.start();
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (isReached() || waited.hasExpired(limitMs))
            loop.quit();
    });
    constexpr int lookEveryMs = 5;
    look.start(lookEveryMs);
    loop.exec();
    return isReached();
}

void measure::pass(int durationMs)
{
    QEventLoop loop;
    QTimer::singleShot(durationMs, &loop, &QEventLoop::quit);
    loop.exec();
}
