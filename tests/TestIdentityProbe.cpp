// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "support/Log.h"
#include "support/Probing.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
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
    void logsInItsOwnWords_data();
    void logsInItsOwnWords();
    void buildsOnEarlierAnswers_data();
    void buildsOnEarlierAnswers();
    void uselessAnswerWithdrawsAnEarlierOne_data();
    void uselessAnswerWithdrawsAnEarlierOne();
    void probesOfOneAddressShareTheirRecord();
    void countsRequests_data();
    void countsRequests();
    void rowLosesItsMachineIdWhenTheListGrows();
    void machineIdsStayInPlaceWhenRowsMoveUp_data();
    void machineIdsStayInPlaceWhenRowsMoveUp();
    void takesUnknownTagsForIdentityAnswers();

private:
    void probe(SimulatedDevice &device, const QList<QByteArray> &order);
    void giveMachineId(int row, SimulatedDevice &device);
    bool askForeign(const QByteArray &path, const QString &address, const QString &tag);

    std::unique_ptr<Log> m_log;
    std::unique_ptr<DeviceDiscovery> m_discovery;
    std::vector<std::unique_ptr<SimulatedDevice>> m_devices; // on 127.0.0.2 and up
    QNetworkAccessManager m_foreign;
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
    QVERIFY(admit(*m_discovery, *m_devices[0]));
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
    QTest::addColumn<QString>("hostnameInRow"); // empty if there is to be no row
    QTest::addColumn<QString>("line");          // the start of the one line that is logged, or empty

    const QString good = u"andromeda"_s;
    const QString invalid = uR"(Received invalid/empty hostname for "127.0.0.2")"_s;
    const QString parseError = uR"(JSON parse error for "127.0.0.2" type: "hostname" - Error: )"_s;
    const QString networkError = uR"(Network error for "127.0.0.2" "hostname" : )"_s;
    const auto row = [](const char *name, const QByteArray &path, const Fault &fault,
                        const QString &hostnameInRow, const QString &line) {
        QTest::newRow(name) << path << fault << hostnameInRow << line;
    };
    row("N/A", hostname, Fault::body(R"({"hostname":"N/A"})"), {}, invalid);
    row("Unknown", hostname, Fault::body(R"({"hostname":"Unknown"})"), {}, invalid);
    row("empty", hostname, Fault::body(R"({"hostname":""})"), {}, invalid);
    row("other key", hostname, Fault::body(R"({"Hostname":"x"})"), {}, invalid);
    row("number", hostname, Fault::body(R"({"hostname":7})"), {}, invalid);
    row("enveloped", hostname, Fault::body(R"({"result":true,"payload":{"hostname":"x"}})"), {}, invalid);
    row("other case", hostname, Fault::body(R"({"hostname":"n/a"})"), u"n/a"_s, {});
    row("blank", hostname, Fault::body(R"({"hostname":" "})"), u" "_s, {});
    row("array", hostname, Fault::body(R"(["hostname","x"])"), {}, parseError + u"\"no error occurred\""_s);
    row("no JSON", hostname, Fault::body("hostname=x"), {}, parseError);
    row("empty body", hostname, Fault::body(""), {}, parseError);
    row("text behind the object", hostname, Fault::body(R"({"hostname":"x"} x)"), {}, parseError);
    row("HTTP 500 with a good body", hostname, Fault::status(500), {}, networkError);
    row("HTTP 404", hostname, Fault::answer(404, "{}"), {}, networkError);
    row("cut short", hostname, Fault::partial(), {}, networkError);
    row("no HTTP", hostname, Fault::broken(), {}, networkError);
    row("dropped", hostname, Fault::drop(), {}, networkError);
    row("redirected", hostname, Fault::redirect("/elsewhere"), u"moved"_s, {});
    row("version N/A", version, Fault::body(R"({"version":"N/A"})"), {},
        uR"(Received invalid/empty version for "127.0.0.2")"_s);
    row("version null", version, Fault::body(R"({"version":null})"), {},
        uR"(Received invalid/empty version for "127.0.0.2")"_s);
    row("model without its key", model, Fault::body(R"({"version":"1"})"), {},
        uR"(Received invalid/empty model for "127.0.0.2")"_s);
    row("model as array", model, Fault::body("[]"), {},
        uR"(JSON parse error for "127.0.0.2" type: "model" - Error: "no error occurred")"_s);
    row("no machine-id endpoint", machineId, Fault::answer(404, "{}"), {},
        uR"(Network error for "127.0.0.2" "machine_id" : )"_s);
    row("machine id N/A", machineId, Fault::body(R"({"machine_id":"N/A"})"), {}, {});
    row("machine id with the path's key", machineId, Fault::body(R"({"machine-id":"x"})"), {}, {});
    row("all well", anything, {}, good, {});
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
    if (hostnameInRow.isEmpty())
        QVERIFY(admit(*m_discovery, device));
}

