// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QList>

/// Multicast DNS datagrams made by hand, piece by piece. Nothing here uses the program's own encoders.
namespace packets {
constexpr int largestDatagram = 65507;

struct Counts
{
    int questions = 0;
    int answers = 0;
    int authorities = 0;
    int additionals = 0;
};

QByteArray u16(int value);
QByteArray header(int id, int flags, const Counts &counts);
/// A response with so many answers.
QByteArray responseHeader(int answers);
QByteArray label(const QByteArray &text);
/// The labels of a dotted name and the zero behind them.
QByteArray name(const QByteArray &dotted);
QByteArray pointer(int offset);
QByteArray record(const QByteArray &name, int type, const QByteArray &data);
QByteArray srvData(int port, const QByteArray &target);
QByteArray txtData(const QList<QByteArray> &strings);
QByteArray address(const QHostAddress &ipv4);

/// What real responders send for one service: PTR, SRV, TXT and A, each name compressed as far as it goes.
QByteArray serviceResponse(const QByteArray &instance, const QByteArray &host, int port,
                           const QList<QByteArray> &txt, const QHostAddress &ipv4);

/// A datagram of the largest size that costs a careless reader much, and how the warnings start that a
/// careful one gives.
struct Hostile
{
    const char *what;
    QByteArray datagram;
    const char *warning = "";
    bool isHonest = false;
};
QList<Hostile> hostileDatagrams();
} // namespace packets
