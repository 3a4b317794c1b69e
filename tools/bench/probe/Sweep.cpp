// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "bench/probe/Sweep.h"

#include "harness/RunningProgram.h"
#include "measure/Measure.h"
#include "measure/Pauses.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <cstdio>

using namespace Qt::StringLiterals;

int sweep::scan(RunningProgram &program)
{
    constexpr int limitMs = 60000;
    Pauses pauses;
    // The line is set right before the first request of the scan.
    QObject::connect(&program.devices(), &DeviceDiscovery::statusTextChanged, &program, [&] {
        if (program.devices().statusText().startsWith("Performing deep network scan"_L1))
            pauses.start();
    });
    program.devices().startDiscovery();
    if (!measure::waitUntil([&] { return !program.devices().isScanning(); }, limitMs) ||
        pauses.startMs() == 0)
        return 1;
    std::printf("%.3f %.3f %.3f %d\n", pauses.earlySumMs(), pauses.longestMs(),
                measure::nowMs() - pauses.startMs(), program.devices().deviceCount());
    return 0;
}

int sweep::sendBare()
{
    // A scan comes when all has been quiet for so long, and a machine that rested is slower at first.
    constexpr int quietMs = 11000;
    constexpr int earlyMs = 2000;
    constexpr quint32 hosts = 254;
    const quint32 network = QHostAddress(u"10.77.0.0"_s).toIPv4Address();
    QNetworkAccessManager manager;
    manager.setProxy(QNetworkProxy::NoProxy);
    measure::pass(quietMs);
    Pauses pauses;
    pauses.start();
    for (quint32 host = 1; host <= hosts; ++host)
    {
        for (const QLatin1StringView path : {"hostname"_L1, "version"_L1, "model"_L1, "machine-id"_L1})
        {
            const QString address = QHostAddress(network + host).toString();
            manager.get(QNetworkRequest(QUrl(u"http://%1:8624/api/info/%2"_s.arg(address, path))));
        }
    }
    measure::pass(earlyMs);
    std::printf("%.3f\n", pauses.earlySumMs());
    return 0;
}
