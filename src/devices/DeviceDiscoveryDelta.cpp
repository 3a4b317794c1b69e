// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/DeviceRequest.h"
#include "devices/Verdicts.h"

#include <QDebug>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

void DeviceDiscovery::applyDeltaUpdate(int deviceIndex, const QString &targetVersion)
{
    if (const auto ipAddress = addressInModel(deviceIndex))
        send("delta_apply"_L1, *ipAddress, {.body = jsonBody({{u"target_version"_s, targetVersion}})});
}

/// What a device says about an update, wherever it says it. A message of null counts as none.
static QString deltaMessage(const QJsonObject &object)
{
    const QJsonValue message = object.value("message"_L1);
    if (!message.isUndefined() && !message.isNull())
        return message.toString();
    if (object.contains("error"_L1))
        return object.value("error"_L1).toString();
    const QJsonObject payload = object.value("payload"_L1).toObject();
    const auto key = payload.contains("error"_L1) ? "error"_L1 : "message"_L1;
    return payload.value(key).toString();
}

Outcome verdict::deltaApply(const DeviceAnswer &answer)
{
    if (answer.hasFailed())
        return {false, u"Network error: %1"_s.arg(answer.errorText)};
    const bool success = answer.isGranted();
    const QString message = deltaMessage(answer.object());
    if (!message.isEmpty())
        return {success, message};
    return {success,
            success ? u"Delta update started"_s : u"Failed to start delta update (no error details)"_s};
}

void DeviceDiscovery::onDeltaApplyReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    const Outcome outcome = verdict::deltaApply(answer);
    logAnswer({"Delta apply response - HTTP status:"}, answer);
    if (answer.hasFailed())
        qDebug() << "Delta apply network error:" << answer.errorText;
    else
        qDebug() << "Raw delta apply response:" << answer.body;
    if (s_verboseLogging)
        qDebug() << "Delta apply - success:" << outcome.success << "message:" << outcome.message;
    emit deltaUpdateStarted(ipAddress, outcome.success, outcome.message);
    reply->deleteLater();
}

void DeviceDiscovery::checkDeltaProgress(int deviceIndex)
{
    if (const auto ipAddress = addressInModel(deviceIndex))
        send("delta_progress"_L1, *ipAddress);
}

verdict::DeltaProgress verdict::deltaProgress(const DeviceAnswer &answer)
{
    const QJsonObject object = answer.object();
    const double percent = std::round(object.value("progress"_L1).toDouble());
    return {
        int(std::clamp<double>(percent, std::numeric_limits<int>::min(), std::numeric_limits<int>::max())),
        object.value("payload"_L1).toObject().value("message"_L1).toString()};
}

void DeviceDiscovery::onDeltaProgressReply(QNetworkReply *reply, const QString &ipAddress)
{
    const verdict::DeltaProgress progress = verdict::deltaProgress(DeviceAnswer::of(reply));
    emit deltaUpdateProgressReceived(ipAddress, progress.percent, progress.message);
    reply->deleteLater();
}

void DeviceDiscovery::checkDeltaStatus(int deviceIndex)
{
    if (const auto ipAddress = addressInModel(deviceIndex))
        send("delta_status"_L1, *ipAddress);
}

verdict::DeltaStatus verdict::deltaStatus(const DeviceAnswer &answer)
{
    if (!answer.isGranted())
        return {};
    const QJsonObject payload = answer.object().value("payload"_L1).toObject();
    return {payload.value("pending_reboot"_L1).toBool(), payload.value("state"_L1).toString()};
}

void DeviceDiscovery::onDeltaStatusReply(QNetworkReply *reply, const QString &ipAddress)
{
    const verdict::DeltaStatus status = verdict::deltaStatus(DeviceAnswer::of(reply));
    emit deltaStatusReceived(ipAddress, status.pendingReboot, status.state);
    reply->deleteLater();
}

void DeviceDiscovery::applyRollback(int deviceIndex, const QString &targetVersion)
{
    const auto ipAddress = addressInModel(deviceIndex);
    if (!ipAddress)
    {
        emit rollbackApplyCompleted({}, false, u"Invalid device index"_s);
        return;
    }
    if (targetVersion.isEmpty())
    {
        emit rollbackApplyCompleted(*ipAddress, false, u"Target version not specified"_s);
        return;
    }
    qInfo() << "Applying rollback to version" << targetVersion << "for device" << *ipAddress;
    const QByteArray body = jsonBody({{u"target_version"_s, targetVersion}});
    const QNetworkReply *reply =
        send("rollback_apply"_L1, *ipAddress, {.body = body, .properties = {targetVersion}});
    logRequest("Rollback request URL:", reply, "Rollback request payload:", body);
}

Outcome verdict::rollback(const DeviceAnswer &answer)
{
    if (answer.hasFailed())
        return {false, u"Network error: %1"_s.arg(answer.errorText) + httpStatusWords(answer)};
    if (!answer.isObject())
        return {false, u"Invalid response from server"_s, true};
    const bool success = answer.isGranted();
    const QString message = answer.object().value("message"_L1).toString();
    if (!message.isEmpty())
        return {success, message};
    return {success, success ? u"Rollback to %1 prepared. Please reboot."_s.arg(answer.text("targetVersion"))
                             : u"Failed to prepare rollback"_s};
}

void DeviceDiscovery::onRollbackReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer({"Rollback apply response - HTTP status:", "Raw rollback apply response:"}, answer);
    const Outcome outcome = verdict::rollback(answer);
    if (answer.hasFailed())
        qDebug() << "Rollback apply network error:" << answer.errorText;
    else if (outcome.isUnreadable)
        qDebug() << "Rollback apply: Invalid JSON response";
    else if (outcome.success)
        qDebug() << "Rollback prepared successfully:" << outcome.message;
    else
        qDebug() << "Rollback failed:" << outcome.message;
    reply->deleteLater();
    emit rollbackApplyCompleted(ipAddress, outcome.success, outcome.message);
}
