// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "support/Script.h"

#include <QTimer>

using namespace Qt::StringLiterals;
using namespace probing;

namespace {
const QByteArray ok = R"({"result":true})";
const QByteArray no = R"({"result":false})";
const QByteArray http500 = "HTTP 500";

/// The timers that belong to operations, next to the three that are always there.
int timerCount(const DeviceDiscovery &discovery)
{
    return static_cast<int>(discovery.findChildren<QTimer *>(Qt::FindDirectChildrenOnly).size()) - 3;
}

/// The answer that tells of an installation's progress.
QByteArray poll(int progress, const char *status, const char *message)
{
    return R"(progress {"result":true,"payload":{"progress":)" + QByteArray::number(progress) +
           R"(,"status":")" + status + R"(","message":")" + message + R"("}})";
}

/// An operation with all of its answers, what is said of it, and what it asks, if it takes its time; and what
/// is called twice a second later.
struct Chain
{
    QByteArray operation;
    QByteArrayList answers;
    QByteArrayList lines;
    QByteArrayList wire = {};
    QByteArray later = {};
};

// clang-format off
const QByteArray stable = R"({"application_id":"org.kde.kstars","branch":"stable","version":"3.6"})";
const QByteArray beta = R"({"application_id":"org.kde.kstars","branch":"master","version":"","current_version":"3.7","active":true})";
const QByteArray both = "[" + stable + "," + beta + "]";
const QByteArray strange = R"([{"application_id":"org.kde.other","branch":"master","active":true,"version":"1"},)"
                           R"({"application_id":"org.kde.kstars","branch":"nightly","active":true,"version":"1"},)"
                           R"({"application_id":"org.kde.kstars","branch":"master","active":"true","version":"2"}])";
const QByteArray offer = R"("current_version":"1.0","release_date":"1 May","release_title":"T","size_mb":12.5,"target_version":"2.0"})";
const QByteArray started = "softwareUpdateStarted(%1, true, Software upgrade started successfully)";
const QByteArray resets = "status: Initiating Lumarc reset for device %1...";
const QByteArray generates = "status: Triggering Lumarc image regeneration for device %1...";
const QByteArray begins = "flatpakProgressReceived(%1, 0, installing, Installation started...)";
const QByteArray checks = "status: Checking flatpak apps for %1 to switch to stable...";
const QByteArrayList begun = {"status: Checking flatpak apps for %1 to switch to beta...", "status: Installing beta release for %1...", begins};
const QByteArrayList switched = {"flatpakInstallCompleted(%1, true, Installation completed successfully)",
                                 "releaseTypeUpdated(%1, true, Release type successfully updated to 'beta' for device %1.)",
                                 "status: Release type successfully updated to 'beta' for device %1."};

const Chain chains[] = {
    // What an answer decides at once
    {"checkForSoftwareUpdates", {R"(upgradable {"result":true,"payload":{"upgradable":true,"delta_metadata":{"available":false,)" + offer + "}}"},
     {"softwareUpdateCheckCompleted(%1, true, true, Software update available, false, {})"}},
    {"checkForSoftwareUpdates", {R"(upgradable {"result":true,"payload":{"delta_metadata":{"available":true,"changelog":["a","b"],)" + offer + "}}"},
     {R"(softwareUpdateCheckCompleted(%1, true, false, Delta update available, true, {"available":true,"changelog":["a","b"],)" + offer + ")"}},
    {"startSoftwareUpdate", {R"(upgrade {"result":true,"upgrade":"queued"})", R"(progress {"progress":100})"},
     {"softwareUpdateStarted(%1, true, Software upgrade queued)", "softwareUpdateProgressReceived(%1, 100)"}},
    {"queryReleaseType", {"app " + strange}, {"releaseTypeReceived(%1, stable, , 2)"}},
    {"queryReleaseType", {"app " + both}, {"releaseTypeReceived(%1, beta, 3.6, 3.7)"}},
    {"queryReleaseType", {"app [" + beta + R"(,{"application_id":"org.kde.kstars","branch":"stable","active":true}])"}, {"releaseTypeReceived(%1, stable, , 3.7)"}},
    {"queryReleaseType", {R"(app {"result":true,"payload":)" + both + "}"}, {"releaseTypeReceived(%1, beta, 3.6, 3.7)"}},
    {"queryReleaseType", {R"(app {"result":false,"payload":)" + both + "}"}, {"releaseTypeReceived(%1, stable, , )"}},
    {"queryReleaseType", {R"(app {"result":true,"payload":"beta"})"}, {"releaseTypeReceived(%1, beta, , )"}},
    {"updateReleaseType nightly", {}, {"releaseTypeUpdated(%1, false, Invalid release type. Must be 'stable' or 'beta')"}},
    {"updateReleaseType   Stable ", {R"(app {"result":true,"payload":)" + both + "}", "default " + ok},
     {checks, "releaseTypeUpdated(%1, true, Release type successfully updated to 'stable' for device %1.)", "status: Release type successfully updated to 'stable' for device %1."}},
    {"queryRemoteSupportStatus", {R"(isactive {"status":"inactive"})"}, {"remoteSupportStatusReceived(%1, false, )"}},
    {"stopRemoteSupport", {"service " + no, "service " + http500}, {"status: Stopping remote support for %1...", "remoteSupportStopped(%1, true, Remote support stopped successfully)"}},
    // What takes its time. A second start begins the pause anew; of two polls that fail, one is told.
    {"startSoftwareUpdate", {"upgrade " + ok, "progress ", R"(progress {"progress":"99.9"})", R"(progress {"progress":99.89})", R"(progress {"progress":99.9})"},
     {started, "softwareUpdateProgressReceived(%1, 0)", "softwareUpdateProgressReceived(%1, 0)", "softwareUpdateProgressReceived(%1, 99.89)",
      "softwareUpdateProgressReceived(%1, 99.9)"}, {"0 upgrade", "2000 progress", "2000 progress", "2000 progress", "2000 progress"}},
    {"startSoftwareUpdate", {"upgrade " + ok, "progress " + http500}, {started, "softwareUpdateTimedOut(%1)"}, {"0 upgrade", "1000 progress", "0 progress"}, "checkSoftwareUpdateProgress"},
    {"startSoftwareUpdate", {R"(upgrade {"result":false,"upgrade":"busy"})"}, {"softwareUpdateStarted(%1, false, Software upgrade busy)"}, {"0 upgrade"}},
    {"startSoftwareUpdate", {"upgrade " + ok, R"(progress {"progress":50})", R"(progress {"progress":100})"},
     {started, started, started, "softwareUpdateProgressReceived(%1, 50)", "softwareUpdateProgressReceived(%1, 100)"},
     {"0 upgrade", "1000 upgrade", "0 upgrade", "2000 progress", "2000 progress"}, "startSoftwareUpdate"},
    {"resetLumarc", {"reset " + ok, "service " + ok, "generate {", "progress " + http500, "progress {", R"(progress {"progress":99.5,"message":"m","inProgress":true})",
                     R"(progress {"progress":40})", R"(progress {"progress":100,"inProgress":true})", R"(progress {"progress":100})"},
     {resets, generates, "lumarcRegenerationProgressReceived(%1, 5, Starting regeneration..., true)",
      "lumarcRegenerationProgressReceived(%1, 0, Regenerating..., false)", "lumarcRegenerationProgressReceived(%1, 0, Regenerating..., false)",
      "lumarcRegenerationProgressReceived(%1, 0, m, true)", "lumarcRegenerationProgressReceived(%1, 40, Regenerating..., false)",
      "lumarcRegenerationProgressReceived(%1, 100, Regenerating..., true)", "lumarcRegenerationProgressReceived(%1, 100, Regenerating..., false)",
      "lumarcResetCompleted(%1, true, Lumarc Reset is Successful)"}, QByteArrayList{"0 reset", "0 service", "3000 generate", "3000 progress"} + QByteArrayList(5, "2000 progress")},
    {"updateReleaseType beta", {"app []", "app " + ok, "progress " + http500, "progress [", R"(progress {"result":false,"payload":{"status":"Error"}})",
                                "progress " + ok, poll(99, "Success", "Installed Successfully"), poll(100, "Success", ""), "default " + ok},
     begun + QByteArrayList{"flatpakProgressReceived(%1, 99, Success, Installed Successfully)", "flatpakProgressReceived(%1, 100, Success, )"} + switched,
     QByteArrayList{"0 app", "0 app master"} + QByteArrayList(6, "2000 progress") + QByteArrayList{"0 default master"}, "cancelFlatpakOperation"},
    {"updateReleaseType beta", {R"(app {"result":false,"payload":)" + both + "}", "app " + ok, poll(7, "running", "x installed successfully y"), "default " + ok},
     begun + QByteArrayList{"flatpakProgressReceived(%1, 7, running, x installed successfully y)"} + switched},
    {"updateReleaseType beta", {"app " + ok, "app " + ok, poll(7, "Error", "installed successfully"), "default " + ok},
     begun + QByteArrayList{"flatpakProgressReceived(%1, 7, Error, installed successfully)"} + switched},
    {"updateReleaseType beta", {"app [" + stable + "]", "app " + ok, poll(100, "Error", "disk full")},
     begun + QByteArrayList{"flatpakProgressReceived(%1, 100, Error, disk full)", "flatpakInstallCompleted(%1, false, disk full)",
                            "releaseTypeUpdated(%1, false, Installation failed: disk full)"}},
    {"updateReleaseType beta", {"app []", "app " + ok, poll(-5, "Error", "")},
     begun + QByteArrayList{"flatpakProgressReceived(%1, -5, Error, )", "flatpakInstallCompleted(%1, false, Installation failed)", "releaseTypeUpdated(%1, false, Installation failed: )"}}};

// Answers to the question for the id, and the id
const std::pair<QByteArray, QByteArray> ids[] = {
    {http500, ""}, {"", ""}, {R"({"result":true,"payload":" 123 456 "})", "123 456"}, {R"({"result":true,"payload":{"id":" abc "}})", "abc"},
    {R"({"result":true,"payload":7,"id":"abc"})", ""}, {R"({"result":true,"id":"abc"})", ""}, {R"({"result":"true","id":" abc ","payload":"x"})", "abc"},
    {"123456789", "123456789"}, {"abc\n", "abc"}, {R"(["x"])", R"(["x"])"}};

/// The rows above, and for each id its two ways.
std::vector<Chain> allChains()
{ std::vector<Chain> all(std::begin(chains), std::end(chains)); for (const auto &[body, id] : ids) { all.push_back({"queryRemoteSupport", {"isactive active\n", "id " + body},
                       {"remoteSupportStatusReceived(%1, " + (id.isEmpty() ? "false, " : "true, " + id) + ")"}});
        all.push_back({"startRemoteSupport", {"service " + no, "service ", "reset {", "id " + body},
                       {"status: Starting remote support for %1...", "remoteSupportStarted(%1, true, Remote support started " +
                                                                     (id.isEmpty() ? "but could not fetch ID, " : "successfully, " + id) + ")"}}); } return all;
}
// clang-format on
} // namespace

