// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace mdns {
/// The two labels of a host name that go on the wire: its first and its last.
struct HostLabels
{
    QString first;
    QString last;

    /// A first label of 256 characters or more, for which nothing may be sent.
    bool isTooLong() const { return first.size() >= 256; }
};
HostLabels hostLabels(const QString &hostName);

/// The labels, each behind its length, and the zero that ends a name.
QByteArray encodeHostName(const HostLabels &labels);

/// The datagram that asks for both kinds of address of a host.
QByteArray hostQuery(const HostLabels &labels);
/// The datagram that asks who offers a service type, for example "_http._tcp.local".
QByteArray serviceQuery(const QString &serviceType);

/// The host name that a query asks for, completed with ".local" where it is a bare label.
/// For datagrams of 13 bytes and more.
QString questionName(const QByteArray &query);
} // namespace mdns
