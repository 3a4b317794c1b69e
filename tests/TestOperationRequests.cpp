// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "support/Operations.h"

#include <QElapsedTimer>
#include <QNetworkReply>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace probing;

namespace {
/// A request that an operation leads to.
struct Case
{
    QString operation;
    int position; // of the request, among those of the operation
    QString text; // method, port and target | headers that the program sets | the reply's type and properties
    int abortMs;  // 0 for what is still open after 31 s
    QByteArray body = {};
};

/// A JSON object of texts, as it stands on the wire.
QByteArray json(const QList<std::pair<QByteArray, QByteArray>> &fields)
{
    QByteArrayList lines;
    for (const auto &[name, value] : fields)
        lines.append("    \"" + name + "\": \"" + value + '"');
    return "{\n" + lines.join(",\n") + "\n}\n";
}

QList<Case> cases()
{
    const auto service = [](auto what, auto name) { return json({{"operation", what}, {"service", name}}); };
    const QByteArray version = json({{"target_version", " 1.8.1 "}});
    // clang-format off
    return {
        {u"updateDeviceHostname  my büro\t🔭 "_s, 1, u"POST 8624 /api/info/hostname/myb%C3%BCro%F0%9F%94%AD | content-type user-agent | update_hostname newHostname=mybüro🔭"_s, 10000},
        // A name is a part of the URL, with all that its characters mean there.
        {u"updateDeviceHostname a?b=c#d"_s, 1, u"POST 8624 /api/info/hostname/a?b=c | content-type user-agent | update_hostname newHostname=a?b=c#d"_s, 10000},
        {u"updateDeviceHostname 50%"_s, 1, u"POST 8624 /api/info/hostname/50%25 | content-type user-agent | update_hostname newHostname=50%"_s, 10000},
        {u"updateDeviceHostname %1%2"_s, 1, u"POST 8624 /api/info/hostname/%251%252 | content-type user-agent | update_hostname newHostname=%1%2"_s, 10000},
        {u"updateDeviceHostname a%20b"_s, 1, u"POST 8624 /api/info/hostname/a%20b | content-type user-agent | update_hostname newHostname=a%20b"_s, 10000},
        {u"updateDeviceHostname a\"<b>"_s, 1, u"POST 8624 /api/info/hostname/a%22%3Cb%3E | content-type user-agent | update_hostname newHostname=a\"<b>"_s, 10000},
        {u"queryPicturesDirectory"_s, 1, u"GET 8624 /api/info/pictures | user-agent | get_pictures_directory"_s, 10000},
        {u"updatePicturesDirectory  /my  pictures "_s, 1, u"POST 8624 /api/info/pictures | content-type user-agent | update_pictures_directory newDirectory=/my pictures"_s, 10000, json({{"directory", "/my pictures"}})},
        {u"checkForSoftwareUpdates"_s, 1, u"GET 8624 /api/software/upgradable?force_check=true | content-type | software_upgradable_check"_s, 30000},
        {u"startSoftwareUpdate"_s, 1, u"GET 8624 /api/software/upgrade | content-type | "_s, 0},
        {u"checkSoftwareUpdateProgress"_s, 1, u"GET 8624 /api/software/progress | content-type | "_s, 0},
        {u"applyDeltaUpdate  1.8.1 "_s, 1, u"POST 8624 /api/software/delta/apply | content-type | delta_apply"_s, 30000, version},
        {u"checkDeltaProgress"_s, 1, u"GET 8624 /api/software/progress |  | delta_progress"_s, 0},
        {u"checkDeltaStatus"_s, 1, u"GET 8624 /api/software/delta/status |  | delta_status"_s, 10000},
        {u"applyRollback  1.8.1 "_s, 1, u"POST 8624 /api/software/delta/rollback | accept content-type user-agent | rollback_apply targetVersion= 1.8.1 "_s, 30000, version},
        {u"reboot"_s, 1, u"POST 8624 /api/system/reboot | content-type user-agent | reboot"_s, 15000},
        {u"shutdown"_s, 1, u"POST 8624 /api/system/shutdown | content-type user-agent | shutdown"_s, 15000},
        {u"factoryReset"_s, 1, u"POST 8624 /api/system/factory_reset | content-type user-agent | factory_reset"_s, 20000},
        {u"networkReset"_s, 1, u"POST 8624 /api/system/network_reset | content-type user-agent | network_reset"_s, 15000},
        {u"resetLumarc"_s, 1, u"GET 3000 /reset | content-type user-agent | lumarc_reset_phase0"_s, 15000},
        {u"resetLumarc"_s, 2, u"POST 8624 /api/service | content-type user-agent | lumarc_reset_phase1"_s, 15000, service("restart", "lumarc")},
        {u"resetLumarc"_s, 3, u"GET 3000 /generate | user-agent | lumarc_reset_phase2"_s, 30000},
        {u"checkLumarcRegenerationProgress"_s, 1, u"GET 3000 /generate/progress | user-agent | lumarc_regeneration_progress deviceIndex=row"_s, 10000},
        {u"queryReleaseType"_s, 1, u"GET 8624 /api/flatpak/app | user-agent | get_release_type"_s, 10000},
        {u"updateReleaseType  Beta "_s, 1, u"GET 8624 /api/flatpak/app | user-agent | check_before_release_update targetReleaseType=beta flatpakBranch=master"_s, 10000},
        {u"updateReleaseType beta"_s, 2, u"PUT 8624 /api/flatpak/default | content-type user-agent | update_release_type newReleaseType=beta"_s, 10000, json({{"application_id", "org.kde.kstars"}, {"branch", "master"}})},
        {u"updateReleaseType stable"_s, 2, u"POST 8624 /api/flatpak/app | content-type user-agent | install_flatpak_app targetReleaseType=stable flatpakBranch=stable"_s, 0, json({{"application_id", "org.kde.kstars"}, {"branch", "stable"}})},
        {u"checkFlatpakProgress"_s, 1, u"GET 8624 /api/flatpak/app/progress | user-agent | flatpak_progress deviceIndex=row"_s, 10000},
        {u"queryHotspotInterface"_s, 1, u"GET 8624 /api/system/hotspot_interface | user-agent | get_hotspot_interface"_s, 10000},
        {u"updateHotspotInterface true"_s, 1, u"POST 8624 /api/system/hotspot_interface/wlan0 | user-agent | update_hotspot_interface useInternalWifi=true interfaceName=wlan0"_s, 10000},
        {u"updateHotspotInterface false"_s, 1, u"POST 8624 /api/system/hotspot_interface/wlan1 | user-agent | update_hotspot_interface useInternalWifi=false interfaceName=wlan1"_s, 10000},
        {u"queryNetworkInterfaces"_s, 1, u"GET 8624 /api/info/all_interfaces | user-agent | get_network_interfaces"_s, 10000},
        {u"activateDirectEthernet"_s, 1, u"POST 8624 /api/system/activate_direct_ethernet | content-type user-agent | activate_direct_ethernet"_s, 10000},
        {u"deactivateDirectEthernet"_s, 1, u"POST 8624 /api/system/deactivate_direct_ethernet | content-type user-agent | deactivate_direct_ethernet"_s, 10000},
        {u"queryRemoteSupport"_s, 1, u"POST 8624 /api/service/isactive | content-type user-agent | remote_support_status"_s, 10000, json({{"service", "rustdesk"}})},
        {u"queryRemoteSupportStatus"_s, 2, u"GET 8624 /api/software/rustdesk/id | user-agent | remote_support_get_id"_s, 10000},
        {u"startRemoteSupport"_s, 1, u"POST 8624 /api/service | content-type user-agent | remote_support_enable deviceIndex=row"_s, 10000, service("enable", "rustdesk")},
        {u"startRemoteSupport"_s, 2, u"POST 8624 /api/service | content-type user-agent | remote_support_start deviceIndex=row"_s, 10000, service("start", "rustdesk")},
        {u"startRemoteSupport"_s, 3, u"POST 8624 /api/software/rustdesk/reset | content-type user-agent | remote_support_set_password deviceIndex=row"_s, 10000, json({{"password", "orbit#Lane482!qz"}})},
        {u"startRemoteSupport"_s, 4, u"GET 8624 /api/software/rustdesk/id | user-agent | remote_support_fetch_id deviceIndex=row"_s, 10000},
        {u"stopRemoteSupport"_s, 1, u"POST 8624 /api/service | content-type user-agent | remote_support_stop deviceIndex=row"_s, 10000, service("stop", "rustdesk")},
        {u"stopRemoteSupport"_s, 2, u"POST 8624 /api/service | content-type user-agent | remote_support_disable"_s, 10000, service("disable", "rustdesk")},
        {u"queryExternalStorage"_s, 1, u"GET 8624 /api/info/storage | user-agent | get_external_storage"_s, 10000},
    };
    // clang-format on
}

/// The text of a case, as a request and its reply make it, and the body behind it.
QString textOf(const HttpRequest &request, const QNetworkReply &reply, int row)
{
    // What Qt writes by itself, the last two values where the program has none
    const QByteArrayList ofQt = QByteArray("host connection accept-encoding accept-language content-length "
                                           "mozilla/5.0 application/x-www-form-urlencoded")
                                    .split(' ');
    QStringList headers;
    for (const auto &[name, value] : request.headers)
    {
        const bool isUsual = value == "application/json" || value == "Noctaris-Discovery/1.0";
        if (!ofQt.contains(name.toLower()) && !ofQt.contains(value.toLower()))
            headers.append(QString::fromLatin1(name.toLower() + (isUsual ? QByteArray() : '=' + value)));
    }
    headers.sort();
    QStringList properties;
    for (const QByteArray &name : reply.dynamicPropertyNames())
    {
        const QVariant value = reply.property(name);
        properties.append(QString::fromLatin1(name) + u'=' + (value == row ? u"row"_s : value.toString()));
    }
    const QByteArray line = request.method + ' ' + QByteArray::number(request.port) + ' ' + request.target;
    const QString first = u"ipAddress=%1 type="_s.arg(reply.url().host());
    return QString::fromUtf8(line) + u" | "_s + headers.join(u' ') + u" | "_s +
           properties.join(u' ').remove(first) + u'\n' + QString::fromUtf8(request.body);
}
} // namespace

