// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
// The program's parts at work in a process of their own, for noctaris-bench. What it prints is numbers:
//   start                first frame's time, most memory (KiB)
//   devices N            ms from the first frame to the first frame with N rows ("inf": they never came)
//   idle ADDRESS N SECS  share of a core (%) with N rows whose addresses count up from ADDRESS
//   page ADDRESS SECS    ms to the settings' first frame, longest pause (ms), share of a core (%) afterwards
//   operate ADDRESS N    ms of the main thread for an operation with N rows
//   serve FILE           nothing: answers requests with the file
//   fetch URL FOLDER N   ms to the end of N transfers, extra memory (KiB), longest pause (ms), files that
//   came
//   browse ADDRESS KIND  how long the list of a viewer takes, and how large it is: see Viewers.h
//   large ADDRESS        likewise a large picture
//   sweep                what the scan of a network costs: see Sweep.h
//   requests             what as many requests cost without the program
#include "bench/probe/Page.h"
#include "bench/probe/Sweep.h"
#include "bench/probe/Transfer.h"
#include "bench/probe/Viewers.h"
#include "harness/RunningProgram.h"
#include "measure/Measure.h"

#include <QGuiApplication>
#include <QHostAddress>

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
} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    QStringList arguments = QGuiApplication::arguments();
    arguments.resize(5);
    const QString &kind = arguments[1];
    if (kind == "serve"_L1)
        return transfer::serve(arguments[2]);
    if (kind == "fetch"_L1)
        return transfer::fetch(arguments[2], arguments[3], arguments[4].toInt());
    if (kind == "requests"_L1)
        return sweep::sendBare();
    RunningProgram program;
    if (kind == "sweep"_L1)
        return sweep::scan(program);
    if (!program.open())
        return 1;
    program.devices().startDiscovery();
    if (kind == "start"_L1)
        return reportStart(program);
    if (kind == "devices"_L1)
        return reportDevices(program, arguments[2].toInt());
    if (kind == "page"_L1)
        return page::open(program, arguments[2], arguments[3].toInt());
    if (kind == "browse"_L1)
        return viewers::browse(program, arguments[2], arguments[3]);
    if (kind == "large"_L1)
        return viewers::showLarge(program, arguments[2]);
    if (kind == "operate"_L1)
        return page::operate(program, arguments[2], arguments[3].toInt());
    if (kind == "idle"_L1)
        return reportIdle(program, arguments[2], arguments[3].toInt(), arguments[4].toInt());
    std::cerr << "noctaris-probe: belongs to noctaris-bench, see scripts/bench\n";
    return 2;
}
