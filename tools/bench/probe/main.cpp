// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
// The program's parts at work in a process of their own, for noctaris-bench. What it prints is numbers:
//   start                first frame's time, most memory (KiB)
//   devices N            ms from the first frame to the first frame with N rows ("inf": they never came)
//   idle ADDRESS N SECS  share of a core (%) with N rows whose addresses count up from ADDRESS
//   sweep                ms that sending blocked, longest pause of the whole sweep, ms to its end, rows
#include "harness/RunningProgram.h"
#include "measure/Measure.h"

#include <QGuiApplication>
#include <QHostAddress>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <iostream>

using namespace Qt::StringLiterals;

namespace {
constexpr int limitMs = 60000;

int reportStart(RunningProgram &program)
{
    if (!measure::waitUntil([&] { return program.firstFrameMs() > 0; }, limitMs))
        return 1;
    measure::pass(measure::settlingMs);
    std::printf("%.3f %lld\n", program.firstFrameMs(), measure::peakMemoryKib());
    return 0;
}

int reportDevices(RunningProgram &program, int count)
{
    // The run looks for no longer.
    constexpr int runMs = 10000;
    if (measure::waitUntil([&] { return program.frameWithRowsMs(count) > 0; }, runMs))
        std::printf("%.3f\n", program.frameWithRowsMs(count) - program.firstFrameMs());
    else
        std::printf("inf\n");
    return 0;
}

int reportIdle(RunningProgram &program, const QString &firstAddress, int count, int seconds)
{
    const quint32 first = QHostAddress(firstAddress).toIPv4Address();
    for (int i = 0; i < count; ++i)
        program.devices().addManualDevice(QHostAddress(first + quint32(i)).toString());
    if (!measure::waitUntil(
            [&] { return program.devices().deviceCount() == count && !program.devices().isScanning(); },
            limitMs))
        return 1;
    constexpr int calmMs = 2000;
    measure::pass(calmMs);
    const double fromProcessorMs = measure::processorMs();
    const double fromMs = measure::nowMs();
    measure::pass(seconds * 1000);
    const double percent = 100 * (measure::processorMs() - fromProcessorMs) / (measure::nowMs() - fromMs);
    std::printf("%.4f\n", percent);
    return 0;
}

/// Adds up, from a moment on, how long the main thread did not serve its events.
class Heartbeat
{
public:
    void start()
    {
        m_startMs = m_lastMs = measure::nowMs();
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { onBeat(); });
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.start(1);
    }
    double startMs() const { return m_startMs; }
    double blockedByStartMs() const { return m_blockedByStartMs; }
    double longestMs() const { return m_longestMs; }

private:
    void onBeat()
    {
        // What the scheduler and the beat itself cost is no pause, nor is what comes after the sending.
        constexpr double noPauseMs = 3;
        constexpr double startPeriodMs = 2000;
        const double nowMs = measure::nowMs();
        const double pauseMs = nowMs - m_lastMs;
        m_lastMs = nowMs;
        m_longestMs = std::max(m_longestMs, pauseMs);
        if (pauseMs > noPauseMs && nowMs - m_startMs < startPeriodMs)
            m_blockedByStartMs += pauseMs;
    }

    QTimer m_timer;
    double m_startMs = 0;
    double m_lastMs = 0;
    double m_blockedByStartMs = 0;
    double m_longestMs = 0;
};

int reportSweep(RunningProgram &program)
{
    Heartbeat heartbeat;
    // The line is set right before the first request of the sweep.
    QObject::connect(&program.devices(), &DeviceDiscovery::statusTextChanged, &program, [&] {
        if (program.devices().statusText().startsWith("Performing deep network scan"_L1))
            heartbeat.start();
    });
    program.devices().startDiscovery();
    if (!measure::waitUntil([&] { return !program.devices().isScanning(); }, limitMs) ||
        heartbeat.startMs() == 0)
        return 1;
    std::printf("%.3f %.3f %.3f %d\n", heartbeat.blockedByStartMs(), heartbeat.longestMs(),
                measure::nowMs() - heartbeat.startMs(), program.devices().deviceCount());
    return 0;
}
} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    QStringList arguments = QGuiApplication::arguments();
    arguments.resize(5);
    const QString &kind = arguments[1];
    RunningProgram program;
    if (kind == "sweep"_L1)
        return reportSweep(program);
    if (!program.open())
        return 1;
    program.devices().startDiscovery();
    if (kind == "start"_L1)
        return reportStart(program);
    if (kind == "devices"_L1)
        return reportDevices(program, arguments[2].toInt());
    if (kind == "idle"_L1)
        return reportIdle(program, arguments[2], arguments[3].toInt(), arguments[4].toInt());
    std::cerr << "noctaris-probe: belongs to noctaris-bench, see scripts/bench\n";
    return 2;
}
