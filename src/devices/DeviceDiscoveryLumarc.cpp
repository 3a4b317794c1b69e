// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/DeviceRequest.h"
#include "devices/Verdicts.h"

#include <QDebug>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
// The service has to listen again before it can be asked, and to begin before it can tell how far it is.
constexpr int serviceStartMs = 3000;
constexpr int firstPollMs = 3000;
constexpr int nextPollMs = 2000;
constexpr int startedPercent = 5;
} // namespace

// A reset is a chain of answers, each of which brings the next request. Nothing else stands for it: two
// chains may run side by side, and one ends only by itself.

void DeviceDiscovery::resetLumarc(int deviceIndex)
{
    const auto ipAddress = addressForCommand(deviceIndex, &DeviceDiscovery::lumarcResetCompleted);
    if (!ipAddress)
        return;
    setStatusText(u"Initiating Lumarc reset for device %1..."_s.arg(*ipAddress));
    logRequest("Making initial Lumarc reset request to:", send("lumarc_reset_phase0"_L1, *ipAddress));
}

Outcome verdict::lumarcReset(const DeviceAnswer &answer)
{
    return common(
        answer, u"Initial Lumarc reset failed for %1"_s.arg(answer.ipAddress),
        u"Initial Lumarc reset successful for device %1. Restarting service..."_s.arg(answer.ipAddress));
}

void DeviceDiscovery::onLumarcResetReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer({"Lumarc reset phase 0 response - HTTP status:", "Raw Lumarc reset phase 0 response data:"},
              answer);
    const Outcome outcome = verdict::lumarcReset(answer);
    qDebug() << outcome.message;
    if (outcome.success)
    {
        const QByteArray body = jsonBody({{u"operation"_s, u"restart"_s}, {u"service"_s, u"lumarc"_s}});
        const QNetworkReply *next = send("lumarc_reset_phase1"_L1, ipAddress, {.body = body});
        logRequest("Making Lumarc service restart request to:", next, "JSON payload:", body);
    }
    else
    {
        report(&DeviceDiscovery::lumarcResetCompleted, ipAddress, outcome);
    }
    reply->deleteLater();
}

Outcome verdict::lumarcRestart(const DeviceAnswer &answer)
{
    return common(
        answer, u"Failed to reset Lumarc for %1"_s.arg(answer.ipAddress),
        u"Lumarc service restarted successfully for device %1. Starting image regeneration..."_s.arg(
            answer.ipAddress));
}

void DeviceDiscovery::onLumarcRestartReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer({"Lumarc reset phase 1 response - HTTP status:", "Raw Lumarc reset phase 1 response data:"},
              answer);
    const Outcome outcome = verdict::lumarcRestart(answer);
    qDebug() << outcome.message;
    if (outcome.success)
        QTimer::singleShot(serviceStartMs, this, [this, ipAddress] { regenerateLumarcImages(ipAddress); });
    else
        report(&DeviceDiscovery::lumarcResetCompleted, ipAddress, outcome);
    reply->deleteLater();
}

void DeviceDiscovery::regenerateLumarcImages(const QString &ipAddress)
{
    setStatusText(u"Triggering Lumarc image regeneration for device %1..."_s.arg(ipAddress));
    logRequest("Making Lumarc image regeneration request to:", send("lumarc_reset_phase2"_L1, ipAddress));
}

void DeviceDiscovery::onLumarcGenerateReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer({"Lumarc reset phase 2 (image regeneration) response - HTTP status:"}, answer);
    reply->deleteLater();
    if (answer.hasFailed())
    {
        const QString message =
            u"Lumarc reset failed for device %1: Image regeneration encountered issues: %2"_s.arg(
                ipAddress, answer.errorText);
        qDebug() << message;
        report(&DeviceDiscovery::lumarcResetCompleted, ipAddress, {false, message});
        return;
    }
    if (s_verboseLogging)
    {
        qDebug() << u"Lumarc image regeneration initiated for device %1. Polling progress..."_s.arg(
            ipAddress);
    }
    emit lumarcRegenerationProgressReceived(ipAddress, startedPercent, u"Starting regeneration..."_s, true);
    // From here on the chain holds a row: if rows move, it asks the device that now stands there.
    const int row = rowOfAddress(ipAddress);
    QTimer::singleShot(firstPollMs, this, [this, row, ipAddress] {
        if (row >= 0 && row < m_devices.size())
            checkLumarcRegenerationProgress(row);
        else
            emit lumarcResetCompleted(ipAddress, false, u"Device not found for progress polling"_s);
    });
}

void DeviceDiscovery::checkLumarcRegenerationProgress(int deviceIndex)
{
    const QString ipAddress = addressOfRow(deviceIndex);
    if (ipAddress.isEmpty())
        return;
    if (s_verboseLogging)
        qDebug() << "Checking Lumarc regeneration progress for:" << ipAddress;
    send("lumarc_regeneration_progress"_L1, ipAddress, {.properties = {deviceIndex}});
}

verdict::RegenerationProgress verdict::regenerationProgress(const DeviceAnswer &answer)
{
    RegenerationProgress progress;
    const QJsonObject object = answer.object();
    progress.percent = object.value("progress"_L1).toInt();
    progress.message = object.value("message"_L1).toString(progress.message);
    progress.inProgress = object.value("inProgress"_L1).toBool();
    return progress;
}

void DeviceDiscovery::onLumarcProgressReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    if (s_verboseLogging && answer.hasFailed())
        qDebug() << "Lumarc regeneration progress check failed:" << answer.errorText;
    else if (s_verboseLogging)
        qDebug() << "Lumarc regeneration progress response:" << answer.body;
    const verdict::RegenerationProgress progress = verdict::regenerationProgress(answer);
    emit lumarcRegenerationProgressReceived(ipAddress, progress.percent, progress.message,
                                            progress.inProgress);
    if (progress.isComplete())
    {
        qDebug() << "Lumarc regeneration complete for" << ipAddress;
        report(&DeviceDiscovery::lumarcResetCompleted, ipAddress, {true, u"Lumarc Reset is Successful"_s});
    }
    else
    {
        const int row = reply->property("deviceIndex").toInt();
        QTimer::singleShot(nextPollMs, this, [this, row] {
            if (row < m_devices.size())
                checkLumarcRegenerationProgress(row);
        });
    }
    reply->deleteLater();
}
