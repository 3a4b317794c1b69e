// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/DeviceRequest.h"
#include "devices/Verdicts.h"

#include <QDebug>
#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
constexpr int upgradePollIntervalMs = 2000;
// What devices report at their end does not always reach the full hundred.
constexpr double upgradeCompletePercent = 99.9;

/// What the interface is told of the smaller update that a device offers.
QVariantMap deltaOffer(const QJsonObject &metadata)
{
    QStringList changelog;
    const QJsonArray lines = metadata.value("changelog"_L1).toArray();
    for (const QJsonValue line : lines)
        changelog.append(line.toString());
    return {{u"available"_s, true},
            {u"current_version"_s, metadata.value("current_version"_L1).toString()},
            {u"target_version"_s, metadata.value("target_version"_L1).toString()},
            {u"size_mb"_s, metadata.value("size_mb"_L1).toDouble()},
            {u"release_title"_s, metadata.value("release_title"_L1).toString()},
            {u"release_date"_s, metadata.value("release_date"_L1).toString()},
            {u"changelog"_s, changelog}};
}
} // namespace

void DeviceDiscovery::checkForSoftwareUpdates(int deviceIndex)
{
    if (const auto ipAddress = addressInModel(deviceIndex))
        send("software_upgradable_check"_L1, *ipAddress);
}

verdict::UpgradeCheck verdict::upgradeCheck(const DeviceAnswer &answer)
{
    UpgradeCheck check;
    if (answer.hasFailed())
    {
        check.message = answer.errorText;
        return check;
    }
    const QJsonObject object = answer.object();
    if (!answer.isGranted() || !object.contains("payload"_L1))
    {
        check.message = u"Invalid API response format"_s;
        return check;
    }
    const QJsonObject payload = object.value("payload"_L1).toObject();
    const QJsonObject metadata = payload.value("delta_metadata"_L1).toObject();
    check.success = true;
    check.isUpgradable = payload.value("upgradable"_L1).toBool();
    if (metadata.value("available"_L1).toBool())
    {
        // The smaller update is the better offer, also where no full one is due.
        check.hasDelta = true;
        check.delta = deltaOffer(metadata);
        check.message = u"Delta update available"_s;
        return check;
    }
    check.message = check.isUpgradable ? u"Software update available"_s : u"Software is up to date"_s;
    return check;
}

void DeviceDiscovery::onUpgradableReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    const verdict::UpgradeCheck check = verdict::upgradeCheck(answer);
    if (answer.hasFailed())
        qDebug() << "Software update check failed:" << answer.errorText;
    else if (s_verboseLogging)
        qDebug() << "Software upgradable check response:" << answer.body;
    if (s_verboseLogging && check.hasDelta)
        qDebug() << "Delta update available:" << check.delta;
    emit softwareUpdateCheckCompleted(ipAddress, check.success, check.isUpgradable, check.message,
                                      check.hasDelta, check.delta);
    reply->deleteLater();
}

/// Sends a request that no run waits for and no timer ends: an upgrade takes as long as it takes.
QNetworkReply *DeviceDiscovery::sendUpgradeRequest(QLatin1StringView path, const QString &ipAddress)
{
    QNetworkRequest request(QUrl(u"http://%1:8624%2"_s.arg(ipAddress, path)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    QNetworkReply *reply = m_networkManager->get(request);
    limitReply(reply);
    return reply;
}

void DeviceDiscovery::startSoftwareUpdate(int deviceIndex)
{
    const auto ipAddress = addressInModel(deviceIndex);
    if (!ipAddress)
        return;
    QNetworkReply *reply = sendUpgradeRequest("/api/software/upgrade"_L1, *ipAddress);
    connect(reply, &QNetworkReply::finished, this, [this, reply, address = *ipAddress, deviceIndex] {
        onUpgradeStartReply(reply, address, deviceIndex);
    });
}

Outcome verdict::upgradeStart(const DeviceAnswer &answer)
{
    if (answer.hasFailed())
        return {false, answer.errorText};
    if (!answer.isObject())
        return {false, u"Invalid response format from server"_s};
    const QJsonObject object = answer.object();
    if (!object.contains("result"_L1))
        return {false, u"Invalid response format from server - missing 'result' field"_s, true};
    const bool success = answer.isGranted();
    const QString status = object.value("upgrade"_L1).toString();
    if (!status.isEmpty())
        return {success, u"Software upgrade %1"_s.arg(status)};
    return {success,
            success ? u"Software upgrade started successfully"_s : u"Failed to start software upgrade"_s};
}

void DeviceDiscovery::onUpgradeStartReply(QNetworkReply *reply, const QString &ipAddress, int deviceIndex)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    const Outcome outcome = verdict::upgradeStart(answer);
    if (!answer.hasFailed())
    {
        const QJsonObject object = answer.object();
        qDebug() << "Raw software update start response:" << answer.body;
        qDebug() << "Parsed update start JSON:" << object;
        if (outcome.isUnreadable)
            qWarning() << outcome.message;
        else if (answer.isObject())
            qDebug() << "Upgrade started:" << outcome.success
                     << "Status:" << object.value("upgrade"_L1).toString();
    }
    qDebug() << "startSoftwareUpdate:" << ipAddress << outcome.success << outcome.message;
    emit softwareUpdateStarted(ipAddress, outcome.success, outcome.message);
    if (outcome.success)
        startUpgradePolls(ipAddress, deviceIndex);
    reply->deleteLater();
}

/// Asks for the progress from now on. What is held is the row: if rows move during the upgrade, the polls go
/// to the device that now stands there, and to nobody if the row is gone.
void DeviceDiscovery::startUpgradePolls(const QString &ipAddress, int deviceIndex)
{
    qDebug() << "Setting up progress monitoring timer for" << ipAddress;
    endPolls(m_updateProgressTimers, ipAddress);
    auto *timer = new QTimer(this);
    m_updateProgressTimers.insert(ipAddress, timer);
    connect(timer, &QTimer::timeout, this, [this, deviceIndex] { checkSoftwareUpdateProgress(deviceIndex); });
    timer->start(upgradePollIntervalMs);
    qDebug() << "Progress monitoring started for" << ipAddress;
}

void DeviceDiscovery::checkSoftwareUpdateProgress(int deviceIndex)
{
    const auto ipAddress = addressInModel(deviceIndex);
    if (!ipAddress)
        return;
    QNetworkReply *reply = sendUpgradeRequest("/api/software/progress"_L1, *ipAddress);
    connect(reply, &QNetworkReply::finished, this,
            [this, reply, address = *ipAddress] { onUpgradeProgressReply(reply, address); });
}

void DeviceDiscovery::onUpgradeProgressReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    if (answer.hasFailed())
    {
        // Of several polls on their way the first that fails ends it.
        if (endPolls(m_updateProgressTimers, ipAddress))
            emit softwareUpdateTimedOut(ipAddress);
    }
    else
    {
        const double percent = answer.object().value("progress"_L1).toDouble();
        emit softwareUpdateProgressReceived(ipAddress, percent);
        if (percent >= upgradeCompletePercent)
            endPolls(m_updateProgressTimers, ipAddress);
    }
    reply->deleteLater();
}
