// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "mdns/qMDNS.h"
#include "support/Log.h"
#include "support/MulticastResponder.h"
#include "support/Packets.h"
#include "support/Probing.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace probing;

using TxtRecords = QMap<QString, QString>;

namespace {
const QString starting = u"Starting device discovery..."_s;
const QString searching = u"Searching for Noctaris devices using mDNS..."_s;
const QString stopped = u"Discovery stopped"_s;
const TxtRecords ours = {{u"device"_s, u"noctaris"_s}};

/// Longer than any run here takes.
constexpr int patienceMs = 20000;

/// What multicast DNS reports once a response has told all of a service, or a host's addresses.
void nominate(const SimulatedDevice &device, const TxtRecords &txtRecords = ours)
{
    emit qMDNS::getInstance()->serviceFound(u"_http._tcp.local"_s, u"x._http._tcp.local"_s, u"x.local"_s,
                                            QHostAddress(device.address()), 8624, txtRecords);
}

void nominateHost(const QList<QHostAddress> &addresses)
{
    QHostInfo info;
    info.setHostName(u"astro.local"_s);
    info.setAddresses(addresses);
    emit qMDNS::getInstance()->hostFound(info);
}
} // namespace

/// Runs from their start to each of their ends, in a network whose only address is the loopback device's.
class TestDiscoveryRun : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void findsDevicesByMulticast();
    void waitsForHalfIdentifiedDevices();
    void endsEarlyByADelayOfTheRunBefore();
    void stops();
    void startsAnew();
    void takesHostsWithoutTxtRecords();
    void canBeDestroyedAtAnyTime();

private:
    void waitUntilSearching();

    std::unique_ptr<Log> m_log;
    std::unique_ptr<DeviceDiscovery> m_discovery;
    std::unique_ptr<Statuses> m_statuses;
    std::unique_ptr<SimulatedDevice> m_devices[3]; // on 127.0.0.2 to 127.0.0.4
};

void TestDiscoveryRun::init()
{
    DeviceDiscovery::setVerboseLogging(true);
    m_log = std::make_unique<Log>();
    m_discovery = std::make_unique<DeviceDiscovery>();
    m_statuses = std::make_unique<Statuses>(*m_discovery);
    for (int number = 0; number < 3; ++number)
    {
        const QHostAddress address(u"127.0.0.%1"_s.arg(number + 2));
        m_devices[number] = std::make_unique<SimulatedDevice>(address, number);
        QVERIFY(m_devices[number]->start());
    }
}

void TestDiscoveryRun::cleanup()
{
    m_discovery.reset();
    m_log.reset();
}

/// Starts a run on an object whose multicast DNS is set up already.
void TestDiscoveryRun::waitUntilSearching()
{
    QTRY_COMPARE(m_log->count(u"mDNS initialized asynchronously"_s), 1);
    m_statuses->lines.clear();
    m_log->clear();
    m_discovery->startDiscovery();
    QCOMPARE(m_statuses->lines, QStringList({starting, searching}));
}

void TestDiscoveryRun::findsDevicesByMulticast()
{
    MulticastResponder responder;
    QVERIFY(responder.listen());
    responder.setAnswers(
        {packets::serviceResponse("one", "one", 80, {"a=b", "device=noctaris"}, QHostAddress(u"127.0.0.2"_s)),
         packets::serviceResponse("printer", "printer", 631, {"device=other"}, QHostAddress(u"127.0.0.4"_s)),
         packets::serviceResponse("two", "two", 8624, {"device=NOCTARIS"}, QHostAddress(u"127.0.0.3"_s))});
    QElapsedTimer clock;
    clock.start();

    // The event loop has not run yet, so multicast DNS cannot have reported for duty.
    m_discovery->startDiscovery();
    QCOMPARE(m_discovery->statusText(), u"Initializing network discovery..."_s);
    QVERIFY(m_discovery->isScanning());
    QTRY_COMPARE(m_discovery->deviceCount(), 2);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(rows(*m_discovery), QStringList({rowOf(*m_devices[0]), rowOf(*m_devices[1])}));
    QCOMPARE(m_log->count(u"mDNS initialized, starting pending mDNS discovery"_s), 1);
    QTRY_VERIFY_WITH_TIMEOUT(!m_discovery->isScanning(), patienceMs);
    QCOMPARE(timing(clock.elapsed(), 11000), u"about 11000 ms"_s);
    QCOMPARE(m_statuses->lines, QStringList({starting, u"Initializing network discovery..."_s, searching,
                                             u"mDNS discovery completed. Found 2 Noctaris device(s)"_s,
                                             u"Scan completed. Found 2 Noctaris device(s)"_s}));
    QCOMPARE(m_log->count(u"mDNS phase complete. Found 2 Noctaris devices via mDNS"_s), 1);
    // The end of the run brings the first status check.
    QTRY_COMPARE(m_devices[0]->requestCount(hostname), 2);
    QTRY_COMPARE(m_devices[1]->requestCount(hostname), 2);
    QCOMPARE(m_devices[2]->requestCount(), 0);
    QCOMPARE(responder.questionCount(), 1);
}

