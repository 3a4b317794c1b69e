// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "support/Operations.h"

#include <QDesktopServices>
#include <QDir>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace probing;

namespace {
/// An answer, and what the signal carries behind the address; %1 and so on stand for an operation's own
/// words.
struct Outcome
{
    Outcome(const char *body, const char *words) : Outcome(Fault::body(body), words) {}
    Outcome(Fault fault, const char *words) : answer(std::move(fault)), text(QString::fromUtf8(words)) {}
    Fault answer;
    QString text;
};
using Outcomes = QList<Outcome>;

// clang-format off
const Fault http500 = Fault::answer(500, R"({"result":true,"progress":7,"success":"done","payload":{"interface":"wlan1","pending_reboot":true,"directory":"/x"}})");
const Fault partial{.instead = HttpReply{.body = R"({"result":true})"}, .delivery = HttpReply::Delivery::Partial};
const char *const unreadable = "false, %1: Invalid JSON response - illegal value";
const char *const refused = "false, %1: Server returned result=false";
const Outcomes change = {{R"({"result":true})", "true, %2"}, {http500, "false, %1: Network error - <error> (HTTP 500)"},
    {Fault::drop(), "false, %1: Network error - <error>"}, {partial, "false, %1: Network error - <error> (HTTP 200)"},
    {"x", unreadable}, {"[]", "false, %1: Invalid JSON response - no error occurred"}, {R"({"result":true} x)", "false, %1: Invalid JSON response - garbage at the end of the document"},
    {R"({"result":false})", refused}, {R"({"result":"true"})", refused}, {R"({"result":1})", refused}};
const Outcomes plainChange = change + Outcomes{{"", unreadable}, {"{}", refused}, {R"({"success":"done"})", refused}};
const Outcomes power = {{"", "true, Device <ip> %1"}, {R"({"result":true})", "true, Device <ip> %1"}, {R"({"result":false})", "true, Device <ip> %2"}, {"{}", "true, Device <ip> %2"}, {"x", "true, Device <ip> %2"},
    {"[]", "true, Device <ip> %2"}, {Fault::drop(), "true, Device <ip> %3"}, {partial, "true, Device <ip> %3"}, {http500, "true, Device <ip> %4"}};
const Outcomes broken = {{"x", "%1"}, {"{}", "%1"}, {http500, "%1"}, {Fault::drop(), "%1"}};
// clang-format on

/// Adds a row for each outcome. In its texts <ip> is the address, <error> Qt's text of a reply that failed.
void add(const QString &operation, const QString &announced, const QString &signal, const QStringList &words,
         const Outcomes &outcomes)
{
    int number = 0;
    for (auto [answer, text] : outcomes)
    {
        for (qsizetype word = 0; word < words.size(); ++word)
            text.replace(u'%' + QString::number(word + 1), words.at(word));
        QTest::addRow("%s %d: %.50s", qPrintable(operation), ++number, answer.instead->body.constData())
            << operation << announced << answer << signal + u"(<ip>, "_s + text + u')';
    }
}
} // namespace

/// What each answer makes of an operation, as it is told to the documents.
class TestOperationReplies : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void tellsTheOutcome_data();
    void tellsTheOutcome();
    void checksBeforeItAsks();
    void onlyARebootIsOfflineAtOnce();
    void replacesSecondaryAddresses();
    void opensPages();
    void fallsBackToViewers();

public slots:
    void openUrl(const QUrl &url) { m_opened.append(url.toString()); }

private:
    std::unique_ptr<Operations> m_operations; // with two devices, and the same for all rows of a table
    QStringList m_opened;
};

void TestOperationReplies::init()
{
    if (!m_operations || !QTest::currentDataTag())
    {
        m_operations.reset();
        m_operations = std::make_unique<Operations>();
        QVERIFY(m_operations->isReady);
        DeviceDiscovery::setVerboseLogging(false);
    }
}

