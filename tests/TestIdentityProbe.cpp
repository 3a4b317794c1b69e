// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "support/Log.h"
#include "support/Probing.h"

#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using namespace probing;

/// How four answers, in any order and state, make a row of an address or do not.
class TestIdentityProbe : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void asksFourQuestions();
    void keepsTheMachineIdOnlyIfItCameLast_data();
    void keepsTheMachineIdOnlyIfItCameLast();
    void judgesEachAnswer_data();
    void judgesEachAnswer();
    void buildsOnEarlierAnswers();
    void uselessAnswerWithdrawsAnEarlierOne_data();
    void uselessAnswerWithdrawsAnEarlierOne();
    void probesOfOneAddressShareTheirRecord();
    void countsRequests();
    void rowLosesItsMachineIdWhenTheListGrows();
    void machineIdsStayInPlaceWhenRowsMoveUp_data();
    void machineIdsStayInPlaceWhenRowsMoveUp();

private:
    void probe(SimulatedDevice &device, const QList<QByteArray> &order);
    void giveMachineId(int row, SimulatedDevice &device);

    std::unique_ptr<Log> m_log;
    std::unique_ptr<DeviceDiscovery> m_discovery;
    std::vector<std::unique_ptr<SimulatedDevice>> m_devices; // on 127.0.0.2 and up
};

void TestIdentityProbe::init()
{
    DeviceDiscovery::setVerboseLogging(true);
    m_log = std::make_unique<Log>();
    m_discovery = std::make_unique<DeviceDiscovery>();
    QTRY_COMPARE(m_log->count(u"mDNS initialized asynchronously"_s), 1);
    m_log->clear();
    for (int number = 0; number < 5; ++number)
    {
        m_devices.push_back(
            std::make_unique<SimulatedDevice>(QHostAddress(u"127.0.0.%1"_s.arg(number + 2)), number));
        QVERIFY(m_devices.back()->start());
    }
}

void TestIdentityProbe::cleanup()
{
    m_discovery.reset();
    m_devices.clear();
    m_log.reset();
}

/// Probes a device that is no row yet and has it answer in an order.
void TestIdentityProbe::probe(SimulatedDevice &device, const QList<QByteArray> &order)
{
    device.hold(anything);
    m_discovery->addManualDevice(device.address());
    QVERIFY(answerInOrder(*m_discovery, device, order));
    device.clearFaults();
}

/// A row gets its machine id from a second probe of its address that the id's answer ends.
void TestIdentityProbe::giveMachineId(int row, SimulatedDevice &device)
{
    device.hold(anything);
    m_discovery->refreshDevice(row);
    QVERIFY(answerInOrder(*m_discovery, device, machineIdLast));
    device.clearFaults();
}

void TestIdentityProbe::asksFourQuestions()
{
    m_devices[0]->state() = {u"andromeda"_s, u"2.3.1"_s, u"Mini"_s, u"0815"_s};
    probe(*m_devices[0], machineIdLast);
    QCOMPARE(m_log->lines().join(u'\n'), uR"(Received hostname for "127.0.0.2" : "andromeda"
Received version for "127.0.0.2" : "2.3.1"
Raw model API response for "127.0.0.2" : "{\"model\":\"Mini\"}"
Received model for "127.0.0.2" : "Mini"
Received machine_id for "127.0.0.2" : "0815"
Adding device with valid hostname, version, and model: "127.0.0.2"
Adding NEW device: "127.0.0.2" machine_id: "0815")"_s);
    QSet<QByteArray> targets;
    for (const HttpRequest &request : m_devices[0]->requests())
    {
        QCOMPARE(request.method, "GET");
        QCOMPARE(request.port, quint16(8624));
        QCOMPARE(request.header("User-Agent"), "Noctaris-Discovery/1.0");
        QCOMPARE(request.header("Host"), "127.0.0.2:8624");
        QVERIFY(!request.hasHeader("Content-Type"));
        QVERIFY(request.body.isEmpty());
        targets.insert(request.target);
    }
    QCOMPARE(targets, QSet<QByteArray>(machineIdLast.cbegin(), machineIdLast.cend()));
    QCOMPARE(m_devices[0]->requestCount(), 4);
}

