// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/DeviceRequest.h"
#include "devices/Verdicts.h"

#include <QDebug>

using namespace Qt::StringLiterals;

/// Sends one of the commands that take a device down, and returns the address it went to.
std::optional<QString> DeviceDiscovery::sendPowerCommand(QLatin1StringView tag, int deviceIndex,
                                                         ResultSignal completed, const QString &statusText,
                                                         const char *requestWords)
{
    const auto ipAddress = addressForCommand(deviceIndex, completed);
    if (!ipAddress)
        return {};
    setStatusText(statusText.arg(*ipAddress));
    logRequest(requestWords, send(tag, *ipAddress));
    return ipAddress;
}

void DeviceDiscovery::reboot(int deviceIndex)
{
    const auto ipAddress = sendPowerCommand("reboot"_L1, deviceIndex, &DeviceDiscovery::rebootCompleted,
                                            u"Rebooting device %1..."_s, "Making reboot request to:");
    if (!ipAddress)
        return;
    const int row = rowOfAddress(*ipAddress);
    m_devices[row].setIsOnline(false);
    emit dataChanged(index(row), index(row), {IsOnlineRole, StatusTextRole});
}

void DeviceDiscovery::shutdown(int deviceIndex)
{
    sendPowerCommand("shutdown"_L1, deviceIndex, &DeviceDiscovery::shutdownCompleted,
                     u"Shutting down device %1..."_s, "Making shutdown request to:");
}

bool verdict::isExpectedLoss(QNetworkReply::NetworkError error)
{
    return error == QNetworkReply::ConnectionRefusedError || error == QNetworkReply::RemoteHostClosedError ||
           error == QNetworkReply::HostNotFoundError || error == QNetworkReply::TimeoutError ||
           error == QNetworkReply::UnknownNetworkError;
}

namespace {
/// What is said of a device that was told to go down: it does so in every case, as far as can be seen.
struct PowerWords
{
    QString done;     // it said so
    QString sent;     // it said something else
    QString lost;     // it left without a word
    QString doubtful; // anything else went wrong
};

Outcome powerOutcome(const DeviceAnswer &answer, const PowerWords &words)
{
    if (verdict::isExpectedLoss(answer.error))
        return {true, words.lost.arg(answer.ipAddress)};
    if (answer.hasFailed())
        return {true, words.doubtful.arg(answer.ipAddress, answer.errorText)};
    if (answer.body.isEmpty() || answer.isGranted())
        return {true, words.done.arg(answer.ipAddress)};
    return {true, words.sent.arg(answer.ipAddress)};
}
} // namespace

Outcome verdict::reboot(const DeviceAnswer &answer)
{
    return powerOutcome(
        answer,
        {u"Device %1 reboot initiated successfully. The device will be unavailable for a few minutes."_s,
         u"Device %1 reboot command sent. The device should be rebooting now."_s,
         u"Device %1 reboot initiated successfully. Connection lost as expected - device is rebooting."_s,
         u"Device %1 reboot command sent. Network error occurred (%2), but device may be rebooting."_s});
}

Outcome verdict::shutdown(const DeviceAnswer &answer)
{
    return powerOutcome(
        answer,
        {u"Device %1 shutdown initiated successfully. The device will power off."_s,
         u"Device %1 shutdown command sent. The device should be powering off now."_s,
         u"Device %1 shutdown initiated successfully. Connection lost as expected - device is powering "
         "off."_s,
         u"Device %1 shutdown command sent. Network error occurred (%2), but device may be shutting down."_s});
}

void DeviceDiscovery::onRebootReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer(
        {"Reboot response - HTTP status:", "Raw reboot response data:", "Reboot response - Network error:"},
        answer);
    const Outcome outcome = verdict::reboot(answer);
    const bool isDoubtful = answer.hasFailed() && !verdict::isExpectedLoss(answer.error);
    if (s_verboseLogging || !isDoubtful)
        qDebug() << outcome.message;
    report(&DeviceDiscovery::rebootCompleted, ipAddress, outcome);
    reply->deleteLater();
}

void DeviceDiscovery::onShutdownReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer({"Shutdown response - HTTP status:", "Raw shutdown response data:",
               "Shutdown response - Network error:"},
              answer);
    const Outcome outcome = verdict::shutdown(answer);
    qDebug() << outcome.message;
    report(&DeviceDiscovery::shutdownCompleted, ipAddress, outcome);
    reply->deleteLater();
}

void DeviceDiscovery::factoryReset(int deviceIndex)
{
    sendPowerCommand("factory_reset"_L1, deviceIndex, &DeviceDiscovery::factoryResetCompleted,
                     u"Performing factory reset for device %1..."_s, "Making factory reset request to:");
}

Outcome verdict::factoryReset(const DeviceAnswer &answer)
{
    const QString failure = u"Factory reset failed for %1"_s.arg(answer.ipAddress);
    const Outcome initiated = {true, u"Factory reset successfully initiated for device %1. All settings have "
                                     "been restored to defaults."_s.arg(answer.ipAddress)};
    if (answer.hasFailed())
        return networkError(answer, failure);
    if (answer.body.isEmpty())
        return initiated;
    if (!answer.isObject())
        return invalidJson(answer, failure);
    const QString words = answer.object().value("success"_L1).toString();
    if (!words.isEmpty())
        return {true, u"Factory reset successful for device %1: %2"_s.arg(answer.ipAddress, words)};
    return answer.isGranted() ? initiated : refusal(failure);
}

void DeviceDiscovery::onFactoryResetReply(QNetworkReply *reply, const QString & /*ipAddress*/)
{
    conclude(reply, verdict::factoryReset, &DeviceDiscovery::factoryResetCompleted,
             {"Factory reset response - HTTP status:", "Raw factory reset response data:",
              "Factory reset response - Network error:"});
}

void DeviceDiscovery::networkReset(int deviceIndex)
{
    sendPowerCommand("network_reset"_L1, deviceIndex, &DeviceDiscovery::networkResetCompleted,
                     u"Performing network reset for device %1..."_s, "Making network reset request to:");
}

Outcome verdict::networkReset(const DeviceAnswer &answer)
{
    const QString failure = u"Failed to reset network for %1"_s.arg(answer.ipAddress);
    if (answer.hasFailed())
        return networkError(answer, failure);
    if (!answer.isObject())
        return invalidJson(answer, failure);
    const QJsonObject object = answer.object();
    // A device that speaks of success has nothing to add with its result.
    if (object.contains("success"_L1))
    {
        const QString words = object.value("success"_L1).toString();
        if (words.isEmpty())
            return {false, failure + u": Empty success message"_s};
        return {true, u"Network reset successful for device %1: %2"_s.arg(answer.ipAddress, words)};
    }
    if (!object.contains("result"_L1))
        return {false, failure + u": Unknown response format"_s};
    if (!answer.isGranted())
        return refusal(failure);
    return {true, u"Network reset successfully initiated for device %1. The device will restart and may have "
                  "a new IP address."_s.arg(answer.ipAddress)};
}

void DeviceDiscovery::onNetworkResetReply(QNetworkReply *reply, const QString & /*ipAddress*/)
{
    conclude(reply, verdict::networkReset, &DeviceDiscovery::networkResetCompleted,
             {"Network reset response - HTTP status:", "Raw network reset response data:"});
}
