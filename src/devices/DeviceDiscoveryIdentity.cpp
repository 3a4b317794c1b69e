// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/Identity.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>

#include <algorithm>

using namespace Qt::StringLiterals;

/// What one of the three shown identity questions fills in. The key of its answer is its tag.
struct DeviceDiscovery::IdentityField
{
    QLatin1StringView tag;
    const char *words; // of the log, where the name stands
    void (NoctarisDevice::*store)(const QString &value);
    bool PendingFlags::*ok;
    int RefreshState::*result;
};

const DeviceDiscovery::IdentityField DeviceDiscovery::s_identityFields[] = {
    {"hostname"_L1, "hostname", &NoctarisDevice::setHostname, &PendingFlags::hostnameOk,
     &RefreshState::hostnameResult},
    {"version"_L1, "version", &NoctarisDevice::setVersion, &PendingFlags::versionOk,
     &RefreshState::versionResult},
    {"model"_L1, "model", &NoctarisDevice::setModel, &PendingFlags::modelOk, &RefreshState::modelResult},
};

/// The field of a tag; none for the machine id and for tags that are no identity question.
const DeviceDiscovery::IdentityField *DeviceDiscovery::identityFieldOf(const QString &tag)
{
    const auto *field = std::find_if(std::begin(s_identityFields), std::end(s_identityFields),
                                     [&tag](const IdentityField &known) { return tag == known.tag; });
    return field == std::end(s_identityFields) ? nullptr : field;
}

/// Asks an address who it is. Four answers, in any order, decide whether it is a device.
void DeviceDiscovery::queryDeviceIdentity(const QString &ipAddress)
{
    send("hostname"_L1, ipAddress);
    send("version"_L1, ipAddress);
    // The model's answer is not counted: a run may end with it under way, and it is still welcome.
    QNetworkReply *model = send("model"_L1, ipAddress);
    send("machine_id"_L1, ipAddress);
    connect(model, &QNetworkReply::finished, this, &DeviceDiscovery::onNetworkReplyFinished);
}

void DeviceDiscovery::onIdentityReply(QNetworkReply *reply, const QString &ipAddress)
{
    const QString tag = reply->property("type").toString();
    const bool isRefresh = m_refreshes.contains(ipAddress);

    // A copy carries no machine id: only the record in hand has it, and only from the answer in hand.
    NoctarisDevice device = m_pendingDevices.value(ipAddress, NoctarisDevice());
    if (device.ipAddress().isEmpty())
    {
        device.setIpAddress(ipAddress);
        device.setIsLocal(false);
        device.setIsOnline(false);
        device.setHostname(u"Unknown"_s);
        device.setVersion(u"Unknown"_s);
        device.setModel(u"Unknown"_s);
    }
    PendingFlags flags = m_pendingFlags.value(ipAddress);

    if (reply->error() == QNetworkReply::NoError)
    {
        readIdentity(tag, reply->readAll(), device, flags);
    }
    else
    {
        qDebug() << "Network error for" << ipAddress << tag << ":" << reply->errorString();
        failIdentityField(tag, ipAddress, flags);
    }
    if (isRefresh)
        checkRefreshCompletion(ipAddress);
    storePending(device, flags);
    reply->deleteLater();

    if (m_isScanning && m_pendingRequests == 0 && !m_mdnsPhase)
        onDiscoveryTimeout();
}

/// Reads one answer into the record and its flags.
void DeviceDiscovery::readIdentity(const QString &tag, const QByteArray &body, NoctarisDevice &device,
                                   PendingFlags &flags)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
    {
        qDebug() << "JSON parse error for" << device.ipAddress() << "type:" << tag
                 << "- Error:" << error.errorString();
        failIdentityField(tag, device.ipAddress(), flags);
        return;
    }
    if (s_verboseLogging && tag == "model"_L1)
        qDebug() << "Raw model API response for" << device.ipAddress() << ":" << body;

    const QString value = document.object().value(tag).toString(u"Unknown"_s);
    if (const IdentityField *field = identityFieldOf(tag))
    {
        takeIdentityValue(*field, value, device, flags);
    }
    else if (tag == "machine_id"_L1 && identity::isValid(value))
    {
        device.setMachineId(value);
        flags.machineIdOk = true;
        if (s_verboseLogging)
            qDebug() << "Received machine_id for" << device.ipAddress() << ":" << value;
    }
}

