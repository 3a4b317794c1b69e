// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceRequest.h"

#include <QDebug>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
// More than any answer of the device API; what is longer is not an answer and would only eat memory.
constexpr qint64 maxReplyBytes = qint64(16) * 1024 * 1024;
constexpr qint64 readBlockBytes = qint64(1024) * 1024;
} // namespace

// Every request to a device, in the order in which an answer's tag is compared with them. An answer with
// a tag of no row is treated as one to an identity question.
const DeviceDiscovery::Request DeviceDiscovery::Request::table[] = {
    // clang-format off
    // tag                              method       path                                            abort    headers      handler                                        properties, port, bookkeeping, warning
    {"software_upgradable_check"_L1,    Get,         "/api/software/upgradable?force_check=true"_L1, 30000,   JsonContent, &DeviceDiscovery::onUpgradableReply},
    {"delta_apply"_L1,                  Post,        "/api/software/delta/apply"_L1,                 30000,   JsonContent, &DeviceDiscovery::onDeltaApplyReply},
    {"update_hotspot_interface"_L1,     Post,        "/api/system/hotspot_interface/%1"_L1,          10000,   Plain,       &DeviceDiscovery::onHotspotUpdateReply,        {"useInternalWifi", "interfaceName"}},
    {"get_hotspot_interface"_L1,        Get,         "/api/system/hotspot_interface"_L1,             10000,   Plain,       &DeviceDiscovery::onHotspotReply},
    {"rollback_apply"_L1,               Post,        "/api/software/delta/rollback"_L1,              30000,   Explicit,    &DeviceDiscovery::onRollbackReply,             {"targetVersion"}, DeviceApi, Counted, "Rollback request timed out"},
    {"status_check"_L1,                 Get,         "/api/info/hostname"_L1,                        5000,    Plain,       &DeviceDiscovery::onStatusCheckReply},
    {"delta_progress"_L1,               Get,         "/api/software/progress"_L1,                    NoAbort, Bare,        &DeviceDiscovery::onDeltaProgressReply},
    {"delta_status"_L1,                 Get,         "/api/software/delta/status"_L1,                10000,   Bare,        &DeviceDiscovery::onDeltaStatusReply},
    {"get_external_storage"_L1,         Get,         "/api/info/storage"_L1,                         10000,   Plain,       &DeviceDiscovery::onStorageReply},
    {"get_network_interfaces"_L1,       Get,         "/api/info/all_interfaces"_L1,                  10000,   Plain,       &DeviceDiscovery::onNetworkInterfacesReply},
    {"factory_reset"_L1,                Post,        "/api/system/factory_reset"_L1,                 20000,   Json,        &DeviceDiscovery::onFactoryResetReply},
    {"lumarc_reset_phase0"_L1,          GetWithBody, "/reset"_L1,                                    15000,   Json,        &DeviceDiscovery::onLumarcResetReply,          {}, Companion},
    {"lumarc_reset_phase1"_L1,          Post,        "/api/service"_L1,                              15000,   Json,        &DeviceDiscovery::onLumarcRestartReply},
    {"lumarc_reset_phase2"_L1,          Get,         "/generate"_L1,                                 30000,   Plain,       &DeviceDiscovery::onLumarcGenerateReply,       {}, Companion},
    {"lumarc_regeneration_progress"_L1, Get,         "/generate/progress"_L1,                        10000,   Plain,       &DeviceDiscovery::onLumarcProgressReply,       {"deviceIndex"}, Companion},
    {"network_reset"_L1,                Post,        "/api/system/network_reset"_L1,                 15000,   Json,        &DeviceDiscovery::onNetworkResetReply},
    {"reboot"_L1,                       Post,        "/api/system/reboot"_L1,                        15000,   Json,        &DeviceDiscovery::onRebootReply},
    {"shutdown"_L1,                     Post,        "/api/system/shutdown"_L1,                      15000,   Json,        &DeviceDiscovery::onShutdownReply},
    {"get_pictures_directory"_L1,       Get,         "/api/info/pictures"_L1,                        10000,   Plain,       &DeviceDiscovery::onPicturesReply},
    {"update_pictures_directory"_L1,    Post,        "/api/info/pictures"_L1,                        10000,   Json,        &DeviceDiscovery::onPicturesUpdateReply,       {"newDirectory"}},
    {"check_before_release_update"_L1,  Get,         "/api/flatpak/app"_L1,                          10000,   Plain,       &DeviceDiscovery::onReleaseCheckReply,         {"targetReleaseType", "flatpakBranch"}},
    {"install_flatpak_app"_L1,          Post,        "/api/flatpak/app"_L1,                          300000,  Json,        &DeviceDiscovery::onInstallReply,              {"targetReleaseType", "flatpakBranch"}},
    {"flatpak_progress"_L1,             Get,         "/api/flatpak/app/progress"_L1,                 10000,   Plain,       &DeviceDiscovery::onInstallProgressReply,      {"deviceIndex"}},
    {"get_release_type"_L1,             Get,         "/api/flatpak/app"_L1,                          10000,   Plain,       &DeviceDiscovery::onReleaseTypeReply},
    {"update_release_type"_L1,          Put,         "/api/flatpak/default"_L1,                      10000,   Json,        &DeviceDiscovery::onReleaseUpdateReply,        {"newReleaseType"}},
    {"update_hostname"_L1,              Post,        "/api/info/hostname/%1"_L1,                     10000,   Json,        &DeviceDiscovery::onHostnameReply,             {"newHostname"}},
    {"activate_direct_ethernet"_L1,     Post,        "/api/system/activate_direct_ethernet"_L1,      10000,   Json,        &DeviceDiscovery::onEthernetActivationReply},
    {"remote_support_status"_L1,        Post,        "/api/service/isactive"_L1,                     10000,   Json,        &DeviceDiscovery::onSupportStatusReply},
    {"remote_support_get_id"_L1,        Get,         "/api/software/rustdesk/id"_L1,                 10000,   Plain,       &DeviceDiscovery::onSupportIdReply},
    {"remote_support_fetch_id"_L1,      Get,         "/api/software/rustdesk/id"_L1,                 10000,   Plain,       &DeviceDiscovery::onSupportFetchIdReply,       {"deviceIndex"}},
    {"remote_support_enable"_L1,        Post,        "/api/service"_L1,                              10000,   Json,        &DeviceDiscovery::onSupportEnableReply,        {"deviceIndex"}},
    {"remote_support_start"_L1,         Post,        "/api/service"_L1,                              10000,   Json,        &DeviceDiscovery::onSupportStartReply,         {"deviceIndex"}},
    {"remote_support_set_password"_L1,  Post,        "/api/software/rustdesk/reset"_L1,              10000,   Json,        &DeviceDiscovery::onSupportPasswordReply,      {"deviceIndex"}},
    {"remote_support_stop"_L1,          Post,        "/api/service"_L1,                              10000,   Json,        &DeviceDiscovery::onSupportStopReply,          {"deviceIndex"}},
    {"remote_support_disable"_L1,       Post,        "/api/service"_L1,                              10000,   Json,        &DeviceDiscovery::onSupportDisableReply},
    {"deactivate_direct_ethernet"_L1,   Post,        "/api/system/deactivate_direct_ethernet"_L1,    10000,   Json,        &DeviceDiscovery::onEthernetDeactivationReply},
    {"hostname"_L1,                     Get,         "/api/info/hostname"_L1,                        10000,   Plain,       &DeviceDiscovery::onIdentityReply},
    {"version"_L1,                      Get,         "/api/info/version"_L1,                         10000,   Plain,       &DeviceDiscovery::onIdentityReply},
    {"model"_L1,                        Get,         "/api/info/model"_L1,                           10000,   Plain,       &DeviceDiscovery::onIdentityReply,             {}, DeviceApi, LeftToCaller},
    {"machine_id"_L1,                   Get,         "/api/info/machine-id"_L1,                      10000,   Plain,       &DeviceDiscovery::onIdentityReply},
    // clang-format on
};