/// Operations of several steps: what each answer leads to, and when.
class TestOperationChains : public QObject
{
    Q_OBJECT

private slots:
    void answersLeadOn();
    void timersHoldRows();
    void devicesGo();
    void requestsLeaveBeforeTheWord();
};

void TestOperationChains::answersLeadOn()
{
    // All at once, each on a device of its own
    const std::vector<Chain> all = allChains();
    Operations operations(static_cast<int>(all.size()));
    QVERIFY(operations.isReady);
    DeviceDiscovery::setVerboseLogging(false);
    std::vector<std::unique_ptr<Script>> scripts;
    for (int row = 0; const Chain &chain : all)
    {
        scripts.push_back(std::make_unique<Script>(operations.device(row), chain.answers));
        QVERIFY(operations.call(QString::fromUtf8(chain.operation), row));
        for (int time = 0; time < 2; ++time)
            QTimer::singleShot(1000, &operations,
                               [&, row] { operations.call(QString::fromUtf8(chain.later), row); });
        ++row;
    }
    QTRY_VERIFY_WITH_TIMEOUT(operations.statuses.contains(u"Lumarc Reset is Successful"_s), 30000);
    QTest::qWait(2500);
    for (size_t row = 0; const Chain &chain : all)
    {
        const Script &script = *scripts[row++];
        const QString name = QString::fromUtf8(chain.operation + ": " + chain.answers.join(", "));
        QCOMPARE((QStringList{name} + script.heard(operations)).join(u'\n'),
                 (QStringList{name} + script.filled(chain.lines)).join(u'\n'));
        const bool isDue = chain.wire.isEmpty() ? script.requestCount() == chain.answers.size()
                                                : script.wire(chain.wire) == chain.wire;
        QVERIFY2(isDue, (chain.operation + ": " + script.wire(chain.wire).join(", ")));
    }
    QCOMPARE(timerCount(operations.discovery), 0);
    for (const char *line :
         {"RustDesk ID response for", "RustDesk ID fetch response for", "Parsed JSON keys:", "result field:",
          "Trying 'id' field as fallback:", "payload is object, extracted id:", "payload (rustdeskId):",
          "JSON parse error:", "Plain text fallback:", "Network error for remote_support_get_id:",
          "Network error for remote_support_fetch_id:", "Emitting remoteSupportStatusReceived - ip:",
          "Emitting remoteSupportStarted with ID:", "Emitting remoteSupportStarted without ID (empty)"})
        QVERIFY2(!operations.log.starting(u"[DEBUG] "_s + QString::fromUtf8(line)).isEmpty(), line);
}