void TestDiscoveryRun::waitsForHalfIdentifiedDevices()
{
    SimulatedDevice &half = *m_devices[0];
    SimulatedDevice &withoutId = *m_devices[1];
    SimulatedDevice &silent = *m_devices[2];
    const QString waiting = u"Waiting for mDNS device verification to complete..."_s;
    const QString found = u"mDNS discovery completed. Found 1 Noctaris device(s)"_s;
    const QString completed = u"Scan completed. Found 2 Noctaris device(s)"_s;
    waitUntilSearching();

    // Late enough that their requests outlive the phase.
    QTest::qWait(5000);
    for (const auto &device : m_devices)
    {
        device->hold(anything);
        nominate(*device);
    }
    QVERIFY(answerInOrder(*m_discovery, half, {hostname}));
    QVERIFY(answerInOrder(*m_discovery, withoutId, {hostname, version, model}));
    QTRY_COMPARE_WITH_TIMEOUT(m_log->count(waiting), 1, patienceMs);
    QVERIFY(answerInOrder(*m_discovery, half, {machineId, model, version}));
    QCOMPARE(m_discovery->statusText(), searching);

    // A machine id that is missing, or a device that has said nothing at all, does not hold the phase.
    QTRY_COMPARE_WITH_TIMEOUT(m_discovery->statusText(), found, patienceMs);
    QCOMPARE(m_log->count(waiting), 1);
    QVERIFY(m_discovery->isScanning());
    QVERIFY(answerInOrder(*m_discovery, withoutId, {machineId}));
    QVERIFY(m_discovery->isScanning());
    // The ninth answer ends the run, with three more to come; the device is still welcome.
    half.clearFaults();
    withoutId.clearFaults();
    QVERIFY(answerInOrder(*m_discovery, silent, {hostname}));
    QVERIFY(!m_discovery->isScanning());
    QCOMPARE(m_discovery->statusText(), completed);
    QSignalSpy added(m_discovery.get(), &DeviceDiscovery::deviceAdded);
    QVERIFY(answerInOrder(*m_discovery, silent, {version, machineId, model}));
    QCOMPARE(added, QList<QVariantList>{{silent.address()}});
    QCOMPARE(m_statuses->lines, QStringList({starting, searching, found, completed}));
}

void TestDiscoveryRun::endsEarlyByADelayOfTheRunBefore()
{
    SimulatedDevice &manual = *m_devices[0];
    QVERIFY(admit(*m_discovery, manual));
    waitUntilSearching();
    QTRY_COMPARE_WITH_TIMEOUT(m_log->starting(u"mDNS discovery phase timed out."_s).size(), 1, patienceMs);
    QCOMPARE(manual.requestCount(hostname), 1);

    m_discovery->stopDiscovery();
    m_discovery->startDiscovery();
    QElapsedTimer clock;
    clock.start();
    // A host that has given all its answers, and is no device, holds no phase.
    m_devices[1]->setFault(version, Fault::status(404));
    nominate(*m_devices[1]);
    QTRY_VERIFY_WITH_TIMEOUT(!m_discovery->isScanning(), patienceMs);
    QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(m_statuses->lines,
             QStringList({starting, searching, stopped, starting, searching,
                          u"No new devices found via mDNS. Skipping deep network scan as devices were "
                          "present initially."_s,
                          u"Scan completed. Found 1 Noctaris device(s)"_s}));
    // A device that was added by hand is asked for its state only now that a run has ended.
    QTRY_COMPARE(manual.requestCount(hostname), 2);
}

