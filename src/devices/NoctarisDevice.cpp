// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/NoctarisDevice.h"

#include <QFile>

using namespace Qt::StringLiterals;

NoctarisDevice::NoctarisDevice(QObject *parent) : QObject(parent) {}

NoctarisDevice::NoctarisDevice(const NoctarisDevice &other)
    : QObject(other.parent()),
      m_ipAddress(other.m_ipAddress),
      m_secondaryIps(other.m_secondaryIps),
      m_hostname(other.m_hostname),
      m_version(other.m_version),
      m_model(other.m_model),
      m_isOnline(other.m_isOnline),
      m_isLocal(other.m_isLocal)
{
}

NoctarisDevice &NoctarisDevice::operator=(const NoctarisDevice &other)
{
    if (this == &other)
        return *this;
    setIpAddress(other.m_ipAddress);
    m_secondaryIps = other.m_secondaryIps;
    emit secondaryIpsChanged();
    setHostname(other.m_hostname);
    setVersion(other.m_version);
    setModel(other.m_model);
    setIsOnline(other.m_isOnline);
    setIsLocal(other.m_isLocal);
    return *this;
}

/// Stores a value and notifies of it, if it is another one.
template <typename T> void NoctarisDevice::store(T &field, const T &value, void (NoctarisDevice::*changed)())
{
    if (field == value)
        return;
    field = value;
    emit(this->*changed)();
}

void NoctarisDevice::setIpAddress(const QString &ipAddress)
{
    store(m_ipAddress, ipAddress, &NoctarisDevice::ipAddressChanged);
}

void NoctarisDevice::setSecondaryIps(const QStringList &addresses)
{
    m_secondaryIps.clear();
    for (const QString &address : addresses)
    {
        if (!m_secondaryIps.contains(address) && address != m_ipAddress)
            m_secondaryIps.append(address);
    }
    emit secondaryIpsChanged();
}

void NoctarisDevice::addSecondaryIp(const QString &address)
{
    if (m_secondaryIps.contains(address) || address == m_ipAddress)
        return;
    m_secondaryIps.append(address);
    emit secondaryIpsChanged();
}

void NoctarisDevice::setHostname(const QString &hostname)
{
    store(m_hostname, hostname, &NoctarisDevice::hostnameChanged);
}

void NoctarisDevice::setVersion(const QString &version)
{
    store(m_version, version, &NoctarisDevice::versionChanged);
}

void NoctarisDevice::setModel(const QString &model)
{
    store(m_model, model, &NoctarisDevice::modelChanged);
}

void NoctarisDevice::setIsOnline(bool isOnline)
{
    store(m_isOnline, isOnline, &NoctarisDevice::isOnlineChanged);
}

void NoctarisDevice::setIsLocal(bool isLocal)
{
    store(m_isLocal, isLocal, &NoctarisDevice::isLocalChanged);
}

bool NoctarisDevice::isLocalHost()
{
    return QFile::exists(u"/etc/noctaris/model"_s);
}
