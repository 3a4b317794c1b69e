// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "support/Script.h"

using namespace Qt::StringLiterals;

namespace {
// clang-format off
/// What a device does wrong, and which of an operation's texts is due.
struct Misdeed { QByteArray name; Fault fault; enum { Error, Garbage, Refusal, Oddity } text; };

/// An operation and its answers, "!" for the one that goes wrong; the result signal; and what stands in it for
/// each kind of misdeed and for single ones. "*" is any text, and "-" says that no signal is due.
struct Operation { QByteArray call; QByteArrayList answers; QByteArray signal; bool setsStatus; QByteArrayList texts; QMap<QByteArray, QByteArray> exceptions = {}; };

/// The sentences that most operations share; %4 is the status of the answer, if there was one.
QByteArrayList failing(const QByteArray &stem, const QByteArray &success)
{
    return {"false, " + stem + ": Network error - *%4", "false, " + stem + ": Invalid JSON response - *", "false, " + stem + ": Server returned result=false", success};
}

QByteArrayList then(const QByteArray &error, const QByteArray &otherwise) { return {error, otherwise, otherwise, otherwise}; }
QByteArrayList each(const QByteArray &text) { return then(text, text); }

const QByteArray good = R"({"result":true,"payload":{}})";
const QByteArray others = R"(,"message":5,"error":[],"upgrade":5,"success":5,"progress":"x","inProgress":5,"status":5,"id":5,"interfaces":5})";

/// A number wherever one may stand, and where none may.
const QByteArray numbers = R"({"result":true,"success":N,"progress":N,"message":N,"payload":{"progress":N,"delta_metadata":{"available":true,"size_mb":N}}})";
Fault number(const QByteArray &number) { return Fault::body(QByteArray(numbers).replace("N", number)); }

const Misdeed misdeeds[] = {
    {"HTTP 404", Fault::answer(404, good), Misdeed::Error}, {"HTTP 500", Fault::answer(500, good), Misdeed::Error},
    {"dropped", Fault::drop(), Misdeed::Error},
    {"HTTP 200, 17 MiB", [] { Fault fault = Fault::body(good); fault.filledBytes = 17LL * 1024 * 1024; return fault; }(), Misdeed::Error},
    {"empty", Fault::body(""), Misdeed::Garbage}, {"cut short", Fault::body(good.chopped(1)), Misdeed::Garbage}, {"list", Fault::body("[]"), Misdeed::Garbage},
    {"nested", Fault::body(R"({"result":true,"payload":)" + QByteArray(10000, '[') + QByteArray(10000, ']') + "}"), Misdeed::Garbage},
    {"object", Fault::body("{}"), Misdeed::Refusal}, {"wrong types", Fault::body(R"({"result":"true","payload":5)" + others), Misdeed::Refusal},
    {"wrong types inside", Fault::body(R"({"result":true,"payload":{"upgradable":"x","delta_metadata":[],"message":5,"progress":"x","status":5,)"
                                       R"("directory":5,"interface":5,"id":5,"pending_reboot":"x","state":5})" + others), Misdeed::Oddity},
    {"1e300", number("1e300"), Misdeed::Oddity}, {"-5", number("-5"), Misdeed::Oddity}, {"2^63", number("9223372036854775808"), Misdeed::Oddity}};

const QByteArray ok = R"({"result":true})";
const QByteArray noId = "true, Remote support started but could not fetch ID, ";
const QByteArray rebooted = "true, Device %1 reboot initiated successfully. The device will be unavailable for a few minutes.";
const QByteArray rebooting = "true, Device %1 reboot command sent. The device should be rebooting now.";
const QByteArray shutDown = "true, Device %1 shutdown initiated successfully. The device will power off.";
const QByteArray goingDown = "true, Device %1 shutdown command sent. The device should be powering off now.";
const QByteArray factory = "true, Factory reset successfully initiated for device %1. All settings have been restored to defaults.";
const QByteArray noSuccess = "false, Failed to reset network for %1: Empty success message";
const QByteArray noApp = "false, Network error installing flatpak app: *";
const QByteArray noInterfaces = R"({"interfaces":[],"result":false})";
const QByteArray badFormat = "false, false, Invalid API response format, false, {}";
const QByteArray noDelta = "false, Failed to start delta update (no error details)";
const QByteArray noStart = "false, Failed to start rustdesk service: *, ";
const QByteArray noPassword = "false, Failed to set rustdesk password: *, ";
const QByteArray stopped = "true, Remote support stopped successfully";
const QByteArray verifying = "true, Hotspot interface updated successfully. Verifying...";

const Operation operations[] = {
    {"updateDeviceHostname box", {"box !"}, "hostnameUpdated", true, failing("Failed to update hostname for %1", "true, Hostname successfully updated to 'box' for device %1")},
    {"queryPicturesDirectory", {"pictures !"}, "picturesDirectoryReceived", false, each("/home/noctaris/Pictures")},
    {"updatePicturesDirectory /x", {"pictures !"}, "picturesDirectoryUpdated", true, failing("Failed to update pictures directory for %1",
        "true, Pictures directory successfully updated to '/x' for device %1 . Make sure to reboot the system to monitor the directory.")},
    {"checkForSoftwareUpdates", {"upgradable !"}, "softwareUpdateCheckCompleted", false, {"false, false, *, false, {}", badFormat, badFormat, "true, false, Delta update available, true, *"},
        {{"wrong types inside", "true, false, Software is up to date, false, {}"}}},
    {"startSoftwareUpdate", {"upgrade !"}, "softwareUpdateStarted", false,
        {"false, *", "false, Invalid response format from server", "false, Failed to start software upgrade", "true, Software upgrade started successfully"},
        {{"object", "false, Invalid response format from server - missing 'result' field"}}},
    {"checkSoftwareUpdateProgress", {"progress !"}, "softwareUpdateProgressReceived", false, {"-", "0", "0", "0"}, {{"1e300", "1e+300"}, {"-5", "-5"}, {"2^63", "92233720368547*"}}},
    {"applyDeltaUpdate 2", {"apply !"}, "deltaUpdateStarted", false, {"false, Network error: *", noDelta, noDelta, "true, Delta update started"}},
    {"checkDeltaProgress", {"progress !"}, "deltaUpdateProgressReceived", false, each("0, "), {{"1e300", "*"}, {"-5", "-5, "}, {"2^63", "*"}}},
    {"checkDeltaStatus", {"status !"}, "deltaStatusReceived", false, each("false, ")},
    {"applyRollback 2", {"rollback !"}, "rollbackApplyCompleted", false, {"false, Network error: *%4", "false, Invalid response from server", "false, Failed to prepare rollback", "true, Rollback to 2 prepared. Please reboot."}},
    {"reboot", {"reboot !"}, "rebootCompleted", true, {"true, Device %1 reboot command sent. Network error occurred (*), but device may be rebooting.", rebooting, rebooting, rebooted},
        {{"dropped", "true, Device %1 reboot initiated successfully. Connection lost as expected - device is rebooting."}, {"empty", rebooted}}},
    {"shutdown", {"shutdown !"}, "shutdownCompleted", true, {"true, Device %1 shutdown command sent. Network error occurred (*), but device may be shutting down.", goingDown, goingDown, shutDown},
        {{"dropped", "true, Device %1 shutdown initiated successfully. Connection lost as expected - device is powering off."}, {"empty", shutDown}}},
    {"factoryReset", {"factory_reset !"}, "factoryResetCompleted", true, failing("Factory reset failed for %1", factory), {{"empty", factory}}},
    {"networkReset", {"network_reset !"}, "networkResetCompleted", true, failing("Failed to reset network for %1", noSuccess),
        {{"object", "false, Failed to reset network for %1: Unknown response format"}, {"wrong types", noSuccess}}},
    {"resetLumarc", {"reset !", "service HTTP 500"}, "lumarcResetCompleted", true, failing("Initial Lumarc reset failed for %1", "false, Failed to reset Lumarc for %1: Network error - * (HTTP 500)")},
    {"resetLumarc", {"reset " + ok, "service !"}, "lumarcResetCompleted", true, failing("Failed to reset Lumarc for %1", "-")},
    {"resetLumarc", {"reset " + ok, "service " + ok, "generate !"}, "lumarcResetCompleted", true, then("false, Lumarc reset failed for device %1: Image regeneration encountered issues: *", "-")},
    {"checkLumarcRegenerationProgress", {"progress !"}, "lumarcRegenerationProgressReceived", false, each("0, Regenerating..., false"), {{"-5", "-5, Regenerating..., false"}}},
    {"queryReleaseType", {"app !"}, "releaseTypeReceived", false, each("stable, , ")},
    {"updateReleaseType beta", {"app !", "app HTTP 500"}, "releaseTypeUpdated", false, then("false, Failed to check installed flatpak apps: *", noApp)},
    {"updateReleaseType beta", {"app []", "app !"}, "releaseTypeUpdated", false, {noApp, "false, Invalid response from flatpak install", "false, Failed to start flatpak installation", "-"}},
    {"updateReleaseType beta", {R"(app [{"application_id":"org.kde.kstars","branch":"master"}])", "default !"}, "releaseTypeUpdated", true,
        failing("Failed to update release type for %1", "true, Release type successfully updated to 'beta' for device %1.")},
    {"checkFlatpakProgress", {"progress !"}, "flatpakProgressReceived", false, {"-", "-", "-", "0, , "}, {{"-5", "-5, , "}}},
    {"queryHotspotInterface", {"hotspot_interface !"}, "hotspotInterfaceReceived", false, {"true", "true", "true", "false"}},
    {"updateHotspotInterface true", {"wlan0 !"}, "hotspotInterfaceUpdated", false, {"false, Network error: *", "false, Invalid response from server", verifying, verifying}, {{"object", "false, Failed to update hotspot interface"}}},
    {"queryNetworkInterfaces", {"all_interfaces !"}, "networkInterfacesReceived", false, {noInterfaces, noInterfaces, noInterfaces, R"({"interfaces":[],"result":true})"}, {{"list", R"({"interfaces":[],"result":true})"}}},
    {"activateDirectEthernet", {"activate_direct_ethernet !"}, "ethernetActivationCompleted", true, failing("Failed to activate direct ethernet for %1", "true, Direct ethernet activated successfully for device %1.")},
    {"deactivateDirectEthernet", {"deactivate_direct_ethernet !"}, "ethernetDeactivationCompleted", true, failing("Failed to deactivate direct ethernet for %1", "true, Direct ethernet deactivated successfully for device %1.")},
    {"queryRemoteSupportStatus", {"isactive !"}, "remoteSupportStatusReceived", false, each("false, ")},
    {"queryRemoteSupportStatus", {"isactive active", "id !"}, "remoteSupportStatusReceived", false, {"false, ", "true, *", "false, ", "false, "}, {{"empty", "false, "}}},
    {"startRemoteSupport", {"service !", "service HTTP 500"}, "remoteSupportStarted", false, then("false, Failed to enable rustdesk service: *, ", noStart)},
    {"startRemoteSupport", {"service " + ok, "service !", "reset HTTP 500"}, "remoteSupportStarted", false, then(noStart, noPassword)},
    {"startRemoteSupport", {"service " + ok, "reset !", "id HTTP 500"}, "remoteSupportStarted", false, then(noPassword, noId)},
    {"startRemoteSupport", {"service " + ok, "reset " + ok, "id !"}, "remoteSupportStarted", false, {noId, "true, Remote support started successfully, *", noId, noId}, {{"empty", noId}}},
    {"stopRemoteSupport", {"service !"}, "remoteSupportStopped", false, then("false, Failed to stop remote support: *", stopped)},
    {"stopRemoteSupport", {"service " + ok, "service !"}, "remoteSupportStopped", false, each(stopped)},
    {"queryExternalStorage", {"storage !"}, "externalStorageReceived", false, each("[]")}};
// clang-format on

/// A line, or the pattern if it fits it.
QString unlessFitting(const QString &line, const QString &pattern)
{
    const QStringList ends = pattern.split(u'*');
    const bool fits = ends.size() == 2 && line.startsWith(ends[0]) && line.endsWith(ends[1]);
    return fits && line.count(u"(HTTP"_s) == pattern.count(u"(HTTP"_s) ? pattern : line;
}
} // namespace

