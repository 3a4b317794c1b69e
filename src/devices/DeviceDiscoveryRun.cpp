// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"

#include "mdns/qMDNS.h"

#include <QDebug>
#include <QNetworkAccessManager>
#include <QNetworkInterface>
#include <QNetworkReply>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
constexpr int graceMs = 1000;
constexpr int verificationRecheckMs = 2000;

/// This machine's first IPv4 address on a network, empty if it has none.
QString ownAddress()
{
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces)
    {
        const QNetworkInterface::InterfaceFlags flags = interface.flags();
        if (!flags.testFlag(QNetworkInterface::IsUp) || flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        const QList<QNetworkAddressEntry> entries = interface.addressEntries();
        for (const QNetworkAddressEntry &entry : entries)
        {
            if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol && !entry.ip().isLoopback())
                return entry.ip().toString();
        }
    }
    return {};
}
} // namespace

void DeviceDiscovery::onMdnsInitialized(qMDNS *mdns)
{
    m_mdns = mdns;
    m_mdnsInitialized = true;
    connect(m_mdns, &qMDNS::hostFound, this, &DeviceDiscovery::onMdnsHostFound);
    connect(m_mdns, &qMDNS::serviceFound, this, &DeviceDiscovery::onMdnsServiceFound);
    if (s_verboseLogging)
        qDebug() << "mDNS initialized asynchronously";
    if (m_mdnsStartPending)
    {
        if (s_verboseLogging)
            qDebug() << "mDNS initialized, starting pending mDNS discovery";
        startMdnsPhase();
    }
}

void DeviceDiscovery::startDiscovery()
{
    if (s_verboseLogging)
        qDebug() << "Starting device discovery";
    m_deepScanAllowed = m_devices.isEmpty();
    if (m_isScanning)
        stopDiscovery();
    m_pendingRequests = 0;
    m_mdnsDeviceCount = 0;
    m_mdnsPhase = true;
    m_pendingFlags.clear();
    m_mdnsFoundIps.clear();
    m_pendingDevices.clear();
    setScanning(true);
    setStatusText(u"Starting device discovery..."_s);

    // A device API that runs on this very machine is found this way.
    const QString hostName = QHostInfo::localHostName();
    const QString address = ownAddress();
    if (!address.isEmpty())
    {
        if (s_verboseLogging)
            qDebug() << "Local Noctaris detected - Network IP:" << address << "Hostname:" << hostName;
        queryDeviceIdentity(address);
    }
    startMdnsPhase();
}

void DeviceDiscovery::startMdnsPhase()
{
    if (s_verboseLogging)
        qDebug() << "Starting mDNS discovery phase";
    if (!m_mdnsInitialized)
    {
        if (s_verboseLogging)
            qDebug() << "mDNS not yet initialized, deferring mDNS discovery start";
        m_mdnsStartPending = true;
        setStatusText(u"Initializing network discovery..."_s);
        return;
    }
    setStatusText(u"Searching for Noctaris devices using mDNS..."_s);
    m_mdnsTimer->start();
    const QString serviceType = u"_http._tcp.local"_s;
    if (s_verboseLogging)
        qDebug() << "Looking up mDNS service type:" << serviceType;
    m_mdns->lookupService(serviceType);
}

void DeviceDiscovery::onMdnsServiceFound(const QString &serviceType, const QString & /*serviceName*/,
                                         const QString &host, const QHostAddress &address, ushort /*port*/,
                                         const QMap<QString, QString> &txtRecords)
{
    const QString ipAddress = address.toString();
    if (s_verboseLogging)
    {
        qDebug() << "mDNS service found:" << serviceType << "on host:" << host << "IP:" << ipAddress
                 << "TXT records:" << txtRecords << "m_mdnsPhase:" << m_mdnsPhase;
    }
    if (!m_mdnsPhase)
    {
        if (s_verboseLogging)
            qDebug() << "DEBUG: Ignoring mDNS service found as mDNS phase is over.";
        return;
    }
    if (m_mdnsFoundIps.contains(ipAddress))
    {
        if (s_verboseLogging)
            qDebug() << "DEBUG: IP" << ipAddress << "already in m_mdnsFoundIps (from service found).";
        return;
    }
    const auto maker = txtRecords.constFind(u"device"_s);
    if (maker == txtRecords.cend() || maker->toLower() != "noctaris"_L1)
    {
        if (s_verboseLogging)
        {
            qDebug() << "Service" << serviceType << "at" << ipAddress
                     << "is not a Noctaris device (TXT record mismatch)";
        }
        return;
    }
    if (s_verboseLogging)
    {
        qDebug() << "DEBUG: Matched Noctaris TXT record for IP:" << ipAddress;
        qDebug() << "DEBUG: m_mdnsFoundIps after append:" << m_mdnsFoundIps;
    }
    m_mdnsFoundIps.append(ipAddress);
    if (s_verboseLogging)
    {
        qDebug() << "Found Noctaris device via mDNS service discovery:" << ipAddress
                 << "from hostname:" << host;
    }
    queryDeviceIdentity(ipAddress);
}