void TestIdentityProbe::keepsTheMachineIdOnlyIfItCameLast_data()
{
    QTest::addColumn<QList<QByteArray>>("order");
    QList<QByteArray> order = machineIdLast;
    std::ranges::sort(order);
    do
    {
        const QByteArray names = order.join(' ').replace("/api/info/", "");
        QTest::newRow(names.constData()) << order;
    } while (std::ranges::next_permutation(order).found);
}

void TestIdentityProbe::keepsTheMachineIdOnlyIfItCameLast()
{
    QFETCH(const QList<QByteArray>, order);
    SimulatedDevice &device = *m_devices[0];
    SimulatedDevice &sameMachine = *m_devices[1];
    const QString id = device.state().machineId;
    const bool isIdLast = order.last() == machineId;

    probe(device, order);
    QCOMPARE(rows(*m_discovery), QStringList{rowOf(device)});
    QCOMPARE(m_log->starting(u"Adding NEW device:"_s),
             QStringList{uR"(Adding NEW device: "127.0.0.2" machine_id: "%1")"_s.arg(isIdLast ? id : u""_s)});

    // The row has no id yet, whatever the order was: it is a copy. A second probe may bring it.
    device.hold(anything);
    m_discovery->refreshAllDevices();
    QVERIFY(answerInOrder(*m_discovery, device, order));

    sameMachine.state() = {u"renamed"_s, u"9.9"_s, u"Other"_s, id};
    probe(sameMachine, machineIdLast);
    const QStringList folded{u"127.0.0.2 renamed 9.9 Other Online"_s};
    const QStringList apart{rowOf(device), rowOf(sameMachine)};
    QCOMPARE(rows(*m_discovery), isIdLast ? folded : apart);
    QCOMPARE(m_discovery->data(m_discovery->index(0), 264).toStringList(), QStringList());
}

void TestIdentityProbe::judgesEachAnswer_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("line");          // the start of the one line that is logged, or empty
    QTest::addColumn<QString>("hostnameInRow"); // empty if there is to be no row
    const auto row = [](const char *name, const QByteArray &path, const Fault &fault, const QString &line,
                        const QString &hostnameInRow = {}) {
        QTest::newRow(name) << path << fault << line << hostnameInRow;
    };
    const QString invalid = uR"(Received invalid/empty %1 for "127.0.0.2")"_s;
    for (const char *body : {R"({"hostname":"N/A"})", R"({"hostname":"Unknown"})", R"({"hostname":""})",
                             R"({"Hostname":"x"})", R"({"hostname":7})", R"({"payload":{"hostname":"x"}})"})
        row(body, hostname, Fault::body(body), invalid.arg("hostname"_L1));
    const QString parseError = uR"(JSON parse error for "127.0.0.2" type: "%1" - Error: )"_s;
    for (const char *body : {"hostname=x", R"({"hostname":"x"} x)"})
        row(body, hostname, Fault::body(body), parseError.arg("hostname"_L1));
    row("empty body", hostname, Fault::body(""), parseError.arg("hostname"_L1));
    const QString networkError = uR"(Network error for "127.0.0.2" "%1" : )"_s;
    row("HTTP 500 with a good body", hostname, Fault::status(500), networkError.arg("hostname"_L1));
    row("cut short", hostname, Fault::partial(), networkError.arg("hostname"_L1));
    row("dropped", hostname, Fault::drop(), networkError.arg("hostname"_L1));
    row("version N/A", version, Fault::body(R"({"version":"N/A"})"), invalid.arg("version"_L1));
    row("model without its key", model, Fault::body(R"({"version":"1"})"), invalid.arg("model"_L1));
    row("array", model, Fault::body("[]"), parseError.arg("model"_L1) + u"\"no error occurred\""_s);
    row("no machine-id endpoint", machineId, Fault::answer(404, "{}"), networkError.arg("machine_id"_L1));
    row("machine id N/A", machineId, Fault::body(R"({"machine_id":"N/A"})"), {});
    row("machine id with the path's key", machineId, Fault::body(R"({"machine-id":"x"})"), {});
    row("other case", hostname, Fault::body(R"({"hostname":"n/a"})"), {}, u"n/a"_s);
    row("blank", hostname, Fault::body(R"({"hostname":" "})"), {}, u" "_s);
    row("redirected", hostname, Fault::redirect("/elsewhere"), {}, u"moved"_s);
    row("all well", anything, {}, {}, u"andromeda"_s);
}