void TestIdentityProbe::logsInItsOwnWords_data()
{
    QTest::addColumn<bool>("isVerbose");
    QTest::addColumn<bool>("isRefresh");
    QTest::addColumn<QStringList>("lines");
    const QStringList names = uR"(Received hostname for "127.0.0.2" : "andromeda"
Received version for "127.0.0.2" : "2.3.1"
Raw model API response for "127.0.0.2" : "{\"model\":\"Mini\"}"
Received model for "127.0.0.2" : "Mini"
Received machine_id for "127.0.0.2" : "0815"
Adding device with valid hostname, version, and model: "127.0.0.2")"_s.split(u'\n');
    const QString added = uR"(Adding NEW device: "127.0.0.2" machine_id: "0815")"_s;
    const QString updated = uR"(Updating existing device at index 0 IP: "127.0.0.2")"_s;
    const QStringList refreshed = uR"(Refresh: hostname received successfully for "127.0.0.2"
%1
Checking refresh completion for "127.0.0.2" - hostname: 1 version: 0 model: 0
Refresh: version received successfully for "127.0.0.2"
%2
Checking refresh completion for "127.0.0.2" - hostname: 1 version: 1 model: 0
%3
Refresh: model received successfully for "127.0.0.2"
%4
Checking refresh completion for "127.0.0.2" - hostname: 1 version: 1 model: 1
Refresh completed for "127.0.0.2" - success count: 3
%5
%6)"_s.arg(names[0], names[1], names[2], names[3], names[4], names[5])
                                      .split(u'\n');
    QTest::newRow("verbose") << true << false << names + QStringList{added};
    QTest::newRow("quiet") << false << false << QStringList();
    QTest::newRow("verbose refresh") << true << true << refreshed + QStringList{updated};
    QTest::newRow("quiet refresh") << false << true << QStringList{updated};
}

void TestIdentityProbe::logsInItsOwnWords()
{
    QFETCH(const bool, isVerbose);
    QFETCH(const bool, isRefresh);
    QFETCH(const QStringList, lines);
    SimulatedDevice &device = *m_devices[0];
    device.state() = {u"andromeda"_s, u"2.3.1"_s, u"Mini"_s, u"0815"_s};
    if (isRefresh)
        QVERIFY(admit(*m_discovery, device));
    m_log->clear();
    DeviceDiscovery::setVerboseLogging(isVerbose);
    isRefresh ? giveMachineId(0, device) : probe(device, machineIdLast);
    QCOMPARE(m_log->lines(), lines);
}

void TestIdentityProbe::buildsOnEarlierAnswers_data()
{
    QTest::addColumn<bool>("isStarted");
    QTest::addColumn<bool>("isStopped");
    QTest::addColumn<bool>("isListed");
    QTest::newRow("nothing between") << false << false << true;
    QTest::newRow("a stop keeps them") << false << true << true;
    QTest::newRow("a new run forgets them") << true << true << false;
}