void TestOperationReplies::tellsTheOutcome_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("announced");
    QTest::addColumn<Fault>("answer");
    QTest::addColumn<QString>("said");
    // clang-format off
    add(u"updateDeviceHostname  my box "_s, u"Updating hostname for <ip> to mybox..."_s, u"hostnameUpdated"_s, {u"Failed to update hostname for <ip>"_s, u"Hostname successfully updated to 'mybox' for device <ip>"_s}, plainChange);
    add(u"updatePicturesDirectory  /a  b "_s, u"Updating pictures directory for <ip> to /a b..."_s, u"picturesDirectoryUpdated"_s,
        {u"Failed to update pictures directory for <ip>"_s, u"Pictures directory successfully updated to '/a b' for device <ip> . Make sure to reboot the system to monitor the directory."_s}, plainChange);
    add(u"activateDirectEthernet"_s, u"Activating direct ethernet for device <ip>..."_s, u"ethernetActivationCompleted"_s,
        {u"Failed to activate direct ethernet for <ip>"_s, u"Direct ethernet activated successfully for device <ip>."_s}, plainChange);
    add(u"deactivateDirectEthernet"_s, u"Deactivating direct ethernet for device <ip>..."_s, u"ethernetDeactivationCompleted"_s,
        {u"Failed to deactivate direct ethernet for <ip>"_s, u"Direct ethernet deactivated successfully for device <ip>."_s}, plainChange);
    add(u"factoryReset"_s, u"Performing factory reset for device <ip>..."_s, u"factoryResetCompleted"_s,
        {u"Factory reset failed for <ip>"_s, u"Factory reset successfully initiated for device <ip>. All settings have been restored to defaults."_s},
        change + Outcomes{{"", "true, %2"}, {R"({"success":true,"result":true})", "true, %2"}, {R"({"success":"done","result":false})", "true, Factory reset successful for device <ip>: done"}, {R"({"success":true})", refused}, {"{}", refused}});
    add(u"networkReset"_s, u"Performing network reset for device <ip>..."_s, u"networkResetCompleted"_s,
        {u"Failed to reset network for <ip>"_s, u"Network reset successfully initiated for device <ip>. The device will restart and may have a new IP address."_s},
        change + Outcomes{{"", unreadable}, {R"({"success":true,"result":true})", "false, %1: Empty success message"}, {R"({"success":"done","result":false})", "true, Network reset successful for device <ip>: done"}, {"{}", "false, %1: Unknown response format"}});
    add(u"reboot"_s, u"Rebooting device <ip>..."_s, u"rebootCompleted"_s, {u"reboot initiated successfully. The device will be unavailable for a few minutes."_s, u"reboot command sent. The device should be rebooting now."_s,
        u"reboot initiated successfully. Connection lost as expected - device is rebooting."_s, u"reboot command sent. Network error occurred (<error>), but device may be rebooting."_s}, power);
    add(u"shutdown"_s, u"Shutting down device <ip>..."_s, u"shutdownCompleted"_s, {u"shutdown initiated successfully. The device will power off."_s, u"shutdown command sent. The device should be powering off now."_s,
        u"shutdown initiated successfully. Connection lost as expected - device is powering off."_s, u"shutdown command sent. Network error occurred (<error>), but device may be shutting down."_s}, power);
    add(u"queryPicturesDirectory"_s, {}, u"picturesDirectoryReceived"_s, {u"/home/noctaris/Pictures"_s}, Outcomes{
        {R"({"result":true,"payload":"/a"})", "/a"}, {R"({"result":true,"payload":{"directory":"/data/pics"}})", "/data/pics"}, {R"({"result":true,"payload":""})", "%1"}, {R"({"result":true,"payload":["/x"]})", "%1"},
        {R"({"result":true,"payload":{"path":"/x"}})", "%1"}, {R"({"result":true,"directory":"/x"})", "%1"}, {R"({"result":false,"payload":"/x"})", "%1"}, {R"({"payload":"/x"})", "%1"}, {"[]", "%1"}} + broken);
    add(u"queryHotspotInterface"_s, {}, u"hotspotInterfaceReceived"_s, {u"true"_s}, Outcomes{
        {R"({"result":true,"payload":{"interface":"wlan0"}})", "true"}, {R"({"result":true,"payload":{"interface":"wlan1"}})", "false"}, {R"({"result":true,"payload":{}})", "false"},
        {R"({"result":true,"payload":"wlan0"})", "false"}, {R"({"result":false,"payload":{"interface":"wlan1"}})", "true"}, {R"({"result":true,"interface":"wlan1"})", "true"}, {"[]", "true"}} + broken);
    add(u"queryNetworkInterfaces"_s, {}, u"networkInterfacesReceived"_s, {uR"({"interfaces":[],"result":false})"_s, uR"({"interfaces":[{"interface":"eth0","ip":"10.0.0.1"},{"interface":"lo","ip":""}],"result":true})"_s}, Outcomes{
        {R"([{"interface":"eth0","ip":"10.0.0.1"},{"interface":"lo"}])", "%2"}, {R"({"result":true,"interfaces":[{"interface":"eth0","ip":"10.0.0.1"},{"interface":"lo"}]})", "%2"}, {"[]", R"({"interfaces":[],"result":true})"},
        {R"({"result":true})", R"({"interfaces":[],"result":true})"}, {R"({"result":false,"interfaces":[{"ip":"10.0.0.1"}]})", "%1"}, {R"({"interfaces":[{"ip":"10.0.0.1"}]})", "%1"}} + broken);
    add(u"queryExternalStorage"_s, {}, u"externalStorageReceived"_s, {u"[]"_s}, Outcomes{
        {R"({"result":true,"payload":[["a"],5,["b",7],["c","/run/media/x","y"],["d","/media/other"],["e","/Media/noctaris"],["/media/noctaris/USB","/"],["f","/media/noctaris"]," /run/media"]})", R"(["/run/media/x","/media/noctaris"])"},
        {R"({"result":true,"payload":"/media/noctaris"})", "%1"}, {R"({"result":true,"payload":{"a":["b","/run/media"]}})", "%1"}, {R"({"result":false,"payload":[["a","/run/media"]]})", "%1"}, {R"([["a","/run/media"]])", "%1"}} + broken);
    add(u"checkDeltaStatus"_s, {}, u"deltaStatusReceived"_s, {u"false, "_s}, Outcomes{
        {R"({"result":true,"payload":{"pending_reboot":true,"state":"completed"}})", "true, completed"}, {R"({"result":true,"payload":{"state":"idle"}})", "false, idle"}, {R"({"result":true,"payload":"idle"})", "%1"},
        {R"({"result":false,"payload":{"pending_reboot":true,"state":"idle"}})", "%1"}, {R"({"result":true,"pending_reboot":true,"state":"idle"})", "%1"}} + broken);
    add(u"checkDeltaProgress"_s, {}, u"deltaUpdateProgressReceived"_s, {u"0, "_s}, Outcomes{
        {R"({"progress":49.5})", "50, "}, {R"({"progress":49.4,"payload":{"message":"m"}})", "49, m"}, {R"({"progress":-2.5})", "-3, "}, {R"({"result":false,"progress":30,"payload":"x"})", "30, "},
        {R"({"progress":"30","payload":{"progress":40}})", "%1"}} + broken);
    add(u"applyDeltaUpdate 2.0"_s, {}, u"deltaUpdateStarted"_s, {u"Failed to start delta update (no error details)"_s, u"Delta update started"_s}, {
        {R"({"result":true})", "true, %2"}, {R"({"result":false,"error":"pending_reboot"})", "false, pending_reboot"}, {R"({"result":true,"message":null,"error":"x"})", "true, x"}, {R"({"result":false,"message":"m","error":"e"})", "false, m"},
        {R"({"result":true,"message":"","error":"e"})", "true, %2"}, {R"({"error":"e","payload":{"message":"a"}})", "false, e"}, {R"({"error":null,"payload":{"message":"a"}})", "false, %1"}, {R"({"result":true,"payload":{"message":"a","error":"b"}})", "true, b"},
        {R"({"result":true,"payload":{"message":"a"}})", "true, a"}, {R"({"payload":"a"})", "false, %1"}, {"x", "false, %1"}, {http500, "false, Network error: <error>"}, {Fault::drop(), "false, Network error: <error>"}});
    add(u"applyRollback 1.8.1"_s, {}, u"rollbackApplyCompleted"_s, {u"false, Invalid response from server"_s}, {
        {R"({"result":true})", "true, Rollback to 1.8.1 prepared. Please reboot."}, {R"({"result":true,"message":"m"})", "true, m"}, {R"({"result":"true","message":"m"})", "false, m"}, {"{}", "false, Failed to prepare rollback"},
        {"x", "%1"}, {"[]", "%1"}, {"", "%1"}, {http500, "false, Network error: <error> (HTTP 500)"}, {Fault::drop(), "false, Network error: <error>"}});
    add(u"updateHotspotInterface false"_s, u"Updating hotspot interface for <ip>..."_s, u"hotspotInterfaceUpdated"_s, {u"true, Hotspot interface updated successfully. Verifying..."_s, u"false, Invalid response from server"_s, u"false, Failed to update hotspot interface"_s}, {
        {R"({"success":false})", "%1"}, {R"({"result":true})", "%1"}, {R"({"result":false})", "%3"}, {R"({"result":"true"})", "%3"}, {"x", "%2"}, {"[]", "%2"}, {http500, "false, Network error: <error>"}, {Fault::drop(), "false, Network error: <error>"}});
    // clang-format on
}

