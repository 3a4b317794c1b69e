// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "support/Log.h"
#include "support/Probing.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace probing;

/// A fault for each of the keys it names.
using Faults = QList<std::pair<QByteArray, Fault>>;

/// How rows are kept current: at the user's word, and by themselves.
class TestRefreshAndStatus : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void refreshTellsItsOutcome_data();
    void refreshTellsItsOutcome();
    void newRefreshReplacesTheOld();
    void refreshEndsInSilence();
    void statusFollowsTheAnswer_data();
    void statusFollowsTheAnswer();
    void returnBringsAFullProbe();
    void statusOfAVanishedRowIsDropped();
    void checksEveryTenSeconds();

private:
    int guardCount() const;

    std::unique_ptr<Log> m_log;
    std::unique_ptr<DeviceDiscovery> m_discovery;
    std::unique_ptr<Statuses> m_statuses;
    std::unique_ptr<SimulatedDevice> m_devices[2]; // on 127.0.0.2 and 127.0.0.3
};

void TestRefreshAndStatus::init()
{
    DeviceDiscovery::setVerboseLogging(true);
    m_log = std::make_unique<Log>();
    m_discovery = std::make_unique<DeviceDiscovery>();
    QTRY_COMPARE(m_log->count(u"mDNS initialized asynchronously"_s), 1);
    for (int number = 0; number < 2; ++number)
    {
        const QHostAddress address(u"127.0.0.%1"_s.arg(number + 2));
        m_devices[number] = std::make_unique<SimulatedDevice>(address, number);
        QVERIFY(admit(*m_discovery, *m_devices[number]));
        m_devices[number]->clearRequests();
    }
    m_statuses = std::make_unique<Statuses>(*m_discovery);
    m_log->clear();
}

void TestRefreshAndStatus::cleanup()
{
    m_discovery.reset();
    m_log.reset();
}

/// How many guard timers of refreshes there are, next to the three timers that are always there.
int TestRefreshAndStatus::guardCount() const
{
    return static_cast<int>(m_discovery->findChildren<QTimer *>(Qt::FindDirectChildrenOnly).size()) - 3;
}

void TestRefreshAndStatus::refreshTellsItsOutcome_data()
{
    QTest::addColumn<Faults>("faults");
    QTest::addColumn<QString>("outcome");
    const QString success = u"Device 127.0.0.3 refreshed successfully"_s;
    const QString partly = u"Device 127.0.0.3 partially refreshed (%1/3 requests succeeded)"_s;
    const QString failed = u"Failed to refresh device 127.0.0.3"_s;
    const Fault error = Fault::status(500);
    const Fault invalid = Fault::body(R"({"hostname":"N/A","version":"N/A","model":"N/A"})");
    const Fault list = Fault::body("[]");
    QTest::newRow("all well") << Faults() << success;
    QTest::newRow("no machine id") << Faults{{machineId, error}} << success;
    QTest::newRow("model fails") << Faults{{model, error}} << partly.arg(2);
    QTest::newRow("two are invalid") << Faults{{hostname, invalid}, {version, invalid}} << partly.arg(1);
    QTest::newRow("all fail") << Faults{{hostname, list}, {version, error}, {model, invalid}} << failed;
}

void TestRefreshAndStatus::refreshTellsItsOutcome()
{
    QFETCH(const Faults, faults);
    QFETCH(const QString, outcome);
    SimulatedDevice &device = *m_devices[1];
    const QString before = rowOf(device);
    device.state() = {u"new"_s, u"9.9"_s, u"Max"_s, device.state().machineId};
    for (const auto &[key, fault] : faults)
        device.setFault(key, fault);
    m_discovery->refreshDevice(1);
    QCOMPARE(guardCount(), 1);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(m_statuses->lines, QStringList({u"Refreshing device 127.0.0.3..."_s, outcome}));
    QCOMPARE(rows(*m_discovery).at(1), faults.isEmpty() ? rowOf(device) : before);
    QTRY_COMPARE(guardCount(), 0);
    QCOMPARE(m_devices[0]->requestCount(), 0);

    // The fresh values wait for those that were missing; nothing else needs to be answered again.
    device.clearFaults();
    device.hold(anything);
    m_discovery->refreshAllDevices();
    for (const auto &[key, fault] : faults)
        QVERIFY(answerInOrder(*m_discovery, device, {key}));
    QTRY_COMPARE(rows(*m_discovery).at(1), rowOf(device));
}