void TestDiscoveryRun::stops()
{
    SimulatedDevice &row = *m_devices[0];
    SimulatedDevice &found = *m_devices[1];
    QVERIFY(admit(*m_discovery, row));
    waitUntilSearching();
    const QStringList before = rows(*m_discovery);
    row.state().hostname = u"renamed"_s;
    row.hold(anything);
    found.hold(anything);
    m_discovery->refreshAllDevices();
    m_discovery->queryDeviceStatus(row.address());
    nominate(found);
    QVERIFY(waitForHeld(found, 4));
    m_log->clear();
    m_discovery->stopDiscovery();
    row.release(anything);
    found.release(anything);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(m_log->lines(), QStringList({u"info: Stopping discovery - Current pending requests: 7"_s,
                                          u"info: "_s + stopped}));

    // Outside a run nothing that multicast DNS says counts.
    m_log->clear();
    nominate(*m_devices[2]);
    nominateHost({QHostAddress(m_devices[2]->address())});
    QCOMPARE(repliesUnderWay(*m_discovery), 0);
    QCOMPARE(m_log->starting(u"DEBUG: "_s),
             QStringList({u"DEBUG: Ignoring mDNS service found as mDNS phase is over."_s,
                          u"DEBUG: Ignoring mDNS host found as mDNS phase is over."_s}));
    QCOMPARE(m_discovery->statusText(), stopped);
    QVERIFY(!m_discovery->isScanning());
    QCOMPARE(rows(*m_discovery), before);
}

void TestDiscoveryRun::startsAnew()
{
    MulticastResponder responder;
    QVERIFY(responder.listen());
    SimulatedDevice &device = *m_devices[0];
    device.setFault(machineId, Fault::status(404));
    waitUntilSearching();
    nominate(device);
    QVERIFY(settle(*m_discovery));
    nominate(device);
    QCOMPARE(repliesUnderWay(*m_discovery), 0);

    m_discovery->startDiscovery();
    QVERIFY(m_discovery->isScanning());
    QCOMPARE(m_statuses->lines, QStringList({starting, searching, stopped, starting, searching}));
    QTRY_COMPARE(responder.questionCount(), 2);
    // What the first run knew of the address is forgotten.
    device.clearFaults();
    nominate(device);
    QTRY_COMPARE(rows(*m_discovery), QStringList{rowOf(device)});
    QCOMPARE(device.requestCount(version), 2);
}

void TestDiscoveryRun::takesHostsWithoutTxtRecords()
{
    const QHostAddress first(m_devices[0]->address());
    const QHostAddress second(m_devices[1]->address());
    m_devices[2]->setFault(machineId, Fault::status(404));
    waitUntilSearching();
    const QList<TxtRecords> foreign = {{},
                                       {{u"device"_s, u"other"_s}},
                                       {{u"device"_s, u""_s}},
                                       {{u"device"_s, u"noctaris "_s}},
                                       {{u"Device"_s, u"noctaris"_s}}};
    for (const TxtRecords &txtRecords : foreign)
        nominate(*m_devices[0], txtRecords);
    QCOMPARE(m_log->starting(uR"(Service "_http._tcp.local" at "127.0.0.2" is not a)"_s).size(), 5);
    QCOMPARE(repliesUnderWay(*m_discovery), 0);
    nominateHost({QHostAddress(QHostAddress::LocalHostIPv6), first, QHostAddress(m_devices[2]->address()),
                  first, second});
    QCOMPARE(m_log->count(uR"(DEBUG: IP "127.0.0.2" already in m_mdnsFoundIps (from host found).)"_s), 1);
    QCOMPARE(repliesUnderWay(*m_discovery), 12);
    QVERIFY(settle(*m_discovery));
    QStringList listed = rows(*m_discovery);
    listed.sort();
    QCOMPARE(listed, QStringList({rowOf(*m_devices[0]), rowOf(*m_devices[1])}));
}

void TestDiscoveryRun::canBeDestroyedAtAnyTime()
{
    m_devices[0]->hold(anything);
    for (const int waitMs : {-1, 0, 1, 5, 20, 100})
    {
        DeviceDiscovery discovery;
        discovery.startDiscovery();
        discovery.addManualDevice(m_devices[0]->address());
        discovery.startPeriodicStatusUpdates();
        m_log->clear();
        if (waitMs >= 0)
            QTest::qWait(waitMs);
        QVERIFY(repliesUnderWay(discovery) >= 4);
    }
    // Periodic checks are ended with their line, requests without any.
    QCOMPARE(m_log->lines().last(), u"Stopping periodic status updates"_s);
    QCOMPARE(m_log->starting(u"Network error"_s), QStringList());
}

QTEST_GUILESS_MAIN(TestDiscoveryRun)
#include "TestDiscoveryRun.moc"