void TestOperationReplies::tellsTheOutcome()
{
    QFETCH(const QString, operation);
    QFETCH(const QString, announced);
    QFETCH(const Fault, answer);
    QFETCH(const QString, said);
    Operations &operations = *m_operations;
    SimulatedDevice &device = operations.device(1);
    operations.discovery.stopDiscovery(); // ends what the row before left open, its status line included
    QVERIFY(operations.settle());
    // Qt 6.8 lets the first request after a dropped connection fail by itself; a fresh start does not.
    operations.discovery.findChild<QNetworkAccessManager *>()->clearConnectionCache();
    operations.lines.clear();
    operations.said.clear();
    operations.log.clear();
    device.setFault(anything, answer);

    // What is asked for because of the answer is under way when the signal comes.
    QStringList underWay;
    const auto lookAround = [&] {
        for (const QNetworkReply *reply : operations.discovery.findChildren<QNetworkReply *>())
            underWay += reply->isRunning() ? QStringList{reply->property("type").toString()} : QStringList();
        device.hold(anything);
    };
    QObject context;
    connect(&operations.discovery, &DeviceDiscovery::hostnameUpdated, &context, lookAround);
    connect(&operations.discovery, &DeviceDiscovery::hotspotInterfaceUpdated, &context, lookAround);
    QVERIFY(operations.call(operation, 1));
    QTRY_COMPARE(operations.said.size(), 1);
    QVERIFY(settle(operations.discovery, static_cast<int>(underWay.size())));
    QString followUps = said.contains("to 'mybox'"_L1) ? u"hostname version model machine_id"_s : QString();
    if (said.contains("Verifying"_L1))
        followUps = u"get_hotspot_interface get_network_interfaces"_s;
    QCOMPARE(underWay.join(u' '), followUps);

    // Who announces a change ends with its last word, but for the hotspot, whose follow-ups tell the rest.
    const QString message = said.section(u", "_s, 2).chopped(1);
    QString told = announced.isEmpty() ? said : u"status: "_s + announced + u'\n' + said;
    if (!announced.isEmpty() && !operation.startsWith("updateHotspot"_L1))
        told += u"\nstatus: "_s + message;
    const auto textOf = [&device](const QStringList &lines) {
        static const QRegularExpression error(
            u"Error transferring \\S+ - server replied: \\w+ \\w+ \\w+|Connection closed"_s);
        return lines.join(u'\n').replace(error, u"<error>"_s).replace(device.address(), u"<ip>"_s);
    };
    QCOMPARE(textOf(operations.lines), told);
    const QString log = textOf(operations.log.lines());
    // The last word is logged too, a failed reboot's only for those who ask for more.
    if (!announced.isEmpty())
        QCOMPARE(log.contains(message), operation != "reboot"_L1 || !said.contains("<error>"_L1));
    QCOMPARE(log.contains("Raw data:"_L1), said.contains("Invalid JSON"_L1));
}