/// Whatever a device answers to an operation: its result is told once, and nothing breaks or hangs.
class TestOperationFaults : public QObject
{
    Q_OBJECT

private slots:
    void toldOnce_data();
    void toldOnce();
};

void TestOperationFaults::toldOnce_data()
{
    QTest::addColumn<const Operation *>("operation");
    for (const Operation &operation : operations)
        QTest::newRow(operation.call + ": " + operation.answers.join(", ")) << &operation;
}

void TestOperationFaults::toldOnce()
{
    QFETCH(const Operation *const, operation);
    // All at once, each on a device of its own
    Operations all(std::size(misdeeds));
    QVERIFY(all.isReady);
    std::vector<std::unique_ptr<Script>> scripts;
    for (int row = 0; const Misdeed &misdeed : misdeeds)
    {
        scripts.push_back(std::make_unique<Script>(all.device(row), operation->answers, misdeed.fault));
        QVERIFY(all.call(QString::fromUtf8(operation->call), row++));
    }
    for (const auto &script : scripts)
        QTRY_VERIFY(script->isFaultGiven);
    QVERIFY(all.settle(20000));
    for (size_t row = 0; const Misdeed &misdeed : misdeeds)
    {
        const Script &script = *scripts[row++];
        QByteArray text = operation->exceptions.value(misdeed.name, operation->texts[misdeed.text]);
        text.replace("%4", misdeed.name.startsWith("HTTP") ? " (" + misdeed.name.first(8) + ")" : "");
        QByteArrayList due{operation->signal + "(%1, " + text + ")",
                           "status: " + text.mid(text.indexOf(", ") + 2)};
        due.resize(text == "-" ? 0 : operation->setsStatus ? 2 : 1);
        const QStringList expected = script.filled(due);
        const QStringList lines = script.heard(all);
        QStringList told = lines.filter(QString::fromUtf8(operation->signal));
        if (operation->setsStatus && !told.isEmpty())
            told.append(lines.last());
        for (qsizetype line = 0; line < told.size(); ++line)
            told[line] = unlessFitting(told[line], expected.value(line));
        const QString name = QString::fromUtf8(misdeed.name);
        QCOMPARE(name + u'\n' + told.join(u'\n'), name + u'\n' + expected.join(u'\n'));
    }
}

QTEST_GUILESS_MAIN(TestOperationFaults)
#include "TestOperationFaults.moc"
