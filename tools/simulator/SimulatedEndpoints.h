// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/SimulatedDevice.h"

#include <QJsonArray>
#include <QJsonObject>

#include <span>

/// What a device answers, in tables by topic.
namespace endpoints {

constexpr quint16 api = SimulatedDevice::apiPort;
constexpr quint16 lumarc = SimulatedDevice::companionPort;

/// A request as an endpoint sees it.
struct Call
{
    QString path;
    /// The part of the path that varies, decoded.
    QString argument;
    /// The query as it stands in the target.
    QByteArray query;
    /// Empty if the client sent no JSON object.
    QJsonObject body;

    QString text(QLatin1StringView key) const { return body[key].toString(); }
};

/// One thing a device answers: a row, and a function that reads the device or changes it.
struct Endpoint
{
    const char *method;
    quint16 port;
    /// A '*' at the end stands for one more segment, the call's argument.
    const char *path;
    HttpReply (*answer)(SimulatedDevice &device, const Call &call);
};

/// {"result":true} with more members.
HttpReply done(QJsonObject members = {});
/// {"result":true,"payload":...}
HttpReply found(const QJsonValue &payload);
/// A list that earlier systems send as a bare array, and others as a member.
HttpReply listed(const SimulatedDevice &device, const QString &member, const QJsonArray &list);
/// {"result":false,"error":...}, under status 200 as a device does it.
HttpReply refused(const QString &error);
HttpReply notFound();

extern const std::span<const Endpoint> ofSoftware;
extern const std::span<const Endpoint> ofServices;
extern const std::span<const Endpoint> ofNetwork;
extern const std::span<const Endpoint> ofDisk;

} // namespace endpoints