/// The row of a tag that the program itself sends.
const DeviceDiscovery::Request &DeviceDiscovery::requestOf(QLatin1StringView tag)
{
    const auto *row = std::find_if(std::begin(Request::table), std::end(Request::table),
                                   [tag](const Request &request) { return request.tag == tag; });
    Q_ASSERT(row != std::end(Request::table));
    return *row;
}

/// A request with the headers of a row and without an address. All requests of a row share them: made anew
/// for each of the thousand of a scan, they alone would be 4 MiB to fill while the window waits.
QNetworkRequest DeviceDiscovery::requestWith(int headers)
{
    static QHash<int, QNetworkRequest> prepared;
    if (const auto known = prepared.constFind(headers); known != prepared.constEnd())
        return *known;
    QNetworkRequest request;
    if (headers & Request::UserAgent)
        request.setRawHeader("User-Agent", "Noctaris-Discovery/1.0");
    if (headers & Request::JsonContent)
        request.setRawHeader("Content-Type", "application/json");
    if (headers & Request::AcceptJson)
        request.setRawHeader("accept", "application/json");
    if (headers & Request::Redirects)
    {
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::NoLessSafeRedirectPolicy);
    }
    return *prepared.insert(headers, request);
}

QNetworkReply *DeviceDiscovery::send(QLatin1StringView tag, const QString &ipAddress)
{
    return send(tag, ipAddress, {});
}

