// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceRequest.h"

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
const DeviceDiscovery::Request DeviceDiscovery::s_requests[] = {
    // clang-format off
    // tag             method        path                    port                abort   headers         bookkeeping             properties, handler
    {"status_check"_L1, Request::Get, "/api/info/hostname"_L1,   Request::DeviceApi, 5000,  Request::Plain, Request::Counted,      {}, &DeviceDiscovery::onStatusCheckReply},
    {"hostname"_L1,     Request::Get, "/api/info/hostname"_L1,   Request::DeviceApi, 10000, Request::Plain, Request::Counted,      {}, &DeviceDiscovery::onIdentityReply},
    {"version"_L1,      Request::Get, "/api/info/version"_L1,    Request::DeviceApi, 10000, Request::Plain, Request::Counted,      {}, &DeviceDiscovery::onIdentityReply},
    {"model"_L1,        Request::Get, "/api/info/model"_L1,      Request::DeviceApi, 10000, Request::Plain, Request::LeftToCaller, {}, &DeviceDiscovery::onIdentityReply},
    {"machine_id"_L1,   Request::Get, "/api/info/machine-id"_L1, Request::DeviceApi, 10000, Request::Plain, Request::Counted,      {}, &DeviceDiscovery::onIdentityReply},
    // clang-format on
};

/// The row of a tag that the program itself sends.
const DeviceDiscovery::Request &DeviceDiscovery::requestOf(QLatin1StringView tag)
{
    const auto *row = std::find_if(std::begin(s_requests), std::end(s_requests),
                                   [tag](const Request &request) { return request.tag == tag; });
    Q_ASSERT(row != std::end(s_requests));
    return *row;
}

QNetworkReply *DeviceDiscovery::send(QLatin1StringView tag, const QString &ipAddress)
{
    return send(tag, ipAddress, {});
}

/// Sends one request of the table and returns its reply, tagged with all that its handler needs to know.
QNetworkReply *DeviceDiscovery::send(QLatin1StringView tag, const QString &ipAddress,
                                     const RequestContent &content)
{
    const Request &row = requestOf(tag);
    const QString path =
        row.path.contains("%1"_L1) ? QString(row.path).arg(content.pathArgument) : QString(row.path);
    QNetworkRequest request(QUrl(u"http://%1:%2%3"_s.arg(ipAddress, QString::number(row.port), path)));
    if (row.headers & Request::UserAgent)
        request.setRawHeader("User-Agent", "Noctaris-Discovery/1.0");
    if (row.headers & Request::JsonContent)
        request.setRawHeader("Content-Type", "application/json");
    if (row.headers & Request::Redirects)
    {
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::NoLessSafeRedirectPolicy);
    }

    QNetworkReply *reply = row.method == Request::Get    ? m_networkManager->get(request)
                           : row.method == Request::Post ? m_networkManager->post(request, content.body)
                                                         : m_networkManager->put(request, content.body);
    reply->setProperty("ipAddress", ipAddress);
    reply->setProperty("type", QString(tag));
    auto value = content.properties.cbegin();
    for (const char *name : row.properties)
        reply->setProperty(name, *value++);

    limitReply(reply);
    if (row.abortMs != Request::NoAbort)
    {
        QTimer::singleShot(row.abortMs, reply, [reply] {
            if (reply->isRunning())
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
    for (const Request &request : s_requests)
    {
        if (type == request.tag)
        {
            (this->*request.handler)(reply, ipAddress);
            return;
        }
    }
    onIdentityReply(reply, ipAddress);
}
