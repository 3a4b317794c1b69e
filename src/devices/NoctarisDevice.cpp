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

void NoctarisDevice::setIpAddress(const QString &ipAddress)
{
    if (m_ipAddress == ipAddress)
        return;
    m_ipAddress = ipAddress;
    emit ipAddressChanged();
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
    if (m_hostname == hostname)
        return;
    m_hostname = hostname;
    emit hostnameChanged();
}

void NoctarisDevice::setVersion(const QString &version)
{
    if (m_version == version)
        return;
    m_version = version;
    emit versionChanged();
}

void NoctarisDevice::setModel(const QString &model)
{
    if (m_model == model)
        return;
    m_model = model;
    emit modelChanged();
}

void NoctarisDevice::setIsOnline(bool isOnline)
{
    if (m_isOnline == isOnline)
        return;
    m_isOnline = isOnline;
    emit isOnlineChanged();
}

void NoctarisDevice::setIsLocal(bool isLocal)
{
    if (m_isLocal == isLocal)
        return;
    m_isLocal = isLocal;
    emit isLocalChanged();
}

bool NoctarisDevice::isLocalHost()
{
    return QFile::exists(u"/etc/noctaris/model"_s);
}
