// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "mdns/HostAnswer.h"

#include "mdns/DnsMessage.h"

#include <QSet>
#include <QVarLengthArray>
#include <QtEndian>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace mdns {
namespace {
QByteArray encodeRecordHead(RecordType type, quint32 ttl, quint16 dataSize)
{
    return encodeU16(type) + encodeU16(flushingClass) + encodeU32(ttl) + encodeU16(dataSize);
}

QByteArray encodeIpv6(const QHostAddress &address)
{
    const Q_IPV6ADDR bytes = address.toIPv6Address();
    return {reinterpret_cast<const char *>(bytes.c), sizeof bytes.c};
}

/// The first IPv4 address with a value, 0 if there is none.
quint32 firstIpv4(const QList<QHostAddress> &addresses)
{
    for (const QHostAddress &address : addresses)
    {
        if (address.protocol() == QHostAddress::IPv4Protocol && !address.isLoopback() &&
            address.toIPv4Address() != 0)
            return address.toIPv4Address();
    }
    return 0;
}

bool isRecord(const QByteArray &data, int typeOffset, RecordType type)
{
    return readU16(data, typeOffset) == type && readU16(data, typeOffset + 2) == flushingClass;
}

/// The bytes in hexadecimal with a colon behind every second. A byte below 0x10 is one digit.
QString ipv6Text(const QByteArray &data, int offset, int count)
{
    constexpr char16_t digits[] = u"0123456789abcdef";
    QVarLengthArray<char16_t, 64> text;
    for (int i = 1; i <= count; ++i)
    {
        const quint8 byte = readU8(data, offset + i - 1);
        if (byte >= 0x10)
            text.append(digits[byte >> 4]);
        text.append(digits[byte & 0xF]);
        if (i % 2 == 0 && i < count)
            text.append(u':');
    }
    return QStringView(text.constData(), text.size()).toString();
}
} // namespace

QByteArray hostAnswer(quint16 queryId, const HostLabels &labels, quint32 ttl,
                      const QList<QHostAddress> &addresses)
{
    // The counts are those of an answer with one IPv6 address, however many there are.
    QByteArray answer = encodeU16(queryId) + encodeU16(responseFlag) + encodeU16(0) + encodeU16(1) +
                        encodeU16(0) + encodeU16(2) + encodeHostName(labels);
    answer += encodeRecordHead(A, ttl, 4) + encodeU32(firstIpv4(addresses)) + encodeU16(firstNamePointer);
    for (const QHostAddress &address : addresses)
    {
        if (address.protocol() == QHostAddress::IPv6Protocol && !address.isLoopback())
            answer += encodeRecordHead(Aaaa, ttl, 16) + encodeIpv6(address) + encodeU16(firstNamePointer);
    }
    return answer + encodeRecordHead(Nsec, ttl, 0);
}

QString hostNameFromPacket(const QByteArray &data)
{
    const qsizetype start = headerSize + 1;
    const qsizetype zero = data.indexOf('\0', start);
    const qsizetype end = zero < 0 ? data.size() : zero;
    // Read from the back, the last label's length byte is met when just that many characters stand there.
    QString reversed;
    for (qsizetype i = end - 1; i >= start; --i)
    {
        const quint8 byte = readU8(data, i);
        reversed += byte == (reversed.size() & 0xFF) ? QChar(u'.') : QChar(ushort(byte));
    }
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

QString ipv4FromPacket(const QByteArray &data, const QString &host)
{
    const int n = static_cast<int>(host.size());
    if (data.size() < n + 27 || !isRecord(data, n + 14, A))
        return {};
    QStringList numbers;
    const int count = readU8(data, n + 23);
    for (int i = 0; i < count; ++i)
        numbers += QString::number(readU8(data, n + 24 + i));
    return numbers.join('.'_L1);
}

QStringList ipv6FromPacket(const QByteArray &data, const QString &host)
{
    constexpr int recordSize = 28;
    QStringList texts;
    QSet<QString> seen;
    for (int q = static_cast<int>(host.size()) + 27;
         data.size() >= q + recordSize && isRecord(data, q + 3, Aaaa); q += recordSize)
    {
        const QString text = ipv6Text(data, q + 13, readU8(data, q + 12));
        if (seen.contains(text))
            continue;
        seen.insert(text);
        texts += text;
    }
    return texts;
}

QList<QHostAddress> addressesFromPacket(const QByteArray &data, const QString &host)
{
    QList<QHostAddress> addresses;
    if (const QHostAddress ipv4(ipv4FromPacket(data, host)); !ipv4.isNull())
        addresses += ipv4;
    for (const QString &text : ipv6FromPacket(data, host))
    {
        if (const QHostAddress ipv6(text); !ipv6.isNull())
            addresses += ipv6;
    }
    return addresses;
}
} // namespace mdns
