// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"

#include "devices/Identity.h"
#include "mdns/qMDNS.h"

#include <QDebug>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QThreadPool>
#include <QTimer>
#include <QUdpSocket>
#include <QtConcurrentRun>

using namespace Qt::StringLiterals;

bool DeviceDiscovery::s_verboseLogging = false;

DeviceDiscovery::DeviceDiscovery(QObject *parent)
    : QAbstractListModel(parent),
      m_networkManager(new QNetworkAccessManager(this)),
      m_discoveryTimer(new QTimer(this)),
      m_mdnsTimer(new QTimer(this)),
      m_statusTimer(new QTimer(this)),
      m_udpSocket(new QUdpSocket(this)),
      m_statusText(u"Ready to scan for Noctaris devices"_s)
{
    // A device stands on the user's own network; a proxy could not reach it.
    m_networkManager->setProxy(QNetworkProxy::NoProxy);

    m_discoveryTimer->setSingleShot(true);
    m_discoveryTimer->setInterval(30000);
    connect(m_discoveryTimer, &QTimer::timeout, this, &DeviceDiscovery::onDiscoveryTimeout);
    m_mdnsTimer->setSingleShot(true);
    m_mdnsTimer->setInterval(10000);
    connect(m_mdnsTimer, &QTimer::timeout, this, &DeviceDiscovery::onMdnsTimeout);
    m_statusTimer->setInterval(10000);
    // A tick that came early would find every row asked just before.
    m_statusTimer->setTimerType(Qt::PreciseTimer);
    connect(m_statusTimer, &QTimer::timeout, this, &DeviceDiscovery::onPeriodicStatusUpdate);

    // Joining the groups takes its time on some systems; the window does not wait for it.
    m_mdnsInitFuture = QtConcurrent::run(QThreadPool::globalInstance(), [this] {
        qMDNS *mdns = qMDNS::getInstance();
        QMetaObject::invokeMethod(
            this, [this, mdns] { onMdnsInitialized(mdns); }, Qt::QueuedConnection);
    });
}

DeviceDiscovery::~DeviceDiscovery()
{
    stopPeriodicStatusUpdates();
    // The background job reports to this object, so it has to be over first: a matter of milliseconds.
    m_mdnsInitFuture.waitForFinished();
}

void DeviceDiscovery::setVerboseLogging(bool verbose)
{
    s_verboseLogging = verbose;
}

int DeviceDiscovery::rowCount(const QModelIndex & /*parent*/) const
{
    return deviceCount();
}

QVariant DeviceDiscovery::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_devices.size())
        return {};
    const NoctarisDevice &device = m_devices.at(index.row());
    switch (role)
    {
    case Qt::DisplayRole:
        return u"%1 (%2)"_s.arg(device.ipAddress(), device.hostname());
    case IpAddressRole:
        return device.ipAddress();
    case HostnameRole:
        return device.hostname();
    case VersionRole:
        return device.version();
    case ModelRole:
        return device.model();
    case IsOnlineRole:
        return device.isOnline();
    case IsLocalRole:
        return device.isLocal();
    case StatusTextRole:
        return device.isLocal() ? u"Local"_s : device.isOnline() ? u"Online"_s : u"Offline"_s;
    case SecondaryIpsRole:
        return device.secondaryIps();
    default:
        return {};
    }
}

QHash<int, QByteArray> DeviceDiscovery::roleNames() const
{
    return {{IpAddressRole, "ipAddress"},   {HostnameRole, "hostname"},
            {VersionRole, "version"},       {ModelRole, "model"},
            {IsOnlineRole, "isOnline"},     {IsLocalRole, "isLocal"},
            {StatusTextRole, "statusText"}, {SecondaryIpsRole, "secondaryIpAddresses"}};
}

void DeviceDiscovery::setUseInternalWifi(bool useInternalWifi)
{
    if (m_useInternalWifi == useInternalWifi)
        return;
    m_useInternalWifi = useInternalWifi;
    emit hotspotInterfaceChanged();
}

void DeviceDiscovery::setScanning(bool scanning)
{
    if (m_isScanning == scanning)
        return;
    m_isScanning = scanning;
    emit isScanningChanged();
}

void DeviceDiscovery::setStatusText(const QString &text)
{
    if (m_statusText == text)
        return;
    m_statusText = text;
    emit statusTextChanged();
}

void DeviceDiscovery::addManualDevice(const QString &ipAddress)
{
    if (rowOfAddress(ipAddress) >= 0)
    {
        setStatusText(u"Device %1 already exists"_s.arg(ipAddress));
        return;
    }
    setStatusText(u"Adding device %1..."_s.arg(ipAddress));
    queryDeviceIdentity(ipAddress);
}

void DeviceDiscovery::removeDevice(int index)
{
    if (index < 0 || index >= m_devices.size())
        return;
    if (m_devices.at(index).isLocal())
    {
        setStatusText(u"Cannot remove local device"_s);
        return;
    }
    const QString ipAddress = m_devices.at(index).ipAddress();
    removeRowAt(index);
    setStatusText(u"Device %1 removed"_s.arg(ipAddress));
}

void DeviceDiscovery::removeRowAt(int row)
{
    const QString ipAddress = m_devices.at(row).ipAddress();
    beginRemoveRows({}, row, row);
    m_devices.removeAt(row);
    endRemoveRows();
    emit deviceCountChanged();
    emit deviceRemoved(ipAddress);
}

/// The first row of an address, or -1.
int DeviceDiscovery::rowOfAddress(const QString &ipAddress) const
{
    for (int row = 0; row < m_devices.size(); ++row)
    {
        if (m_devices.at(row).ipAddress() == ipAddress)
            return row;
    }
    return -1;
}

/// The row that a fresh record belongs to, by its machine id or its address, or -1.
int DeviceDiscovery::rowOfRecord(const NoctarisDevice &device) const
{
    const bool hasMachineId = identity::isMachineId(device.machineId());
    for (int row = 0; row < m_devices.size(); ++row)
    {
        const NoctarisDevice &known = m_devices.at(row);
        if (hasMachineId && known.machineId() == device.machineId())
            return row;
        if (known.ipAddress() == device.ipAddress())
            return row;
    }
    return -1;
}

/// Enters a fully identified device into the list, or updates the row that it has already.
void DeviceDiscovery::addOrUpdateDevice(const NoctarisDevice &device)
{
    if (!identity::isComplete(device))
    {
        qDebug() << "Skipping device addition due to invalid hostname, version, or model";
        return;
    }
    if (const int row = rowOfRecord(device); row >= 0)
    {
        qDebug() << "Updating existing device at index" << row << "IP:" << device.ipAddress();
        updateRow(row, device);
        return;
    }
    if (s_verboseLogging)
        qDebug() << "Adding NEW device:" << device.ipAddress() << "machine_id:" << device.machineId();
    const int row = deviceCount();
    beginInsertRows({}, row, row);
    m_devices.append(device);
    endInsertRows();
    emit deviceCountChanged();
    emit deviceAdded(device.ipAddress());
}

void DeviceDiscovery::updateRow(int row, const NoctarisDevice &device)
{
    NoctarisDevice &known = m_devices[row];
    known.setHostname(device.hostname());
    known.setVersion(device.version());
    known.setModel(device.model());
    known.setIsOnline(device.isOnline());
    known.setIsLocal(device.isLocal() || known.isLocal());
    if (identity::isMachineId(device.machineId()))
        known.setMachineId(device.machineId());
    for (const QString &address : device.secondaryIps())
        known.addSecondaryIp(address);
    emit dataChanged(index(row), index(row));
}