void TestOperationChains::timersHoldRows()
{
    Operations operations(3);
    SimulatedDevice &next = operations.device(2);
    const Script script(operations.device(1), {"upgrade " + ok, "app []", "app " + ok, "reset " + ok,
                                               "service " + ok, "generate "});
    const Script nextScript(next, {});
    const QByteArray body = R"({"progress":2,"result":true,"payload":{"progress":2}})";
    next.answer("/api/software/progress", body);
    next.answer("/api/flatpak/app/progress", body);
    next.hold("/generate/progress");
    for (const QString &operation : {u"startSoftwareUpdate"_s, u"updateReleaseType beta"_s, u"resetLumarc"_s})
        QVERIFY(operations.call(operation, 1));
    QTRY_COMPARE_WITH_TIMEOUT(operations.device(1).requestCount("/generate"), 1, 5000);
    QVERIFY(operations.settle());
    // From now on the device that moved up is asked, and what it says is told of it.
    operations.discovery.removeDevice(0);
    const qsizetype count = script.requestCount();
    QVERIFY(waitForHeld(next, 1));
    // A row past the end is nobody's: the reset ends without a word, the two timers wait for a new device.
    operations.discovery.removeDevice(0);
    QCOMPARE(next.release("/generate/progress", Fault::body(body)), 1);
    QVERIFY(operations.settle());
    QStringList told = nextScript.heard(operations);
    told.removeDuplicates();
    told.sort();
    QCOMPARE(told, nextScript.filled({"flatpakProgressReceived(%1, 2, , )",
                                      "lumarcRegenerationProgressReceived(%1, 2, Regenerating..., false)",
                                      "softwareUpdateProgressReceived(%1, 2)"}));
    QCOMPARE(script.requestCount(), count);
    next.clearRequests();
    operations.lines.clear();
    QTest::qWait(4500);
    QCOMPARE(next.requestCount(), 0);
    QCOMPARE(operations.lines, QStringList());
    QCOMPARE(timerCount(operations.discovery), 2);
    QVERIFY(admit(operations.discovery, operations.device(0)));
    for (const QByteArray path : {"/api/software/progress", "/api/flatpak/app/progress"})
        QTRY_VERIFY(operations.device(0).requestCount(path) > 0);
    QCOMPARE(operations.device(0).requestCount("/generate/progress"), 0);
}

