// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/OpenFileLimit.h"
#include "devices/DeviceDiscovery.h"
#include "mdns/qMDNS.h"
#include "support/Log.h"
#include "support/Probing.h"

#include <QHostInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace probing;

namespace {
constexpr int patienceMs = 30000;

bool ip(const QString &arguments)
{
    return QProcess::execute(u"ip"_s, arguments.split(u' ')) == 0;
}
} // namespace

/// The sweep of small networks, when multicast DNS has found nothing. The test's own network has "net0" with
/// 10.77.0.1/29, and "net1", which comes first.
class TestDeepScan : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void sweepsEverySmallNetwork();
    void stopKeepsWhatWasFound();

private:
    SimulatedDevice m_own = SimulatedDevice(QHostAddress(u"10.78.0.1"_s), 0);
    SimulatedDevice m_beside = SimulatedDevice(QHostAddress(u"10.77.0.2"_s), 1);
    SimulatedDevice m_near = SimulatedDevice(QHostAddress(u"10.77.0.3"_s), 2);
    SimulatedDevice m_stranger = SimulatedDevice(QHostAddress(u"10.77.0.5"_s), 3);
};

void TestDeepScan::initTestCase()
{
    const char *const commands[] = {
        // A single host, a pair, a network just too large, and the largest that is not: all of that one's
        // hosts are this machine, so that it refuses at once instead of keeping silent.
        "address add 10.78.0.1/32 dev net1", "address add 10.78.0.4/31 dev net1",
        "address add 172.16.0.1/22 dev net1", "address add 10.80.0.1/23 dev net1",
        "route add local 10.80.0.0/23 dev lo",
        // A second address in the network of net0, and hosts of it that live here, for 10.77.0.4 and
        // 10.77.0.6 to keep silent.
        "address add 10.77.0.2/29 dev net0", "address add 10.77.0.3/32 dev lo",
        "address add 10.77.0.5/32 dev lo"};
    for (const char *command : commands)
        QVERIFY2(ip(QLatin1StringView(command)), command);
    for (SimulatedDevice *device : {&m_own, &m_beside, &m_near, &m_stranger})
        QVERIFY2(device->start(), qPrintable(device->errorString()));

    // The sweep needs more sockets at once than the common limit lets it have; the program raises it.
    rlimit limit = {};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = std::min<rlim_t>(1024, limit.rlim_max);
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &limit), 0);
    raiseOpenFileLimit();
}

void TestDeepScan::sweepsEverySmallNetwork()
{
    const Log log;
    DeviceDiscovery discovery;
    const Statuses statuses(discovery);
    m_stranger.setFault(machineId, Fault::status(404));
    discovery.startDiscovery();

    // The machine's own address is asked in every run. Its row does not keep the scan from coming: the list
    // was empty when the run started.
    QTRY_COMPARE(rows(discovery), QStringList{rowOf(m_own)});
    QHostInfo host;
    host.setAddresses({QHostAddress(m_stranger.address())});
    emit qMDNS::getInstance()->hostFound(host);
    QTRY_VERIFY_WITH_TIMEOUT(!discovery.isScanning(), patienceMs);
    QVERIFY(settle(discovery, 0, patienceMs));

    QCOMPARE(statuses.lines.first(5),
             QStringList({u"Starting device discovery..."_s, u"Initializing network discovery..."_s,
                          u"Searching for Noctaris devices using mDNS..."_s,
                          u"No devices found via mDNS, switching to deep network scan..."_s,
                          u"Performing deep network scan for Noctaris devices..."_s}));
    // The run ends when three quarters of the answers are in; which devices are among them, is open.
    static const QRegularExpression end(u"^Scan completed. Found [123] Noctaris device\\(s\\)$"_s);
    QCOMPARE(statuses.lines.size(), 6);
    QVERIFY2(end.match(statuses.lines.last()).hasMatch(), qPrintable(statuses.lines.last()));
    QStringList listed = rows(discovery);
    listed.sort();
    QCOMPARE(listed, QStringList({rowOf(m_beside), rowOf(m_near), rowOf(m_own)}));

    QCOMPARE(log.lines().filter(QRegularExpression(u"^Starting network|^Scanning|^Skipping"_s)),
             QStringList({u"Starting network scan (brute force discovery)"_s,
                          uR"(Scanning network: "10.78.0.1" to "10.78.0.1" size: 0)"_s,
                          uR"(Scanning network: "10.78.0.4" to "10.78.0.5" size: 1)"_s,
                          uR"(Skipping large network "172.16.0.0" size: 1023)"_s,
                          uR"(Scanning network: "10.80.0.0" to "10.80.1.255" size: 511)"_s,
                          uR"(Scanning network: "10.77.0.0" to "10.77.0.7" size: 7)"_s,
                          uR"(Skipping "10.77.0.5" as it was already discovered via mDNS)"_s,
                          uR"(Scanning network: "10.77.0.0" to "10.77.0.7" size: 7)"_s,
                          uR"(Skipping "10.77.0.5" as it was already discovered via mDNS)"_s}));
    // The network that is there twice is swept twice; the own address is asked as any other of it.
    QCOMPARE(m_beside.requestCount(version), 2);
    QCOMPARE(m_near.requestCount(version), 2);
    QCOMPARE(m_own.requestCount(version), 1);
    QCOMPARE(m_stranger.requestCount(version), 1);
    QStringList expected{u"10.77.0.1"_s, u"10.77.0.1"_s, u"10.77.0.4"_s,
                         u"10.77.0.4"_s, u"10.77.0.6"_s, u"10.77.0.6"_s};
    for (int number = 1; number < 511; ++number)
        expected.append(u"10.80.%1.%2"_s.arg(number / 256).arg(number % 256));
    QStringList failed;
    for (const QString &line : log.starting(u"Network error for"_s).filter(u"\"version\""_s))
        failed.append(line.section(u'"', 1, 1));
    expected.sort();
    failed.sort();
    QCOMPARE(failed, expected);
}

void TestDeepScan::stopKeepsWhatWasFound()
{
    const Log log;
    DeviceDiscovery discovery;
    // Without the many hosts that refuse, the run lasts until the silent ones are given up.
    QVERIFY(ip(u"address del 10.80.0.1/23 dev net1"_s));
    m_near.hold(anything);
    m_own.stop();
    discovery.startDiscovery();
    QTRY_COMPARE_WITH_TIMEOUT(rows(discovery), QStringList{rowOf(m_beside)}, patienceMs);
    QVERIFY(discovery.isScanning());
    discovery.stopDiscovery();
    m_near.release(anything);
    QVERIFY(settle(discovery));
    QCOMPARE(rows(discovery), QStringList{rowOf(m_beside)});
    QCOMPARE(discovery.statusText(), u"Discovery stopped"_s);
    QVERIFY(!discovery.isScanning());
}

QTEST_GUILESS_MAIN(TestDeepScan)
#include "TestDeepScan.moc"
