// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "mdns/DnsMessage.h"

#include <QDebug>
#include <QVarLengthArray>
#include <QtEndian>

#include <algorithm>
#include <bitset>
#include <optional>

using namespace Qt::StringLiterals;

namespace mdns {
namespace {
constexpr quint8 pointerBits = 0xC0;
constexpr quint16 pointerTargetMask = 0x3FFF;
constexpr quint8 firstBeyondAscii = 0x80;

bool isPointer(quint8 byte)
{
    return (byte & pointerBits) == pointerBits;
}

bool isAscii(const char *bytes, qsizetype count)
{
    quint8 seen = 0;
    for (qsizetype i = 0; i < count; ++i)
        seen |= static_cast<quint8>(bytes[i]);
    return seen < firstBeyondAscii;
}

/// The pointer targets of one name. Honest names have one or two; hostile ones thousands.
class VisitedTargets
{
public:
    bool isEmpty() const { return m_few.isEmpty(); }

    /// False if the target was there already.
    bool insert(quint16 target)
    {
        if (m_many)
        {
            if (m_many->test(target))
                return false;
            m_many->set(target);
            return true;
        }
        if (m_few.contains(target))
            return false;
        m_few.append(target);
        if (m_few.size() == s_few)
        {
            m_many.emplace();
            for (const quint16 visited : m_few)
                m_many->set(visited);
        }
        return true;
    }

private:
    static constexpr qsizetype s_few = 16;
    QVarLengthArray<quint16, s_few> m_few;
    std::optional<std::bitset<pointerTargetMask + 1>> m_many;
};

/// Collects a name's labels, and becomes a string of just the size needed.
class NameText
{
public:
    /// Each label is decoded for itself: a character never spans two.
    void append(const char *bytes, int count, bool withDot)
    {
        const qsizetype start = m_text.size();
        const qsizetype end = start + count + (withDot ? 1 : 0);
        if (end > m_text.capacity())
            m_text.reserve(end + end / 2);
        m_text.resize(end);
        ushort *out = m_text.data() + start;
        quint8 seen = 0;
        for (int i = 0; i < count; ++i)
        {
            out[i] = static_cast<quint8>(bytes[i]);
            seen |= static_cast<quint8>(bytes[i]);
        }
        if (seen >= firstBeyondAscii)
        {
            const QString label = QString::fromUtf8(bytes, count);
            m_text.resize(start);
            m_text.append(label.utf16(), label.size());
            if (withDot)
                m_text.append(u'.');
        }
        else if (withDot)
        {
            out[count] = u'.';
        }
    }
    QString toString() const { return QStringView(m_text.constData(), m_text.size()).toString(); }

private:
    QVarLengthArray<ushort, 256> m_text;
};

void insertTxtString(QMap<QString, QString> &map, const char *bytes, int count)
{
    if (isAscii(bytes, count))
    {
        const QLatin1StringView text(bytes, count);
        const qsizetype equals = text.indexOf('='_L1);
        if (equals < 0)
            map.insert(QString(text), QString());
        else
            map.insert(QString(text.first(equals)), QString(text.sliced(equals + 1)));
        return;
    }
    const QString text = QString::fromUtf8(bytes, count);
    const qsizetype equals = text.indexOf('='_L1);
    map.insert(text.left(equals), equals < 0 ? QString() : text.sliced(equals + 1));
}
} // namespace

bool ReadBudget::takeText(int bytes)
{
    m_textBytes = std::max(m_textBytes - bytes, -1);
    return m_textBytes >= 0;
}

bool ReadBudget::takeHop()
{
    m_hops = std::max(m_hops - 1, -1);
    return m_hops >= 0;
}

void ReadBudget::warn(const char *text)
{
    if (m_warnings == 0)
        return;
    --m_warnings;
    qWarning() << text;
}

QByteArray encodeU16(quint16 value)
{
    QByteArray bytes(sizeof value, Qt::Uninitialized);
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray encodeU32(quint32 value)
{
    QByteArray bytes(sizeof value, Qt::Uninitialized);
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray encodeLabel(const QString &label)
{
    return static_cast<char>(label.size() & 0xFF) + label.toUtf8();
}

quint8 readU8(const QByteArray &data, qsizetype offset)
{
    return offset < 0 || offset >= data.size() ? 0 : static_cast<quint8>(data.at(offset));
}

quint16 readU16(const QByteArray &data, int offset)
{
    return offset < 0 || offset >= data.size() - 1 ? 0 : qFromBigEndian<quint16>(data.constData() + offset);
}

quint32 readU32(const QByteArray &data, int offset)
{
    return offset < 0 || offset >= data.size() - 3 ? 0 : qFromBigEndian<quint32>(data.constData() + offset);
}

QString normalizeName(const QString &name)
{
    if (name.endsWith('.'_L1))
        return {};
    return name.contains('.'_L1) ? name : name + ".local"_L1;
}

QString readName(const QByteArray &data, int &offset)
{
    ReadBudget budget;
    return readName(data, offset, budget);
}

QString readName(const QByteArray &data, int &offset, ReadBudget &budget)
{
    // Beyond these faults nothing can be made out any more: the rest of the packet is given up.
    const auto giveUp = [&](const char *warning) {
        budget.warn(warning);
        offset = static_cast<int>(data.size());
        return QString();
    };

    NameText name;
    VisitedTargets visited;
    int pos = offset;
    while (pos >= 0 && pos < data.size())
    {
        const quint8 length = readU8(data, pos);
        if (length == 0)
        {
            ++pos;
            break;
        }
        if (isPointer(length))
        {
            if (pos + 1 >= data.size())
                return giveUp("Malformed mDNS packet: Compression pointer out of bounds");
            // The caller goes on behind the first pointer, wherever the others lead.
            if (visited.isEmpty())
                offset = pos + 2;
            const quint16 target = readU16(data, pos) & pointerTargetMask;
            if (!visited.insert(target))
            {
                budget.warn("Malformed mDNS packet: Compression loop detected");
                return {};
            }
            if (!budget.takeHop())
                return giveUp("Malformed mDNS packet: Too many compression pointers");
            pos = target;
            continue;
        }
        const int end = pos + 1 + length;
        if (end > data.size())
            return giveUp("Malformed mDNS packet: Label length exceeds packet size");
        if (!budget.takeText(length))
            return giveUp("Malformed mDNS packet: Too much text");
        // No dot before a pointer: a compressed tail is glued to the label in front of it, and a service
        // instance keeps that form wherever it is named.
        const quint8 next = readU8(data, end);
        name.append(data.constData() + pos + 1, length, next != 0 && !isPointer(next));
        pos = end;
    }
    if (visited.isEmpty())
        offset = pos;
    return name.toString();
}

SrvTarget readSrvData(const QByteArray &data, int offset)
{
    ReadBudget budget;
    return readSrvData(data, offset, budget);
}

SrvTarget readSrvData(const QByteArray &data, int offset, ReadBudget &budget)
{
    // Priority and weight are skipped: a device offers a service on one host.
    if (offset >= data.size() - 6)
    {
        budget.warn("Malformed SRV record: Not enough data for priority, weight, port");
        return {};
    }
    int target = offset + 6;
    const quint16 port = readU16(data, offset + 4);
    return {readName(data, target, budget), port};
}

QMap<QString, QString> readTxtData(const QByteArray &data, int offset)
{
    ReadBudget budget;
    return readTxtData(data, offset, budget);
}

QMap<QString, QString> readTxtData(const QByteArray &data, int offset, ReadBudget &budget)
{
    QMap<QString, QString> map;
    int pos = offset;
    const int limit = offset + readU16(data, offset - 2);
    while (pos < limit && pos < data.size())
    {
        const quint8 length = readU8(data, pos);
        // Judged by the packet, not by the record: the last string may run past the record's end.
        if (pos + 1 + length > data.size())
        {
            budget.warn("Malformed TXT record: Length exceeds packet size");
            break;
        }
        if (!budget.takeText(length))
        {
            budget.warn("Malformed TXT record: Too much text");
            break;
        }
        insertTxtString(map, data.constData() + pos + 1, length);
        pos += 1 + length;
    }
    return map;
}
} // namespace mdns
