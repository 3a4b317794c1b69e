// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// The wire format of multicast DNS as this program speaks it: functions over bytes, without sockets and
/// without state. Reading never leaves the buffer, whatever the bytes say.
namespace mdns {
enum RecordType : quint16
{
    A = 1,
    Ptr = 12,
    Txt = 16,
    Aaaa = 28,
    Srv = 33,
    Nsec = 47,
};

inline constexpr int headerSize = 12;
inline constexpr quint16 responseFlag = 0x8000;
inline constexpr quint16 internetClass = 0x0001;
/// The Internet class in an answer that replaces what a listener has cached.
inline constexpr quint16 flushingClass = 0x8001;
/// A compression pointer to the first name of a message, which stands right behind the header.
inline constexpr quint16 firstNamePointer = 0xC000 | headerSize;

/// Where a service runs: what an SRV record says. Port 0 with no host if the record is cut short.
struct SrvTarget
{
    QString host;
    quint16 port = 0;
};

/// What the reading of one datagram may still cost. Names may overlap and point at each other, so a small
/// datagram can ask for endless text and work. The limits are far above what an honest sender needs, and
/// what lies beyond them is malformed. Only the first warnings of a datagram are written.
class ReadBudget
{
public:
    /// Counts encoded text about to be decoded; false if the datagram has none left.
    bool takeText(int bytes);
    /// Counts a compression pointer about to be followed; false if the datagram has none left.
    bool takeHop();
    void warn(const char *text);

private:
    int m_textBytes = 1024 * 1024;
    int m_hops = 65536;
    int m_warnings = 5;
};

QByteArray encodeU16(quint16 value);
QByteArray encodeU32(quint32 value);
/// The label's text behind its length byte, which counts UTF-16 units whatever the bytes of the text are.
QByteArray encodeLabel(const QString &label);

/// The byte at an offset, 0 where the packet has none.
quint8 readU8(const QByteArray &data, qsizetype offset);
/// The value at an offset, 0 unless all of it lies in the packet.
quint16 readU16(const QByteArray &data, int offset);
quint32 readU32(const QByteArray &data, int offset);

/// Completes a bare label with ".local". Empty for a name with a dot at its end.
QString normalizeName(const QString &name);

/// Decodes the name at an offset and moves the offset behind it. A malformed name is empty.
QString readName(const QByteArray &data, int &offset);
QString readName(const QByteArray &data, int &offset, ReadBudget &budget);

/// Decodes the data of an SRV record, which starts at the offset.
SrvTarget readSrvData(const QByteArray &data, int offset);
SrvTarget readSrvData(const QByteArray &data, int offset, ReadBudget &budget);

/// Decodes the data of a TXT record, which starts at the offset, right behind the record's own length.
QMap<QString, QString> readTxtData(const QByteArray &data, int offset);
QMap<QString, QString> readTxtData(const QByteArray &data, int offset, ReadBudget &budget);
} // namespace mdns
