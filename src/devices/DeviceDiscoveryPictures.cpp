// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/DeviceRequest.h"
#include "devices/Verdicts.h"

#include <QDebug>

using namespace Qt::StringLiterals;

namespace {
constexpr auto factoryPicturesDirectory = "/home/noctaris/Pictures"_L1;
} // namespace

void DeviceDiscovery::queryPicturesDirectory(int deviceIndex)
{
    const auto ipAddress = addressForQuery(deviceIndex, "Invalid device index for pictures directory query:");
    if (!ipAddress)
        return;
    send("get_pictures_directory"_L1, *ipAddress);
    qInfo() << "Querying pictures directory for device:" << *ipAddress;
}

QString verdict::picturesDirectory(const DeviceAnswer &answer)
{
    if (!answer.isGranted())
        return {};
    const QJsonValue payload = answer.object().value("payload"_L1);
    return payload.isObject() ? payload.toObject().value("directory"_L1).toString() : payload.toString();
}

void DeviceDiscovery::onPicturesReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer({"Pictures directory query response - HTTP status:", "Raw pictures directory response data:"},
              answer);
    const QString directory = verdict::picturesDirectory(answer);
    if (answer.hasFailed())
        qDebug() << "Network error getting pictures directory for" << ipAddress << answer.errorText;
    else if (!answer.isObject())
        qDebug() << "Failed to parse pictures directory response for" << ipAddress << answer.jsonErrorText;
    else if (directory.isEmpty())
        qDebug() << "Failed to get pictures directory for" << ipAddress
                 << ": Server returned result=" << answer.isGranted()
                 << "Directory empty:" << directory.isEmpty();
    else if (s_verboseLogging)
        qDebug() << "Received pictures directory for" << ipAddress << directory;

    if (!directory.isEmpty())
        m_picturesDirectories.insert(ipAddress, directory);
    // The page needs a path in its field whatever happened, so a failure shows the factory one.
    emit picturesDirectoryReceived(ipAddress,
                                   directory.isEmpty() ? QString(factoryPicturesDirectory) : directory);
    reply->deleteLater();
}

void DeviceDiscovery::updatePicturesDirectory(int deviceIndex, const QString &newDirectory)
{
    const auto ipAddress = addressForCommand(deviceIndex, &DeviceDiscovery::picturesDirectoryUpdated);
    if (!ipAddress)
        return;
    const QString directory = newDirectory.simplified();
    if (directory.isEmpty())
    {
        emit picturesDirectoryUpdated(*ipAddress, false, u"Directory path cannot be empty"_s);
        return;
    }
    setStatusText(u"Updating pictures directory for %1 to %2..."_s.arg(*ipAddress, directory));
    const QByteArray body = jsonBody({{u"directory"_s, directory}});
    const QNetworkReply *reply =
        send("update_pictures_directory"_L1, *ipAddress, {.body = body, .properties = {directory}});
    logRequest("Making pictures directory update request to:", reply, "JSON payload:", body);
}

Outcome verdict::picturesDirectoryUpdate(const DeviceAnswer &answer)
{
    // The service that watches the directory takes it up at its start only.
    return common(answer, u"Failed to update pictures directory for %1"_s.arg(answer.ipAddress),
                  u"Pictures directory successfully updated to '%1' for device %2 . Make sure to reboot the "
                  "system to monitor the directory."_s.arg(answer.text("newDirectory"), answer.ipAddress));
}

void DeviceDiscovery::onPicturesUpdateReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer(
        {"Pictures directory update response - HTTP status:", "Raw pictures directory update response data:"},
        answer);
    const Outcome outcome = verdict::picturesDirectoryUpdate(answer);
    logOutcome(outcome, answer);
    if (outcome.success)
        m_picturesDirectories.insert(ipAddress, answer.text("newDirectory"));
    report(&DeviceDiscovery::picturesDirectoryUpdated, ipAddress, outcome);
    reply->deleteLater();
}
