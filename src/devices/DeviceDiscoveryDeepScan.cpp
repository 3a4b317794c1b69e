// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"

#include <QDebug>
#include <QNetworkInterface>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
// A /23 passes, a /22 does not.
constexpr quint32 largestNetworkSize = 512;
} // namespace

/// Probes every host of every small local network, all at once. The probes are the scan: a host is found
/// if it identifies itself.
void DeviceDiscovery::startDeepScan()
{
    qDebug() << "Starting network scan (brute force discovery)";
    setStatusText(u"Performing deep network scan for Noctaris devices..."_s);
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();

    const auto local = std::find_if(m_devices.cbegin(), m_devices.cend(),
                                    [](const NoctarisDevice &device) { return device.isLocal(); });
    const std::optional<QString> localAddress =
        local == m_devices.cend() ? std::nullopt : std::optional(local->ipAddress());

    for (const QNetworkInterface &interface : interfaces)
    {
        const QNetworkInterface::InterfaceFlags flags = interface.flags();
        if (!flags.testFlag(QNetworkInterface::IsUp) || !flags.testFlag(QNetworkInterface::IsRunning) ||
            flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        const QList<QNetworkAddressEntry> entries = interface.addressEntries();
        for (const QNetworkAddressEntry &entry : entries)
        {
            if (entry.ip().protocol() != QAbstractSocket::IPv4Protocol)
                continue;
            const quint32 mask = entry.netmask().toIPv4Address();
            const quint32 network = mask & entry.ip().toIPv4Address();
            sweep(network, ~mask | network, localAddress);
        }
    }
}

void DeviceDiscovery::sweep(quint32 network, quint32 broadcast, const std::optional<QString> &localAddress)
{
    const quint32 size = broadcast - network;
    const QString networkText = QHostAddress(network).toString();
    if (size > largestNetworkSize)
    {
        qDebug() << "Skipping large network" << networkText << "size:" << size;
        return;
    }
    qDebug() << "Scanning network:" << networkText << "to" << QHostAddress(broadcast).toString()
             << "size:" << size;
    for (quint32 host = 1; host < size; ++host)
    {
        const QString address = QHostAddress(network + host).toString();
        if (m_mdnsFoundIps.contains(address))
        {
            qDebug() << "Skipping" << address << "as it was already discovered via mDNS";
        }
        else if (localAddress && (address == *localAddress || address == "127.0.0.1"_L1))
        {
            qDebug() << "Skipping" << address << "as it's already detected as local device";
        }
        else
        {
            queryDeviceIdentity(address);
        }
    }
}
