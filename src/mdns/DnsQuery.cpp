// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "mdns/DnsQuery.h"

#include "mdns/DnsMessage.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace mdns {
namespace {
/// Id 0, flags 0, nothing but questions.
QByteArray queryHeader(quint16 questionCount)
{
    return encodeU16(0) + encodeU16(0) + encodeU16(questionCount) + QByteArray(6, '\0');
}

/// The bytes from an offset up to an end mark, one character each; what is not in the packet ends the text.
QString textUpTo(const QByteArray &data, qsizetype offset, char endMark)
{
    if (offset < 0 || offset >= data.size())
        return {};
    const qsizetype end = data.indexOf(endMark, offset);
    return QString::fromLatin1(end < 0 ? data.sliced(offset) : data.sliced(offset, end - offset));
}
} // namespace

HostLabels hostLabels(const QString &hostName)
{
    const QStringList labels = hostName.split('.'_L1);
    return {labels.first(), labels.last()};
}

QByteArray encodeHostName(const HostLabels &labels)
{
    return encodeLabel(labels.first) + encodeLabel(labels.last) + '\0';
}

QByteArray hostQuery(const HostLabels &labels)
{
    return queryHeader(2) + encodeHostName(labels) + encodeU16(A) + encodeU16(internetClass) +
           encodeU16(firstNamePointer) + encodeU16(Aaaa) + encodeU16(internetClass);
}

QByteArray serviceQuery(const QString &serviceType)
{
    QByteArray query = queryHeader(1);
    for (const QString &label : serviceType.split('.'_L1))
        query += encodeLabel(label);
    return query + '\0' + encodeU16(Ptr) + encodeU16(internetClass);
}

QString questionName(const QByteArray &query)
{
    // The length byte counts as signed, so from 0x80 on the positions fall in front of the name.
    const int byte = readU8(query, headerSize);
    const int secondLength = headerSize + 1 + (byte < 0x80 ? byte : byte - 0x100);
    const char stop = static_cast<char>(readU8(query, secondLength));
    const QString first = textUpTo(query, headerSize + 1, stop);
    const QString second = textUpTo(query, secondLength + 1, '\0');
    return normalizeName(first + '.'_L1 + second);
}
} // namespace mdns