void DeviceDiscovery::onMdnsHostFound(const QHostInfo &hostInfo)
{
    if (s_verboseLogging)
    {
        qDebug() << "mDNS host found:" << hostInfo.hostName() << "Addresses:" << hostInfo.addresses()
                 << "m_mdnsPhase:" << m_mdnsPhase;
    }
    if (!m_mdnsPhase)
    {
        if (s_verboseLogging)
            qDebug() << "DEBUG: Ignoring mDNS host found as mDNS phase is over.";
        return;
    }
    const QList<QHostAddress> addresses = hostInfo.addresses();
    for (const QHostAddress &address : addresses)
    {
        if (address.protocol() != QAbstractSocket::IPv4Protocol)
            continue;
        const QString ipAddress = address.toString();
        if (m_mdnsFoundIps.contains(ipAddress))
        {
            if (s_verboseLogging)
                qDebug() << "DEBUG: IP" << ipAddress << "already in m_mdnsFoundIps (from host found).";
            continue;
        }
        m_mdnsFoundIps.append(ipAddress);
        if (s_verboseLogging)
        {
            qDebug() << "DEBUG: m_mdnsFoundIps after append:" << m_mdnsFoundIps;
            qDebug() << "Found IP via mDNS:" << ipAddress << "from hostname:" << hostInfo.hostName();
            qDebug() << "Checking if" << ipAddress << "is a Noctaris device";
        }
        queryDeviceIdentity(ipAddress);
    }
}

void DeviceDiscovery::onMdnsTimeout()
{
    if (s_verboseLogging)
    {
        qDebug() << "mDNS discovery phase timed out. Found IPs via mDNS:" << m_mdnsFoundIps
                 << "Pending requests:" << m_pendingRequests;
    }
    if (m_deepScanAllowed && m_mdnsDeviceCount < 1)
        m_deepScanReserve.fill();
    // The phase stays open meanwhile, so that what is late still counts.
    QTimer::singleShot(graceMs, this, &DeviceDiscovery::finishMdnsPhase);
}

/// Whether an address that multicast DNS named has answered in part and not yet well. One that has not
/// answered at all does not hold the phase.
bool DeviceDiscovery::awaitsMdnsVerification() const
{
    if (m_pendingRequests <= 0)
        return false;
    return std::any_of(m_mdnsFoundIps.cbegin(), m_mdnsFoundIps.cend(), [this](const QString &ipAddress) {
        const PendingFlags flags = m_pendingFlags.value(ipAddress);
        return m_pendingDevices.contains(ipAddress) &&
               (!flags.hostnameOk || !flags.versionOk || !flags.modelOk);
    });
}

// A delay that an earlier run left behind acts on the run it meets: it may end that one's phase early.
void DeviceDiscovery::finishMdnsPhase()
{
    if (!m_mdnsPhase)
        return;
    if (awaitsMdnsVerification())
    {
        qDebug() << "Waiting for mDNS device verification to complete...";
        QTimer::singleShot(verificationRecheckMs, this, &DeviceDiscovery::finishMdnsPhase);
        return;
    }
    m_mdnsPhase = false;
    m_deepScanReserve.release();
    if (s_verboseLogging)
        qDebug() << "mDNS phase complete. Found" << m_mdnsDeviceCount << "Noctaris devices via mDNS";
    if (m_mdnsDeviceCount < 1)
    {
        if (m_deepScanAllowed)
        {
            setStatusText(u"No devices found via mDNS, switching to deep network scan..."_s);
            startDeepScan();
            m_discoveryTimer->start();
            return;
        }
        setStatusText(u"No new devices found via mDNS. Skipping deep network scan as devices were present "
                      "initially."_s);
    }
    else
    {
        setStatusText(u"mDNS discovery completed. Found %1 Noctaris device(s)"_s.arg(m_mdnsDeviceCount));
        if (m_pendingRequests != 0)
        {
            m_discoveryTimer->start();
            return;
        }
    }
    onDiscoveryTimeout();
}

/// The one end of a run, whatever led to it. It aborts nothing: late answers still bring devices in.
void DeviceDiscovery::onDiscoveryTimeout()
{
    setScanning(false);
    m_discoveryTimer->stop();
    m_mdnsTimer->stop();
    m_mdnsPhase = false;
    if (m_devices.isEmpty())
    {
        setStatusText(u"Scan completed. No Noctaris devices found on the network."_s);
        return;
    }
    setStatusText(u"Scan completed. Found %1 Noctaris device(s)"_s.arg(m_devices.size()));
    startPeriodicStatusUpdates();
}

void DeviceDiscovery::stopDiscovery()
{
    qInfo() << "Stopping discovery - Current pending requests:" << m_pendingRequests;
    m_mdnsTimer->stop();
    m_discoveryTimer->stop();
    const QList<QNetworkReply *> replies = m_networkManager->findChildren<QNetworkReply *>();
    for (QNetworkReply *reply : replies)
    {
        if (!reply->isRunning())
            continue;
        reply->disconnect();
        reply->abort();
        reply->deleteLater();
    }
    m_pendingRequests = 0;
    m_mdnsPhase = false;
    m_deepScanReserve.release();
    setScanning(false);
    setStatusText(u"Discovery stopped"_s);
    qInfo() << "Discovery stopped";
}
