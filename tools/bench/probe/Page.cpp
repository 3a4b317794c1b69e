// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "bench/probe/Page.h"

#include "harness/RunningProgram.h"
#include "measure/Measure.h"
#include "measure/Pauses.h"

#include <QHostAddress>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {
constexpr int limitMs = 60000;
constexpr int calmMs = 2000;

double threadMs()
{
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return double(used.tv_sec) * 1e3 + double(used.tv_nsec) / 1e6;
}
} // namespace

bool page::listDevices(RunningProgram &program, const QString &firstAddress, int count)
{
    DeviceDiscovery &devices = program.devices();
    const quint32 first = QHostAddress(firstAddress).toIPv4Address();
    for (int i = 0; i < count; ++i)
    {
        devices.addManualDevice(QHostAddress(first + quint32(i)).toString());
        // Not all at once: a thousand devices in one process have their limits.
        constexpr int atOnce = 50;
        if (!measure::waitUntil([&] { return devices.deviceCount() > i - atOnce; }, limitMs))
            return false;
    }
    const bool isDone =
        measure::waitUntil([&] { return devices.deviceCount() >= count && !devices.isScanning(); }, limitMs);
    measure::pass(calmMs);
    return isDone;
}

int page::open(RunningProgram &program, const QString &address, int seconds)
{
    if (!listDevices(program, address, 1))
        return 1;
    QQuickWindow *window = program.window();
    Pauses pauses;
    double firstFrameMs = 0;
    const double startMs = measure::nowMs();
    QObject::connect(window, &QQuickWindow::frameSwapped, window, [&] {
        if (firstFrameMs > 0)
            return;
        firstFrameMs = measure::nowMs() - startMs;
        pauses.start();
    });
    window->setProperty("selectedDeviceIndex", 0);
    window->setProperty("showSettings", true);
    if (!measure::waitUntil([&] { return firstFrameMs > 0; }, limitMs))
        return 1;
    measure::pass(calmMs);
    pauses.stop();
    const double longestMs = pauses.longestMs();
    const double fromProcessorMs = measure::processorMs();
    const double fromMs = measure::nowMs();
    measure::pass(seconds * 1000);
    std::printf("%.3f %.3f %.4f\n", firstFrameMs, longestMs,
                100 * (measure::processorMs() - fromProcessorMs) / (measure::nowMs() - fromMs));
    return 0;
}

int page::operate(RunningProgram &program, const QString &firstAddress, int count)
{
    if (!listDevices(program, firstAddress, count))
        return 1;
    DeviceDiscovery &devices = program.devices();
    constexpr int rounds = 101;
    QList<double> times;
    for (int round = 0; round < rounds; ++round)
    {
        bool isAnswered = false;
        const double fromMs = threadMs();
        const auto connection = QObject::connect(&devices, &DeviceDiscovery::networkInterfacesReceived, [&] {
            times += threadMs() - fromMs;
            isAnswered = true;
        });
        devices.queryNetworkInterfaces(count - 1);
        const bool isInTime = measure::waitUntil([&] { return isAnswered; }, limitMs);
        QObject::disconnect(connection);
        if (!isInTime)
            return 1;
    }
    std::ranges::sort(times);
    std::printf("%.3f\n", times[rounds / 2]);
    return 0;
}