void TestOperationReplies::checksBeforeItAsks()
{
    const auto told = [this](const QString &operation, int row) {
        m_operations->lines.clear();
        m_operations->log.clear();
        m_operations->call(operation, row);
        const QStringList lines = m_operations->lines;
        return (lines.isEmpty() ? m_operations->log.lines() : lines).join(u'\n');
    };
    // clang-format off
    const QMap<QString, QString> signalsOf = {{u"reboot"_s, u"rebootCompleted"_s}, {u"shutdown"_s, u"shutdownCompleted"_s}, {u"factoryReset"_s, u"factoryResetCompleted"_s}, {u"networkReset"_s, u"networkResetCompleted"_s},
        {u"updateDeviceHostname  "_s, u"hostnameUpdated"_s}, {u"updatePicturesDirectory /x"_s, u"picturesDirectoryUpdated"_s}, {u"applyRollback "_s, u"rollbackApplyCompleted"_s},
        {u"activateDirectEthernet"_s, u"ethernetActivationCompleted"_s}, {u"deactivateDirectEthernet"_s, u"ethernetDeactivationCompleted"_s}, {u"updateHotspotInterface true"_s, u"hotspotInterfaceUpdated"_s}};
    const QMap<QString, QString> queries = {{u"queryPicturesDirectory"_s, u" for pictures directory query"_s}, {u"queryHotspotInterface"_s, u" for hotspot interface query"_s},
        {u"queryNetworkInterfaces"_s, u" for network interfaces query"_s}, {u"queryExternalStorage"_s, u" for external storage query"_s}, {u"openNoctarisWebUI"_s, {}}, {u"openVNCViewer"_s, {}}};
    // clang-format on
    for (const int row : {-1, 2})
    {
        for (const QString &operation : signalsOf.keys())
            QCOMPARE(told(operation, row), signalsOf[operation] + u"(, false, Invalid device index)"_s);
        for (const QString &operation : queries.keys())
            QCOMPARE(told(operation, row),
                     u"warning: Invalid device index%1: %2"_s.arg(queries[operation]).arg(row));
        for (const QString &operation :
             {u"applyDeltaUpdate 2.0"_s, u"checkDeltaProgress"_s, u"checkDeltaStatus"_s})
            QCOMPARE(told(operation, row), QString());
    }
    const QString refusal = u"%1(127.0.0.2, false, %2)"_s;
    QCOMPARE(told(u"updateDeviceHostname  \t "_s, 0),
             refusal.arg(u"hostnameUpdated"_s, u"Hostname cannot be empty"_s));
    QCOMPARE(told(u"updatePicturesDirectory  "_s, 0),
             refusal.arg(u"picturesDirectoryUpdated"_s, u"Directory path cannot be empty"_s));
    QCOMPARE(told(u"applyRollback "_s, 0),
             refusal.arg(u"rollbackApplyCompleted"_s, u"Target version not specified"_s));
    QCOMPARE(repliesUnderWay(m_operations->discovery), 0);
}

