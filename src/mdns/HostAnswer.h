// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "mdns/DnsQuery.h"

#include <QHostAddress>
#include <QList>
#include <QStringList>

/// The one answer this program gives, and its reading. Both sides keep to one fixed layout: a header, one
/// uncompressed name, an A record, AAAA records and an empty NSEC record, the latter named by pointers.
namespace mdns {
/// The answer to a query for a host. Of the addresses, which stand in the system's order, it carries the
/// first IPv4 one and every IPv6 one that is not loopback. The time to live is in seconds.
QByteArray hostAnswer(quint16 queryId, const HostLabels &labels, quint32 ttl,
                      const QList<QHostAddress> &addresses);

/// The host name at the head of an answer.
QString hostNameFromPacket(const QByteArray &data);
/// The addresses behind the name, as text; the host is what hostNameFromPacket() returned.
QString ipv4FromPacket(const QByteArray &data, const QString &host);
QStringList ipv6FromPacket(const QByteArray &data, const QString &host);
/// The addresses that are valid, IPv4 first.
QList<QHostAddress> addressesFromPacket(const QByteArray &data, const QString &host);
} // namespace mdns