QNetworkReply *DeviceDiscovery::sendBy(int method, const QNetworkRequest &request, const QByteArray &body)
{
    switch (method)
    {
    case Request::Post:
        return m_networkManager->post(request, body);
    case Request::Put:
        return m_networkManager->put(request, body);
    case Request::GetWithBody:
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
        return m_networkManager->get(request, body);
#else
        return m_networkManager->sendCustomRequest(request, "GET", body);
#endif
    default:
        return m_networkManager->get(request);
    }
}

/// Sends one request of the table and returns its reply, tagged with all that its handler needs to know.
QNetworkReply *DeviceDiscovery::send(QLatin1StringView tag, const QString &ipAddress,
                                     const RequestContent &content)
{
    const Request &row = requestOf(tag);
    const QString path =
        row.path.contains("%1"_L1) ? QString(row.path).arg(content.pathArgument) : QString(row.path);
    QNetworkRequest request = requestWith(row.headers);
    request.setUrl(QUrl(u"http://%1:%2%3"_s.arg(ipAddress, QString::number(row.port), path)));

    QNetworkReply *reply = sendBy(row.method, request, content.body);
    reply->setProperty("ipAddress", ipAddress);
    reply->setProperty("type", QString(tag));
    auto value = content.properties.cbegin();
    for (const char *name : row.properties)
        reply->setProperty(name, *value++);

    limitReply(reply);
    if (row.abortMs != Request::NoAbort)
    {
        QTimer::singleShot(row.abortMs, reply, [reply, warning = row.abortWarning] {
            if (!reply->isRunning())
                return;
            if (warning)
                qWarning() << warning;
            reply->abort();
        });
    }
    if (row.bookkeeping == Request::Counted)
    {
        ++m_pendingRequests;
        connect(reply, &QNetworkReply::finished, this, &DeviceDiscovery::onNetworkReplyFinished);
    }
    return reply;
}

/// Has a reply fail as soon as its body passes what is kept of one.
void DeviceDiscovery::limitReply(QNetworkReply *reply)
{
    // Not before the body is about to come: of a thousand hosts that a scan asks, few ever answer, and the
    // limit travels to the thread of the sockets.
    const auto limitBody = [reply] {
        // Qt reads in blocks and may stop a block short of its limit: with room for some more, a body that
        // goes on is seen to do so.
        reply->setReadBufferSize(maxReplyBytes + readBlockBytes);
        connect(reply, &QNetworkReply::readyRead, reply, [reply] {
            if (reply->bytesAvailable() > maxReplyBytes)
                reply->abort();
        });
    };
    connect(reply, &QNetworkReply::metaDataChanged, reply, limitBody, Qt::SingleShotConnection);
}

/// A body as devices are used to it.
QByteArray DeviceDiscovery::jsonBody(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

/// Where every answer arrives, whatever it answers and whether it came at all.
void DeviceDiscovery::onNetworkReplyFinished()
{
    auto *reply = qobject_cast<QNetworkReply *>(sender());
    if (!reply)
        return;
    const QString ipAddress = reply->property("ipAddress").toString();
    const QString type = reply->property("type").toString();
    if (m_pendingRequests > 0)
        --m_pendingRequests;
    for (const Request &request : Request::table)
    {
        if (type == request.tag)
        {
            (this->*request.handler)(reply, ipAddress);
            return;
        }
    }
    onIdentityReply(reply, ipAddress);
}