void TestIdentityProbe::judgesEachAnswer()
{
    QFETCH(const QByteArray, path);
    QFETCH(const Fault, fault);
    QFETCH(const QString, hostnameInRow);
    QFETCH(const QString, line);
    DeviceDiscovery::setVerboseLogging(false);
    SimulatedDevice &device = *m_devices[0];
    device.setFault(path, fault);
    device.answer("/elsewhere", R"({"hostname":"moved"})");

    m_discovery->addManualDevice(device.address());
    QVERIFY(settle(*m_discovery));
    QCOMPARE(m_discovery->deviceCount(), hostnameInRow.isEmpty() ? 0 : 1);
    QCOMPARE(m_discovery->data(m_discovery->index(0), 258).toString(), hostnameInRow);
    QCOMPARE(m_log->lines().size(), line.isEmpty() ? 0 : 1);
    QVERIFY2(m_log->lines().join(u'\n').startsWith(line), qPrintable(m_log->lines().join(u'\n')));
    QCOMPARE(m_discovery->statusText(), u"Adding device 127.0.0.2..."_s);

    // A failure is not held against the host: the next probe that goes well lists it.
    device.clearFaults();
    // Qt 6.8 lets the first request after a dropped connection fail by itself; a fresh start does not.
    m_discovery->findChild<QNetworkAccessManager *>()->clearConnectionCache();
    if (hostnameInRow.isEmpty())
        QVERIFY(admit(*m_discovery, device));
}

void TestIdentityProbe::buildsOnEarlierAnswers()
{
    // A stop keeps them, a new run forgets them.
    for (const bool isRunStarted : {false, true})
    {
        SimulatedDevice &device = *m_devices[isRunStarted ? 1 : 0];
        device.answer(hostname, R"({"hostname":"N/A"})");
        m_discovery->addManualDevice(device.address());
        QVERIFY(settle(*m_discovery));
        if (isRunStarted)
            m_discovery->startDiscovery();
        m_discovery->stopDiscovery();
        const QString expected = rowOf(device);
        device.state().version = u"9.9"_s;
        device.clearFaults();
        probe(device, {hostname});
        QCOMPARE(rows(*m_discovery).contains(expected), !isRunStarted);

        // What comes after the admission begins a new record, and lacks its host name, or completes the
        // first.
        device.release(anything);
        QVERIFY(settle(*m_discovery));
        QCOMPARE(rows(*m_discovery).last(), isRunStarted ? rowOf(device) : expected);
    }
}

void TestIdentityProbe::uselessAnswerWithdrawsAnEarlierOne_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::newRow("error") << Fault::status(503);
    QTest::newRow("invalid") << Fault::body(R"({"version":"N/A"})");
    QTest::newRow("no object") << Fault::body("[]");
}

void TestIdentityProbe::uselessAnswerWithdrawsAnEarlierOne()
{
    QFETCH(const Fault, fault);
    SimulatedDevice &device = *m_devices[0];
    QVERIFY(admit(*m_discovery, device));
    const QStringList before = rows(*m_discovery);

    // Version, model and machine id of this probe wait for a host name; the row stays as it is.
    device.state().version = u"9.9"_s;
    device.answer(hostname, R"({"hostname":"N/A"})");
    m_discovery->refreshAllDevices();
    QVERIFY(settle(*m_discovery));
    QCOMPARE(rows(*m_discovery), before);

    device.clearFaults();
    device.hold(anything);
    m_discovery->refreshAllDevices();
    QVERIFY(waitForHeld(device, 4));
    QVERIFY(device.releaseOne(version, fault));
    QVERIFY(settle(*m_discovery, 3));
    QVERIFY(answerInOrder(*m_discovery, device, {hostname, model}));
    QCOMPARE(rows(*m_discovery), before);
    m_discovery->refreshAllDevices();
    QVERIFY(answerInOrder(*m_discovery, device, {version}));
    QCOMPARE(rows(*m_discovery), QStringList{rowOf(device)});
}

