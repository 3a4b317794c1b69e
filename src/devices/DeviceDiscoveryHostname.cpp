// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/DeviceRequest.h"
#include "devices/Verdicts.h"

#include <QDebug>

using namespace Qt::StringLiterals;

void DeviceDiscovery::updateDeviceHostname(int index, const QString &newHostname)
{
    if (index < 0 || index >= m_devices.size())
    {
        emit hostnameUpdated({}, false, u"Invalid device index"_s);
        return;
    }
    const QString ipAddress = m_devices.at(index).ipAddress();
    const QString hostname = newHostname.simplified().remove(u' ');
    if (hostname.isEmpty())
    {
        emit hostnameUpdated(ipAddress, false, u"Hostname cannot be empty"_s);
        return;
    }
    setStatusText(u"Updating hostname for %1 to %2..."_s.arg(ipAddress, hostname));
    const QNetworkReply *reply =
        send("update_hostname"_L1, ipAddress, {.pathArgument = hostname, .properties = {hostname}});
    qDebug() << "Making hostname update request to:" << reply->url().toString();
}

Outcome verdict::hostnameUpdate(const DeviceAnswer &answer)
{
    return common(answer, u"Failed to update hostname for %1"_s.arg(answer.ipAddress),
                  u"Hostname successfully updated to '%1' for device %2"_s.arg(answer.text("newHostname"),
                                                                               answer.ipAddress));
}

void DeviceDiscovery::onHostnameReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer({"Hostname update response - HTTP status:", "Raw response data:"}, answer);
    const Outcome outcome = verdict::hostnameUpdate(answer);
    logOutcome(outcome, answer);
    // The row takes its new name from the device itself.
    if (outcome.success)
        queryDeviceIdentity(ipAddress);
    report(&DeviceDiscovery::hostnameUpdated, ipAddress, outcome);
    reply->deleteLater();
}