void DeviceDiscovery::takeIdentityValue(const IdentityField &field, const QString &value,
                                        NoctarisDevice &device, PendingFlags &flags)
{
    const QString ipAddress = device.ipAddress();
    const auto refresh = m_refreshes.find(ipAddress);
    const bool isValid = identity::isValid(value);
    const QByteArray words(field.words);
    flags.*field.ok = isValid;
    if (refresh != m_refreshes.end())
        (*refresh).*field.result = isValid ? 1 : -1;

    if (isValid)
    {
        (device.*field.store)(value);
        if (s_verboseLogging && refresh != m_refreshes.end())
            qDebug() << ("Refresh: " + words + " received successfully for").constData() << ipAddress;
        if (s_verboseLogging)
            qDebug() << ("Received " + words + " for").constData() << ipAddress << ":" << value;
        return;
    }
    qDebug() << ("Received invalid/empty " + words + " for").constData() << ipAddress;
    if (refresh != m_refreshes.end())
        qDebug() << ("Refresh: " + words + " failed for").constData() << ipAddress;
}

/// Marks a question as answered in no useful way. The machine id keeps what it has.
void DeviceDiscovery::failIdentityField(const QString &tag, const QString &ipAddress, PendingFlags &flags)
{
    const IdentityField *field = identityFieldOf(tag);
    if (!field)
        return;
    flags.*field->ok = false;
    if (const auto refresh = m_refreshes.find(ipAddress); refresh != m_refreshes.end())
        (*refresh).*field->result = -1;
}

/// Keeps what is known of an address so far, and decides on it once all four answers are in.
void DeviceDiscovery::storePending(NoctarisDevice &device, const PendingFlags &flags)
{
    const QString ipAddress = device.ipAddress();
    m_pendingDevices[ipAddress] = device;
    m_pendingFlags[ipAddress] = flags;
    if (!flags.hostnameOk || !flags.versionOk || !flags.modelOk || !flags.machineIdOk)
        return;
    if (identity::isComplete(device))
        admitDevice(device);
    else
        rejectDevice(device);
    m_pendingDevices.remove(ipAddress);
    m_pendingFlags.remove(ipAddress);
}

/// Takes the record itself, not a copy, so that a machine id that came last goes along.
void DeviceDiscovery::admitDevice(NoctarisDevice &device)
{
    const QString ipAddress = device.ipAddress();
    device.setIsOnline(true);
    if (s_verboseLogging)
        qDebug() << "Adding device with valid hostname, version, and model:" << ipAddress;
    if (m_mdnsFoundIps.contains(ipAddress))
    {
        ++m_mdnsDeviceCount;
        if (s_verboseLogging)
        {
            qDebug() << "Device" << ipAddress
                     << "confirmed as Noctaris via mDNS (total mDNS devices:" << m_mdnsDeviceCount << ")";
            qDebug() << "mDNS phase active:" << m_mdnsPhase;
        }
    }
    addOrUpdateDevice(device);
}

/// An address that answered nonsense is no device, even if it was one before.
void DeviceDiscovery::rejectDevice(const NoctarisDevice &device)
{
    const QString ipAddress = device.ipAddress();
    qDebug() << "Not adding device" << ipAddress
             << "due to invalid hostname, version, or model. Removing from m_mdnsFoundIps if present.";
    m_mdnsFoundIps.removeAll(ipAddress);
    const int row = rowOfAddress(ipAddress);
    if (row < 0)
        return;
    qDebug() << "Removing device" << ipAddress << "due to invalid data. Hostname:" << device.hostname()
             << "Version:" << device.version() << "Model:" << device.model();
    removeRowAt(row);
}
