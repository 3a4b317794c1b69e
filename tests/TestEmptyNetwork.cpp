// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "support/Log.h"
#include "support/Probing.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace probing;

/// A run where there is no network at all, let alone a device.
class TestEmptyNetwork : public QObject
{
    Q_OBJECT

private slots:
    void runEndsByItsGuard();
};

void TestEmptyNetwork::runEndsByItsGuard()
{
    const Log log;
    DeviceDiscovery discovery;
    const Statuses statuses(discovery);
    QElapsedTimer clock;
    clock.start();
    discovery.startDiscovery();
    QTRY_VERIFY_WITH_TIMEOUT(!discovery.isScanning(), 60000);

    // 10 s of multicast DNS, 1 s of grace, and 30 s for a scan that has nobody to ask.
    QCOMPARE(timing(clock.elapsed(), 41000), u"about 41000 ms"_s);
    QCOMPARE(statuses.lines,
             QStringList({u"Starting device discovery..."_s, u"Initializing network discovery..."_s,
                          u"Searching for Noctaris devices using mDNS..."_s,
                          u"No devices found via mDNS, switching to deep network scan..."_s,
                          u"Performing deep network scan for Noctaris devices..."_s,
                          u"Scan completed. No Noctaris devices found on the network."_s}));
    QCOMPARE(log.lines(), QStringList{u"Starting network scan (brute force discovery)"_s});
}

QTEST_GUILESS_MAIN(TestEmptyNetwork)
#include "TestEmptyNetwork.moc"