void TestOperationChains::devicesGo()
{
    // One goes before its installation is accepted, one before and one after it began to make its images.
    Operations operations(3);
    operations.device(0).answer("GET /api/flatpak/app", "[]");
    operations.device(0).hold("POST /api/flatpak/app");
    const Script second(operations.device(1), {"reset " + ok, "service " + ok});
    const Script third(operations.device(2), {"reset " + ok, "service " + ok, "generate "});
    operations.device(1).hold("/generate");
    for (const int row : {0, 1, 2})
        QVERIFY(operations.call(row == 0 ? u"updateReleaseType beta"_s : u"resetLumarc"_s, row));
    QTRY_COMPARE_WITH_TIMEOUT(operations.said.size(), 1, 6000);
    for (const int row : {2, 1, 0})
        operations.discovery.removeDevice(row);
    operations.lines.clear();
    QCOMPARE(operations.device(0).release("POST /api/flatpak/app", Fault::body(ok)), 1);
    QCOMPARE(operations.device(1).release("/generate", Fault::body("")), 1);
    QTest::qWait(4500);
    const QByteArray gone = "lumarcResetCompleted(%1, false, Device not found for progress polling)";
    QVERIFY(operations.lines.filter(u"127.0.0.2"_s).isEmpty());
    QCOMPARE(
        second.heard(operations),
        second.filled({"lumarcRegenerationProgressReceived(%1, 5, Starting regeneration..., true)", gone}));
    QCOMPARE(third.heard(operations), third.filled({gone}));
    QCOMPARE(timerCount(operations.discovery), 0);
}