void TestRefreshAndStatus::newRefreshReplacesTheOld()
{
    SimulatedDevice &device = *m_devices[0];
    device.hold(anything);
    m_discovery->refreshDevice(0);
    QVERIFY(answerInOrder(*m_discovery, device, {hostname}));
    const QList<QTimer *> before = m_discovery->findChildren<QTimer *>(Qt::FindDirectChildrenOnly);
    m_discovery->refreshDevice(0);
    QTRY_COMPARE(guardCount(), 1);
    QVERIFY(m_discovery->findChildren<QTimer *>(Qt::FindDirectChildrenOnly) != before);
    // The first one's host name does not count for the second; its other answers do.
    QVERIFY(answerInOrder(*m_discovery, device, {version, model}));
    QCOMPARE(m_statuses->lines, QStringList({u"Refreshing device 127.0.0.2..."_s}));
    QVERIFY(answerInOrder(*m_discovery, device, {hostname}));
    QCOMPARE(m_statuses->lines.last(), u"Device 127.0.0.2 refreshed successfully"_s);
    QTRY_COMPARE(guardCount(), 0);
    device.release(anything);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(m_statuses->lines.size(), 2);
}

void TestRefreshAndStatus::refreshEndsInSilence()
{
    // A stop drops the answers of the first refresh without a word: nothing but its guard can end it. The
    // device of the second keeps silent, and its requests end by themselves.
    const QString failed = u"Failed to refresh device 127.0.0.3"_s;
    const QString timedOut = u"Refresh timed out for device 127.0.0.2"_s;
    m_devices[1]->hold(anything);
    m_discovery->refreshDevice(0);
    m_discovery->stopDiscovery();
    QElapsedTimer clock;
    clock.start();
    m_discovery->refreshDevice(1);
    QTRY_COMPARE_WITH_TIMEOUT(m_discovery->statusText(), failed, 20000);
    QCOMPARE(timing(clock.elapsed(), 10000), u"about 10000 ms"_s);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(m_log->starting(u"Network error for"_s).size(), 4);
    QCOMPARE(guardCount(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(m_discovery->statusText(), timedOut, 20000);
    QCOMPARE(timing(clock.elapsed(), 15000), u"about 15000 ms"_s);
    QCOMPARE(m_log->count(uR"(warning: Refresh operation timed out for "127.0.0.2")"_s), 1);
    QTRY_COMPARE(guardCount(), 0);
    QVERIFY(m_discovery->index(1).data(261).toBool());
}

void TestRefreshAndStatus::statusFollowsTheAnswer_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QList<int>>("changedRoles");
    const QList<int> offline = {261, 263};
    QTest::newRow("well") << Fault() << QList<int>();
    QTest::newRow("renamed") << Fault::body(R"({"hostname":"renamed"})") << QList<int>{258};
    for (const char *body : {R"({"hostname":"N/A"})", R"({"hostname":"Unknown"})", R"({"hostname":""})",
                             R"({"hostname":1})", R"(["x"])", "x"})
        QTest::newRow(body) << Fault::body(body) << offline;
    QTest::newRow("HTTP 500 with a good body") << Fault::status(500) << offline;
    QTest::newRow("dropped") << Fault::drop() << offline;
    QTest::newRow("silent") << Fault::hold() << offline;
}

void TestRefreshAndStatus::statusFollowsTheAnswer()
{
    QFETCH(const Fault, fault);
    QFETCH(const QList<int>, changedRoles);
    const bool isOnline = !changedRoles.contains(261);
    QSignalSpy changed(m_discovery.get(), &DeviceDiscovery::dataChanged);
    m_devices[1]->setFault(hostname, fault);
    QElapsedTimer clock;
    clock.start();
    m_discovery->queryDeviceStatus(u"127.0.0.3"_s);
    QVERIFY(settle(*m_discovery));
    if (fault.isHeld)
        QCOMPARE(timing(clock.elapsed(), 5000), u"about 5000 ms"_s);
    // Once more changes nothing, and nothing is said of either; no other question is asked.
    m_devices[1]->setFault(hostname, fault.isHeld ? Fault::status(500) : fault);
    m_discovery->queryDeviceStatus(u"127.0.0.3"_s);
    QVERIFY(settle(*m_discovery));

    const QModelIndex row = m_discovery->index(1);
    const QVariantList change{row, row, QVariant::fromValue(changedRoles)};
    QCOMPARE(changed, changedRoles.isEmpty() ? QList<QVariantList>() : QList<QVariantList>{change});
    QCOMPARE(row.data(261).toBool(), isOnline);
    QCOMPARE(row.data(263).toString(), isOnline ? u"Online"_s : u"Offline"_s);
    QCOMPARE(row.data(258).toString() == u"renamed"_s, changedRoles.contains(258));
    QCOMPARE(m_log->lines() + m_statuses->lines, QStringList());
    QCOMPARE(m_devices[1]->requestCount(), m_devices[1]->requestCount(hostname));
    QCOMPARE(m_devices[1]->requests().first().header("User-Agent"), "Noctaris-Discovery/1.0");
    QVERIFY(m_discovery->index(0).data(261).toBool());
}

void TestRefreshAndStatus::returnBringsAFullProbe()
{
    SimulatedDevice &device = *m_devices[0];
    device.stop();
    m_discovery->queryDeviceStatus(device.address());
    QTRY_COMPARE(m_discovery->index(0).data(263).toString(), u"Offline"_s);
    m_log->clear();

    device.state() = {u"back"_s, u"9.9"_s, u"Max"_s, u"other"_s};
    QVERIFY(device.start());
    QSignalSpy changed(m_discovery.get(), &DeviceDiscovery::dataChanged);
    QSignalSpy back(m_discovery.get(), &DeviceDiscovery::deviceBackOnline);
    m_discovery->queryDeviceStatus(device.address());
    QTRY_COMPARE(rows(*m_discovery).first(), rowOf(device));
    QVERIFY(settle(*m_discovery));
    const QModelIndex row = m_discovery->index(0);
    QCOMPARE(changed, QList<QVariantList>({{row, row, QVariant::fromValue(QList<int>{261, 263})},
                                           {row, row, QVariant::fromValue(QList<int>{258})},
                                           {row, row, QVariant::fromValue(QList<int>())}}));
    QCOMPARE(m_log->lines().first(), uR"(info: Device "127.0.0.2" came back online )"_s +
                                         u"after being offline - refreshing full device info"_s);
    QCOMPARE(back.count(), 0);
    QCOMPARE(m_statuses->lines, QStringList());
}

void TestRefreshAndStatus::statusOfAVanishedRowIsDropped()
{
    SimulatedDevice &device = *m_devices[0];
    device.hold(anything);
    m_discovery->queryDeviceStatus(device.address());
    QVERIFY(waitForHeld(device, 1));
    m_discovery->removeDevice(0);
    QSignalSpy changed(m_discovery.get(), &DeviceDiscovery::dataChanged);
    device.state().hostname = u"renamed"_s;
    device.release(anything);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(rows(*m_discovery), QStringList{rowOf(*m_devices[1])});
    QCOMPARE(changed.count(), 0);
    QCOMPARE(m_log->lines(), QStringList());
}

void TestRefreshAndStatus::checksEveryTenSeconds()
{
    // Row 1 is asked at once and by every tick; a call in between asks only who was not asked just before.
    SimulatedDevice later(QHostAddress(u"127.0.0.4"_s), 2);
    const auto asked = [&] {
        return QList<int>{m_devices[0]->requestCount(hostname), m_devices[1]->requestCount(hostname),
                          later.requestCount(hostname)};
    };
    QElapsedTimer clock;
    clock.start();
    m_discovery->startPeriodicStatusUpdates();
    m_discovery->startPeriodicStatusUpdates();
    QVERIFY(settle(*m_discovery));
    QCOMPARE(asked(), QList<int>({1, 1, 0}));
    QVERIFY(admit(*m_discovery, later));
    later.clearRequests();
    QTest::qWait(3000);
    m_discovery->stopPeriodicStatusUpdates();
    m_discovery->stopPeriodicStatusUpdates();
    QCOMPARE(m_log->count(u"Stopping periodic status updates"_s), 1);
    m_discovery->startPeriodicStatusUpdates();
    QVERIFY(settle(*m_discovery));
    QCOMPARE(asked(), QList<int>({1, 1, 1}));

    // The ticks count from the second start, and neither a run's start nor its stop moves them.
    QTest::qWait(5500);
    m_discovery->onPeriodicStatusUpdate();
    m_discovery->startDiscovery();
    m_discovery->stopDiscovery();
    QVERIFY(settle(*m_discovery));
    QCOMPARE(asked(), QList<int>({1, 1, 1}));
    m_devices[0]->stop();
    QTRY_COMPARE_WITH_TIMEOUT(m_discovery->index(0).data(263).toString(), u"Offline"_s, 10000);
    QCOMPARE(timing(clock.elapsed(), 13000), u"about 13000 ms"_s);
    QTRY_COMPARE(asked(), QList<int>({1, 2, 2}));
    // Whoever is offline stays listed, and is asked as all the others are.
    QVERIFY(m_devices[0]->start());
    QTRY_COMPARE_WITH_TIMEOUT(rows(*m_discovery).first(), rowOf(*m_devices[0]), 12000);
    QCOMPARE(timing(clock.elapsed(), 23000), u"about 23000 ms"_s);
    QTRY_COMPARE(asked().mid(1), QList<int>({3, 3}));
    QCOMPARE(m_log->count(u"Starting periodic status updates every 10 seconds"_s), 2);
}

QTEST_GUILESS_MAIN(TestRefreshAndStatus)
#include "TestRefreshAndStatus.moc"