void TestOperationReplies::onlyARebootIsOfflineAtOnce()
{
    const DeviceDiscovery &discovery = m_operations->discovery;
    QSignalSpy changed(&discovery, &DeviceDiscovery::dataChanged);
    m_operations->device().stop();
    for (const QString &operation : {u"shutdown"_s, u"factoryReset"_s, u"networkReset"_s})
        m_operations->call(operation);
    QVERIFY(m_operations->settle());
    QCOMPARE(changed.count(), 0);
    m_operations->call(u"reboot"_s);
    const QModelIndex row = discovery.index(0);
    const QList<QVariantList> mark{{row, row, QVariant::fromValue(QList<int>{261, 263})}};
    QCOMPARE(changed, mark);
    QCOMPARE(m_operations->said.size(), 3);
    QVERIFY(m_operations->settle());
    QCOMPARE(changed, mark);
    QCOMPARE(row.data(263).toString(), u"Offline"_s);
    QCOMPARE(discovery.index(1).data(263).toString(), u"Online"_s);
    // Who is not there has rebooted, as far as one can see.
    QVERIFY(discovery.statusText().endsWith("Connection lost as expected - device is rebooting."_L1));
}

void TestOperationReplies::replacesSecondaryAddresses()
{
    const DeviceDiscovery &discovery = m_operations->discovery;
    const QModelIndex row = discovery.index(1);
    QSignalSpy changed(&discovery, &DeviceDiscovery::dataChanged);
    QStringList seen; // with the number of changes and the addresses at each signal
    connect(&discovery, &DeviceDiscovery::networkInterfacesReceived, this, [&] {
        seen.append(QString::number(changed.count()) + u' ' + row.data(264).toStringList().join(u' '));
    });
    for (const char *body : {R"([{"interface":"wlan0","ip":"127.0.0.3"},{"interface":"eth0","ip":"10.0.0.1"},
                                 {"ip":"10.0.0.1"},{"interface":"b"},{"ip":"0.0.0.0"},{"ip":"127.0.0.2"}])",
                             "x", R"({"result":false,"interfaces":[]})",
                             R"({"result":true,"interfaces":[{"ip":"10.0.0.2"}]})", R"({"result":true})"})
    {
        m_operations->device(1).answer(anything, body);
        m_operations->call(u"queryNetworkInterfaces"_s, 1);
        QVERIFY(m_operations->settle());
    }
    const QString first = u"1 10.0.0.1 127.0.0.2"_s;
    QCOMPARE(seen, QStringList({first, first, first, u"2 10.0.0.2"_s, u"3 "_s}));
    QCOMPARE(changed.last(), QVariantList({row, row, QVariant::fromValue(QList<int>{264})}));
}

