// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QHostAddress>
#include <QHostInfo>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

namespace mdns {
/// What was asked last, and what every response is judged by. One of the two is empty.
struct Lookup
{
    QString serviceType;
    QString hostName;
};

/// A service instance whose name, place and address one datagram told.
struct FoundService
{
    QString type;
    QString name;
    QString host;
    QHostAddress address;
    quint16 port = 0;
    QMap<QString, QString> txtRecords;
};

struct Response
{
    QList<FoundService> services;
    std::optional<QHostInfo> host;
};

/// Reads a whole response. Datagrams never combine: what one leaves out stays unknown.
/// If verbose, each record is written to the log on the way.
Response readResponse(const QByteArray &data, const Lookup &lookup, bool verbose);
} // namespace mdns