/// What each operation sends, and how long it waits for an answer.
class TestOperationRequests : public QObject
{
    Q_OBJECT

private slots:
    void sendsAndWaits();
    void countsWhatIsTagged();
};

/// All operations run side by side, each on a device that keeps silent from the request in question on.
void TestOperationRequests::sendsAndWaits()
{
    const QList<Case> all = cases();
    QStringList seen(all.size());
    QStringList expected;
    QSet<QString> tags;
    QElapsedTimer clock;
    Operations operations(static_cast<int>(all.size()));
    clock.start();
    for (int row = 0; row < all.size(); ++row)
    {
        SimulatedDevice &device = operations.device(row);
        // Leads every chain on: a service that is active, and one of the two branches that is installed.
        device.answer(anything, R"({"result":true,"status":"active",
                                    "payload":[{"application_id":"org.kde.kstars","branch":"master"}]})");
        const auto keepSilent = [&, row](const HttpRequest &request) {
            if (device.requestCount() != all.at(row).position)
                return;
            device.hold(anything);
            for (const auto *reply : operations.discovery.findChildren<QNetworkReply *>())
            {
                if (reply->isFinished() || reply->url().host() != device.address())
                    continue;
                seen[row] = textOf(request, *reply, row);
                connect(reply, &QNetworkReply::finished, this, [&, row, since = clock.elapsed()] {
                    seen[row] += timing(clock.elapsed() - since, all.at(row).abortMs);
                });
            }
        };
        connect(&device, &SimulatedDevice::requestReceived, this, keepSilent);
        QVERIFY(operations.call(all.at(row).operation, row));
        QVERIFY(QTest::qWaitFor([&] { return device.requestCount() > 0; }));
        tags.insert(all.at(row).text.section(u" | "_s, 2).section(u' ', 0, 0));
        expected += all.at(row).text + u'\n' + QString::fromUtf8(all.at(row).body);
        if (all.at(row).abortMs > 0)
            expected.last() += u"about %1 ms"_s.arg(all.at(row).abortMs);
    }
    (void)QTest::qWaitFor([&] { return seen == expected && clock.elapsed() > 33000; }, 45000);
    QCOMPARE(seen, expected);
    // All but those of the four identity questions and of the status check, and one for those without
    std::printf("covered tags: %s\n", qPrintable(QStringList(tags.values()).join(u' ')));
    QCOMPARE(tags.size(), 35 + 1);

    // A device that keeps silent has not dropped the connection, as one that obeys may do.
    const QString end = u"Network error occurred (Operation canceled), but device may be "_s;
    for (const QString &word : {u"rebooting.)"_s, u"shutting down.)"_s})
        QCOMPARE(operations.said.filter(u", true, "_s).filter(end + word).size(), 1);
    QCOMPARE(operations.log.lines().filter(u"timed out"_s), {u"warning: Rollback request timed out"_s});
}

void TestOperationRequests::countsWhatIsTagged()
{
    Operations operations(1);
    operations.device().hold(anything);
    for (const auto &operation :
         u"startSoftwareUpdate checkSoftwareUpdateProgress checkDeltaProgress reboot"_s.split(u' '))
        operations.call(operation);
    operations.discovery.stopDiscovery();
    QCOMPARE(operations.log.count(u"info: Stopping discovery - Current pending requests: 2"_s), 1);
}

QTEST_GUILESS_MAIN(TestOperationRequests)
#include "TestOperationRequests.moc"
