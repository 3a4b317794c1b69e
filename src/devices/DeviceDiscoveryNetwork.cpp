// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/DeviceRequest.h"
#include "devices/Verdicts.h"

#include <QDebug>
#include <QJsonArray>

using namespace Qt::StringLiterals;

void DeviceDiscovery::queryHotspotInterface(int deviceIndex)
{
    const auto ipAddress = addressForQuery(deviceIndex, "Invalid device index for hotspot interface query:");
    if (!ipAddress)
        return;
    if (s_verboseLogging)
        qDebug() << "Querying hotspot interface for device:" << *ipAddress;
    send("get_hotspot_interface"_L1, *ipAddress);
}

bool verdict::isHotspotInternal(const DeviceAnswer &answer)
{
    const QJsonObject object = answer.object();
    if (!answer.isGranted() || !object.contains("payload"_L1))
        return true;
    return object.value("payload"_L1).toObject().value("interface"_L1).toString() == "wlan0"_L1;
}

void DeviceDiscovery::onHotspotReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    const bool isInternal = verdict::isHotspotInternal(answer);
    if (answer.hasFailed())
        qDebug() << "Network error getting hotspot interface:" << answer.errorText;
    else if (s_verboseLogging)
        qDebug() << "Raw hotspot interface response data:" << answer.body;
    if (!answer.hasFailed() && !answer.isObject())
        qDebug() << "Failed to parse hotspot interface response:" << answer.jsonErrorText;
    else if (s_verboseLogging && !answer.hasFailed())
    {
        const QJsonObject payload = answer.object().value("payload"_L1).toObject();
        qDebug() << "Hotspot interface:" << payload.value("interface"_L1).toString()
                 << "useInternalWifi:" << isInternal;
    }
    reply->deleteLater();
    emit hotspotInterfaceReceived(ipAddress, isInternal);
}

void DeviceDiscovery::updateHotspotInterface(int deviceIndex, bool useInternalWifi)
{
    const auto ipAddress = addressForCommand(deviceIndex, &DeviceDiscovery::hotspotInterfaceUpdated);
    if (!ipAddress)
        return;
    setStatusText(u"Updating hotspot interface for %1..."_s.arg(*ipAddress));
    const QString name = useInternalWifi ? u"wlan0"_s : u"wlan1"_s;
    const QNetworkReply *reply = send("update_hotspot_interface"_L1, *ipAddress,
                                      {.pathArgument = name, .properties = {useInternalWifi, name}});
    logRequest("Making hotspot interface update request to:", reply, "Interface name:", name.toUtf8());
}

Outcome verdict::hotspotUpdate(const DeviceAnswer &answer)
{
    if (answer.hasFailed())
        return {false, u"Network error: %1"_s.arg(answer.errorText)};
    if (!answer.isObject())
        return {false, u"Invalid response from server"_s};
    // Some devices answer with a word of success in place of the result; that they have one is enough.
    if (answer.isGranted() || answer.object().contains("success"_L1))
        return {true, u"Hotspot interface updated successfully. Verifying..."_s};
    return {false, u"Failed to update hotspot interface"_s};
}

void DeviceDiscovery::onHotspotUpdateReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer({"Hotspot interface update response - HTTP status:", "Raw hotspot interface update response:"},
              answer);
    const Outcome outcome = verdict::hotspotUpdate(answer);
    qDebug() << outcome.message;
    if (const int row = rowOfAddress(ipAddress); outcome.success && row >= 0)
    {
        queryHotspotInterface(row);
        queryNetworkInterfaces(row);
    }
    // Not in the status line: what the two questions bring says more.
    emit hotspotInterfaceUpdated(ipAddress, outcome.success, outcome.message);
    reply->deleteLater();
}

void DeviceDiscovery::queryNetworkInterfaces(int deviceIndex)
{
    const auto ipAddress = addressForQuery(deviceIndex, "Invalid device index for network interfaces query:");
    if (!ipAddress)
        return;
    if (s_verboseLogging)
        qDebug() << "Querying network interfaces for device:" << *ipAddress;
    send("get_network_interfaces"_L1, *ipAddress);
}

verdict::NetworkInterfaces verdict::networkInterfaces(const DeviceAnswer &answer)
{
    NetworkInterfaces list;
    list.result = answer.json.isArray() || answer.isGranted();
    if (!list.result)
        return list;
    const QJsonArray elements =
        answer.json.isArray() ? answer.json.array() : answer.object().value("interfaces"_L1).toArray();
    for (const QJsonValue element : elements)
    {
        const QJsonObject object = element.toObject();
        list.interfaces.append(QVariantMap{{u"interface"_s, object.value("interface"_L1).toString()},
                                           {u"ip"_s, object.value("ip"_L1).toString()}});
    }
    return list;
}

