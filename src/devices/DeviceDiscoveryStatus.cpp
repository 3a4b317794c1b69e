// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/Identity.h"

#include <QDateTime>
#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
constexpr int refreshGuardMs = 15000;
// A little under the timer's interval, so that a regular tick asks every row and a call in between none
// that was asked just now.
constexpr qint64 statusSpacingMs = 9500;
} // namespace

void DeviceDiscovery::refreshDevice(int index)
{
    if (index < 0 || index >= m_devices.size())
        return;
    const QString ipAddress = m_devices.at(index).ipAddress();
    endRefresh(ipAddress);
    setStatusText(u"Refreshing device %1..."_s.arg(ipAddress));
    auto *guard = new QTimer(this);
    guard->setSingleShot(true);
    connect(guard, &QTimer::timeout, this, [this, ipAddress] { onRefreshTimeout(ipAddress); });
    m_refreshes.insert(ipAddress, {guard, 0, 0, 0});
    guard->start(refreshGuardMs);
    queryDeviceIdentity(ipAddress);
}

/// Forgets a refresh and its guard, if there is one.
void DeviceDiscovery::endRefresh(const QString &ip)
{
    const auto refresh = m_refreshes.find(ip);
    if (refresh == m_refreshes.end())
        return;
    refresh->timer->stop();
    refresh->timer->deleteLater();
    m_refreshes.erase(refresh);
}

void DeviceDiscovery::onRefreshTimeout(const QString &ip)
{
    if (s_verboseLogging)
        qWarning() << "Refresh operation timed out for" << ip;
    setStatusText(u"Refresh timed out for device %1"_s.arg(ip));
    endRefresh(ip);
}

/// Says how a refresh went, once its three shown questions are answered. The machine id takes no part.
void DeviceDiscovery::checkRefreshCompletion(const QString &ip)
{
    const auto refresh = m_refreshes.constFind(ip);
    if (refresh == m_refreshes.cend())
    {
        if (s_verboseLogging)
            qDebug() << "No active refresh for" << ip;
        return;
    }
    if (s_verboseLogging)
    {
        qDebug() << "Checking refresh completion for" << ip << "- hostname:" << refresh->hostnameResult
                 << "version:" << refresh->versionResult << "model:" << refresh->modelResult;
    }
    int successes = 0;
    for (const int result : {refresh->hostnameResult, refresh->versionResult, refresh->modelResult})
    {
        if (result == 0)
            return;
        successes += result == 1 ? 1 : 0;
    }
    if (successes == 3)
        setStatusText(u"Device %1 refreshed successfully"_s.arg(ip));
    else if (successes > 0)
        setStatusText(
            u"Device %1 partially refreshed (%2/3 requests succeeded)"_s.arg(ip, QString::number(successes)));
    else
        setStatusText(u"Failed to refresh device %1"_s.arg(ip));
    if (s_verboseLogging)
        qDebug() << "Refresh completed for" << ip << "- success count:" << successes;
    endRefresh(ip);
}

void DeviceDiscovery::refreshAllDevices()
{
    setStatusText(u"Refreshing all devices..."_s);
    for (const NoctarisDevice &device : std::as_const(m_devices))
        queryDeviceIdentity(device.ipAddress());
}

void DeviceDiscovery::startPeriodicStatusUpdates()
{
    if (m_statusTimer->isActive())
        return;
    if (s_verboseLogging)
        qDebug() << "Starting periodic status updates every 10 seconds";
    m_statusTimer->start();
    onPeriodicStatusUpdate();
}

void DeviceDiscovery::stopPeriodicStatusUpdates()
{
    if (!m_statusTimer->isActive())
        return;
    qDebug() << "Stopping periodic status updates";
    m_statusTimer->stop();
}

void DeviceDiscovery::onPeriodicStatusUpdate()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    for (const NoctarisDevice &device : std::as_const(m_devices))
    {
        const QString ipAddress = device.ipAddress();
        if (now - m_lastStatusQuery.value(ipAddress, 0) < statusSpacingMs)
            continue;
        queryDeviceStatus(ipAddress);
        m_lastStatusQuery.insert(ipAddress, now);
    }
}

void DeviceDiscovery::queryDeviceStatus(const QString &ipAdress)
{
    send("status_check"_L1, ipAdress);
}

/// The host name that a status answer names, empty if the device is not well.
static QString hostnameInStatus(QNetworkReply *reply)
{
    if (reply->error() != QNetworkReply::NoError)
        return {};
    const QJsonDocument document = QJsonDocument::fromJson(reply->readAll());
    const QString hostname = document.object().value("hostname"_L1).toString();
    return identity::isValid(hostname) ? hostname : QString();
}

void DeviceDiscovery::onStatusCheckReply(QNetworkReply *reply, const QString &ipAddress)
{
    reply->deleteLater();
    const int row = rowOfAddress(ipAddress);
    if (row < 0)
        return;
    const QString hostname = hostnameInStatus(reply);
    const bool isOnline = !hostname.isEmpty();
    if (m_devices.at(row).isOnline() != isOnline)
    {
        m_devices[row].setIsOnline(isOnline);
        emit dataChanged(index(row), index(row), {IsOnlineRole, StatusTextRole});
        if (isOnline)
        {
            // It may have come back with new software.
            qInfo() << "Device" << ipAddress
                    << "came back online after being offline - refreshing full device info";
            queryDeviceIdentity(ipAddress);
        }
    }
    if (isOnline && m_devices.at(row).hostname() != hostname)
    {
        m_devices[row].setHostname(hostname);
        emit dataChanged(index(row), index(row), {HostnameRole});
    }
}