void TestOperationReplies::opensPages()
{
    QDesktopServices::setUrlHandler(u"http"_s, this, "openUrl");
    m_operations->call(u"openNoctarisWebUI"_s, 1);
    m_operations->discovery.openCustomPort(1, 8080);
    m_operations->call(u"openVNCViewer"_s, 1);
    m_operations->discovery.openCustomPort(2, 3000);
    QDesktopServices::unsetUrlHandler(u"http"_s);
    QCOMPARE(m_opened.join(u' '), u"http://127.0.0.3:8624 http://127.0.0.3:3000 http://127.0.0.3:6080"_s);
    QCOMPARE(m_operations->log.lines(), QStringList{u"warning: Invalid device index: 2"_s});
}

void TestOperationReplies::fallsBackToViewers()
{
    const QTemporaryDir folder;
    QVERIFY(QDir::setCurrent(folder.path()) && qputenv("PATH", folder.path().toUtf8()));
    m_operations->call(u"openVNCViewer"_s, 1);
    // Qt names each address that it could not open.
    const QStringList lines = m_operations->log.starting(u"warning: "_s);
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines.at(0).contains(u"'http://127.0.0.3:6080'"_s));
    QCOMPARE(lines.at(1), u"warning: Failed to start VNC viewer. Please install a VNC client."_s);
    QVERIFY(lines.at(2).contains(u"'http://127.0.0.3:6080/vnc.html'"_s));

    // The later is preferred. A program's name is the whole command; what looks like a path in it is one
    // here.
    QStringList started;
    for (const QString &viewer : {u"remmina -c vnc://127.0.0.3:6080"_s, u"krdc http://127.0.0.3:6080"_s,
                                  u"tightvncviewer 127.0.0.3:6080"_s, u"vncviewer 127.0.0.3:6080"_s})
    {
        const QString name = u"started %1 with 0 arguments"_s.arg(viewer.section(u' ', 0, 0));
        QVERIFY(QDir().mkpath(QFileInfo(viewer).path()));
        QFile file(viewer);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.setPermissions(QFile::ExeOwner | QFile::ReadOwner));
        file.write("#!/bin/sh\n: >\"" + QString(name).replace(u'0', u"$#"_s).toUtf8() + "\"\n");
        file.close();
        m_operations->call(u"openVNCViewer"_s, 1);
        started.append(name);
        started.sort();
        QTRY_COMPARE(QDir().entryList({u"started*"_s}, QDir::Files), started);
    }
}

QTEST_MAIN(TestOperationReplies)
#include "TestOperationReplies.moc"