void TestOperationChains::requestsLeaveBeforeTheWord()
{
    Operations operations(1);
    const Script script(operations.device(),
                        {"app []", "app " + ok, "app []", "app " + ok, poll(100, "Success", ""),
                         poll(100, "Success", ""), "progress " + http500, "default " + ok, "service "});
    QList<int> underWay;
    const auto note = [&] { underWay.append(repliesUnderWay(operations.discovery)); };
    connect(&operations.discovery, &DeviceDiscovery::flatpakInstallCompleted, this, note);
    connect(&operations.discovery, &DeviceDiscovery::remoteSupportStopped, this, note);
    QVERIFY(operations.call(u"stopRemoteSupport"_s) && operations.settle());
    QVERIFY(operations.call(u"updateReleaseType beta"_s) && operations.settle());
    QTest::qWait(700);
    QVERIFY(operations.call(u"updateReleaseType beta"_s) && operations.settle());
    const auto timers = [&] {
        return operations.discovery.findChildren<QTimer *>(u"flatpak_progress_127.0.0.2"_s).size();
    };
    QCOMPARE(timers(), 2);
    // The first one's poll ends the second. It goes on itself, and knows no branch any more.
    QTRY_COMPARE_WITH_TIMEOUT(operations.device().requestCount("/api/flatpak/app/progress"), 3, 9000);
    QVERIFY(operations.settle());
    const QByteArrayList ended{"flatpakProgressReceived(%1, 100, Success, )", switched[0]};
    QCOMPARE(operations.said.mid(1),
             script.filled(QByteArrayList{begins, begins} + ended + QByteArrayList{switched[1]} + ended +
                           QByteArrayList{QByteArray(switched[1]).replace("beta", "")}));
    const QByteArrayList last{"0 default master", "2000 progress", "0 default", "2000 progress"};
    QCOMPARE(script.wire(QByteArrayList(7) + last).mid(7), last);
    QCOMPARE(underWay, QList<int>({2, 2, 2}));
    QCOMPARE(timers(), 1);
}

QTEST_GUILESS_MAIN(TestOperationChains)
#include "TestOperationChains.moc"