/// The log of a list of interfaces; devices of different age write it in two shapes.
void DeviceDiscovery::logNetworkInterfaces(const DeviceAnswer &answer)
{
    const QString &ipAddress = answer.ipAddress;
    if (answer.hasFailed())
    {
        qDebug() << "Network error getting network interfaces for" << ipAddress << answer.errorText;
        return;
    }
    if (s_verboseLogging)
        qDebug() << "Raw network interfaces response data:" << answer.body;
    if (answer.json.isNull())
        qDebug() << "Failed to parse network interfaces response for" << ipAddress << answer.jsonErrorText;
    else if (answer.json.isArray())
        qDebug() << "Parsed old-style network interfaces response for" << ipAddress;
    else if (!answer.isObject())
        qDebug() << "Failed to parse network interfaces response for" << ipAddress
                 << ": Neither array nor object";
    else if (answer.isGranted() && answer.object().contains("interfaces"_L1))
        qDebug() << "Parsed new-style network interfaces response for" << ipAddress;
    else
        qDebug() << "Failed to get network interfaces for" << ipAddress
                 << ": Server returned result=false or missing interfaces array";
}

void DeviceDiscovery::onNetworkInterfacesReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logNetworkInterfaces(answer);
    const verdict::NetworkInterfaces list = verdict::networkInterfaces(answer);
    if (const int row = rowOfAddress(ipAddress); list.result && row >= 0)
        replaceSecondaryIps(row, list.interfaces);
    emit networkInterfacesReceived(ipAddress,
                                   {{u"result"_s, list.result}, {u"interfaces"_s, list.interfaces}});
    reply->deleteLater();
}

/// Has a row take a device's further addresses as the device lists them now.
void DeviceDiscovery::replaceSecondaryIps(int row, const QVariantList &interfaces)
{
    NoctarisDevice &device = m_devices[row];
    const QString ipAddress = device.ipAddress();
    QStringList addresses;
    for (const QVariant &element : interfaces)
    {
        const QVariantMap entry = element.toMap();
        const QString address = entry.value(u"ip"_s).toString();
        if (address.isEmpty() || address == "0.0.0.0"_L1 || address == ipAddress ||
            addresses.contains(address))
            continue;
        addresses.append(address);
        qDebug() << "Adding secondary IP" << address << "from interface"
                 << entry.value(u"interface"_s).toString() << "to device" << ipAddress;
    }
    device.setSecondaryIps(addresses);
    emit dataChanged(index(row), index(row), {SecondaryIpsRole});
    qDebug() << "Updated secondary IPs for device" << ipAddress << addresses;
}

void DeviceDiscovery::sendEthernetCommand(QLatin1StringView tag, int deviceIndex, ResultSignal completed,
                                          const QString &statusText, const char *requestWords)
{
    const auto ipAddress = addressForCommand(deviceIndex, completed);
    if (!ipAddress)
        return;
    setStatusText(statusText.arg(*ipAddress));
    qDebug() << requestWords << send(tag, *ipAddress)->url().toString();
}

void DeviceDiscovery::activateDirectEthernet(int deviceIndex)
{
    sendEthernetCommand(
        "activate_direct_ethernet"_L1, deviceIndex, &DeviceDiscovery::ethernetActivationCompleted,
        u"Activating direct ethernet for device %1..."_s, "Making activate direct ethernet request to:");
}

Outcome verdict::ethernetActivation(const DeviceAnswer &answer)
{
    return common(answer, u"Failed to activate direct ethernet for %1"_s.arg(answer.ipAddress),
                  u"Direct ethernet activated successfully for device %1."_s.arg(answer.ipAddress));
}

void DeviceDiscovery::onEthernetActivationReply(QNetworkReply *reply, const QString & /*ipAddress*/)
{
    conclude(
        reply, verdict::ethernetActivation, &DeviceDiscovery::ethernetActivationCompleted,
        {"Activate direct ethernet response - HTTP status:", "Raw activate direct ethernet response data:"});
}

void DeviceDiscovery::deactivateDirectEthernet(int deviceIndex)
{
    sendEthernetCommand(
        "deactivate_direct_ethernet"_L1, deviceIndex, &DeviceDiscovery::ethernetDeactivationCompleted,
        u"Deactivating direct ethernet for device %1..."_s, "Making deactivate direct ethernet request to:");
}

Outcome verdict::ethernetDeactivation(const DeviceAnswer &answer)
{
    return common(answer, u"Failed to deactivate direct ethernet for %1"_s.arg(answer.ipAddress),
                  u"Direct ethernet deactivated successfully for device %1."_s.arg(answer.ipAddress));
}

void DeviceDiscovery::onEthernetDeactivationReply(QNetworkReply *reply, const QString & /*ipAddress*/)
{
    conclude(reply, verdict::ethernetDeactivation, &DeviceDiscovery::ethernetDeactivationCompleted,
             {"Deactivate direct ethernet response - HTTP status:",
              "Raw deactivate direct ethernet response data:"});
}