void TestIdentityProbe::probesOfOneAddressShareTheirRecord()
{
    SimulatedDevice &device = *m_devices[0];
    QSignalSpy added(m_discovery.get(), &DeviceDiscovery::deviceAdded);
    QSignalSpy changed(m_discovery.get(), &DeviceDiscovery::dataChanged);
    device.hold(model);
    m_discovery->addManualDevice(device.address());
    QVERIFY(waitForHeld(device, 1));
    QVERIFY(settle(*m_discovery, 1));
    device.state().version = u"9.9"_s;
    m_discovery->addManualDevice(device.address());
    QVERIFY(waitForHeld(device, 2));
    QVERIFY(settle(*m_discovery, 2));
    QCOMPARE(added.count(), 0);

    QVERIFY(device.releaseOne(model));
    QVERIFY(settle(*m_discovery, 1));
    QCOMPARE(rows(*m_discovery), QStringList{rowOf(device)});
    QVERIFY(device.releaseOne(model));
    QVERIFY(settle(*m_discovery));
    QCOMPARE(added, QList<QVariantList>{{device.address()}});
    QCOMPARE(changed.count(), 0);
}

void TestIdentityProbe::countsRequests()
{
    // The model is not counted, but its answer is; the count of the first probe ends at none, not below.
    probe(*m_devices[0], machineIdLast);
    const QStringList before = rows(*m_discovery);
    probe(*m_devices[1], {model});
    m_log->clear();
    m_discovery->stopDiscovery();
    QCOMPARE(m_log->lines(), QStringList({u"info: Stopping discovery - Current pending requests: 2"_s,
                                          u"info: Discovery stopped"_s}));
    // The answers under way are dropped without a word.
    m_devices[1]->release(anything);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(m_log->lines().size(), 2);
    QCOMPARE(rows(*m_discovery), before);
}

void TestIdentityProbe::rowLosesItsMachineIdWhenTheListGrows()
{
    QVERIFY(admit(*m_discovery, *m_devices[0]));
    giveMachineId(0, *m_devices[0]);
    for (int number = 5; number < 20; ++number)
    {
        m_devices.push_back(
            std::make_unique<SimulatedDevice>(QHostAddress(u"127.0.0.%1"_s.arg(number + 2)), number));
        QVERIFY(admit(*m_discovery, *m_devices.back()));
    }
    m_devices[1]->state().machineId = m_devices[0]->state().machineId;
    probe(*m_devices[1], machineIdLast);
    QCOMPARE(m_discovery->deviceCount(), 17);
}

void TestIdentityProbe::machineIdsStayInPlaceWhenRowsMoveUp_data()
{
    QTest::addColumn<int>("removed");
    QTest::addColumn<int>("expectedRow"); // where the second device's machine id leads to
    QTest::newRow("the first leaves, the second keeps its own") << 0 << 0;
    QTest::newRow("the second leaves, the third takes its place and id") << 1 << 1;
    QTest::newRow("the third leaves, nothing moves") << 2 << 1;
}

void TestIdentityProbe::machineIdsStayInPlaceWhenRowsMoveUp()
{
    QFETCH(const int, removed);
    QFETCH(const int, expectedRow);
    for (int row = 0; row < 3; ++row)
        QVERIFY(admit(*m_discovery, *m_devices[row]));
    for (int row = 0; row < 3; ++row)
        giveMachineId(row, *m_devices[row]);
    // A probe whose machine id comes too early to be kept takes none away.
    m_devices[1]->hold(anything);
    m_discovery->refreshDevice(1);
    QVERIFY(answerInOrder(*m_discovery, *m_devices[1], {machineId, version, hostname, model}));
    m_discovery->removeDevice(removed);
    QStringList expected = rows(*m_discovery);
    const QString address = expected[expectedRow].section(u' ', 0, 0);
    expected[expectedRow] = address + u" renamed 9.9 Other Online"_s;

    m_devices[3]->state() = {u"renamed"_s, u"9.9"_s, u"Other"_s, m_devices[1]->state().machineId};
    probe(*m_devices[3], machineIdLast);
    QCOMPARE(rows(*m_discovery), expected);
}

QTEST_GUILESS_MAIN(TestIdentityProbe)
#include "TestIdentityProbe.moc"