void TestIdentityProbe::buildsOnEarlierAnswers()
{
    QFETCH(const bool, isStarted);
    QFETCH(const bool, isStopped);
    QFETCH(const bool, isListed);
    SimulatedDevice &device = *m_devices[0];
    device.answer(hostname, R"({"hostname":"N/A"})");
    m_discovery->addManualDevice(device.address());
    QVERIFY(settle(*m_discovery));
    if (isStarted)
        m_discovery->startDiscovery();
    if (isStopped)
        m_discovery->stopDiscovery();

    const QString expected = rowOf(device);
    device.state().version = u"9.9"_s;
    device.clearFaults();
    device.hold(anything);
    m_discovery->addManualDevice(device.address());
    QVERIFY(answerInOrder(*m_discovery, device, {hostname}));
    QCOMPARE(rows(*m_discovery), isListed ? QStringList{expected} : QStringList());

    // What comes after the admission begins a new record, and lacks its host name, or completes the first.
    device.release(anything);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(rows(*m_discovery), QStringList{isListed ? expected : rowOf(device)});
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

void TestIdentityProbe::countsRequests_data()
{
    QTest::addColumn<int>("probes");
    QTest::addColumn<int>("statusQueries");
    QTest::addColumn<QList<QByteArray>>("answered");
    QTest::addColumn<int>("pending");
    QTest::newRow("the model is not counted") << 1 << 0 << QList<QByteArray>() << 3;
    QTest::newRow("but its answer is") << 1 << 0 << QList<QByteArray>{model} << 2;
    QTest::newRow("three answers") << 1 << 0 << QList<QByteArray>{machineId, version, hostname} << 0;
    QTest::newRow("never below none") << 1 << 0 << machineIdLast << 0;
    QTest::newRow("two probes") << 2 << 0 << QList<QByteArray>() << 6;
    QTest::newRow("two probes answered") << 2 << 0 << machineIdLast + machineIdLast << 0;
    QTest::newRow("a status query") << 0 << 1 << QList<QByteArray>() << 1;
    QTest::newRow("a probe and a status query") << 1 << 1 << QList<QByteArray>{version} << 3;
}

void TestIdentityProbe::countsRequests()
{
    QFETCH(const int, probes);
    QFETCH(const int, statusQueries);
    QFETCH(const QList<QByteArray>, answered);
    QFETCH(const int, pending);
    SimulatedDevice &device = *m_devices[0];
    device.hold(anything);
    for (int i = 0; i < probes; ++i)
        m_discovery->addManualDevice(u"127.0.0.2"_s);
    for (int i = 0; i < statusQueries; ++i)
        m_discovery->queryDeviceStatus(u"127.0.0.2"_s);
    QVERIFY(answerInOrder(*m_discovery, device, answered));
    const QStringList before = rows(*m_discovery);
    m_log->clear();

    m_discovery->stopDiscovery();
    const QString line = u"info: Stopping discovery - Current pending requests: %1"_s.arg(pending);
    QCOMPARE(m_log->lines(), QStringList({line, u"info: Discovery stopped"_s}));
    // The answers under way are dropped without a word.
    device.release(anything);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(m_log->lines().size(), 2);
    QCOMPARE(rows(*m_discovery), before);
    QCOMPARE(m_discovery->statusText(), u"Discovery stopped"_s);
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

/// Asks the first device by another network manager, has the answer arrive as if it were an own one, and
/// waits until it is released.
bool TestIdentityProbe::askForeign(const QByteArray &path, const QString &address, const QString &tag)
{
    const QUrl url(u"http://127.0.0.2:8624"_s + QLatin1StringView(path));
    QPointer<QNetworkReply> reply = m_foreign.get(QNetworkRequest(url));
    reply->setProperty("ipAddress", address);
    reply->setProperty("type", tag);
    connect(reply, SIGNAL(finished()), m_discovery.get(), SLOT(onNetworkReplyFinished()));
    return QTest::qWaitFor([&reply] { return !reply; });
}

void TestIdentityProbe::takesUnknownTagsForIdentityAnswers()
{
    m_devices[0]->answer("/array", "[]");
    QVERIFY(askForeign("/array", u"127.0.0.2"_s, u"HOSTNAME"_s));
    QCOMPARE(m_log->lines(), QStringList{uR"(JSON parse error for "127.0.0.2" type: "HOSTNAME" - Error: )"_s +
                                         u"\"no error occurred\""_s});

    // Answers of no address begin their record anew each time, so that the last finds four good answers and
    // a record without them.
    m_log->clear();
    DeviceDiscovery::setVerboseLogging(false);
    QVERIFY(askForeign(hostname, {}, u"hostname"_s));
    QVERIFY(askForeign(version, {}, u"version"_s));
    QVERIFY(askForeign(model, {}, u"model"_s));
    QVERIFY(askForeign(machineId, {}, u"machine_id"_s));
    QCOMPARE(m_log->lines(),
             QStringList{u"Not adding device \"\" due to invalid hostname, version, or model. "
                         "Removing from m_mdnsFoundIps if present."_s});
    QCOMPARE(m_discovery->deviceCount(), 0);
}

QTEST_GUILESS_MAIN(TestIdentityProbe)
#include "TestIdentityProbe.moc"
