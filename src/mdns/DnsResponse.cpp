// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "mdns/DnsResponse.h"

#include "mdns/DnsMessage.h"
#include "mdns/HostAnswer.h"

#include <QDebug>

#include <map>
#include <set>

namespace mdns {
namespace {
/// Walks the records of one response and keeps what services are made of.
class ResponseReader
{
public:
    ResponseReader(const QByteArray &data, const QString &serviceType, bool verbose)
        : m_data(data), m_serviceType(serviceType), m_verbose(verbose)
    {
    }

    void readRecords();
    QList<FoundService> services() const;

private:
    struct Record
    {
        QString name;
        quint16 type;
        int dataOffset;
        int dataSize;
    };

    void skipQuestions();
    bool readRecord();
    void readData(Record &record);
    void readPtr(const Record &record);
    void readSrv(Record &record);
    void readTxt(Record &record);
    void readAddress(Record &record);

    const QByteArray &m_data;
    const QString &m_serviceType;
    const bool m_verbose;
    ReadBudget m_budget;
    int m_offset = headerSize;
    std::set<QString> m_instances;
    std::map<QString, SrvTarget> m_srvs;
    std::map<QString, QMap<QString, QString>> m_txts;
    std::map<QString, QHostAddress> m_addresses;
};

void ResponseReader::readRecords()
{
    skipQuestions();
    const int total = readU16(m_data, 6) + readU16(m_data, 8) + readU16(m_data, 10);
    for (int i = 0; i < total && readRecord(); ++i)
    {
    }
}

void ResponseReader::skipQuestions()
{
    const int count = readU16(m_data, 4);
    for (int i = 0; i < count && m_offset < m_data.size(); ++i)
    {
        while (m_offset < m_data.size())
        {
            const quint8 byte = readU8(m_data, m_offset);
            if (byte == 0)
                break;
            if ((byte & 0xC0) != 0)
            {
                m_offset += 2;
                break;
            }
            m_offset += byte + 1;
        }
        // The zero that ends a name, type and class. A compressed question is left one byte too late;
        // responses have no business to repeat one.
        m_offset += 5;
    }
}

/// False where the walk ends.
bool ResponseReader::readRecord()
{
    if (m_offset >= m_data.size())
        return false;
    QString name = readName(m_data, m_offset, m_budget);
    if (m_offset + 9 >= m_data.size())
        return false;
    Record record{std::move(name), readU16(m_data, m_offset), m_offset + 10, readU16(m_data, m_offset + 8)};
    const quint16 recordClass = readU16(m_data, m_offset + 2);
    if (record.dataOffset + record.dataSize > m_data.size())
    {
        m_budget.warn("Malformed mDNS packet: RDLENGTH exceeds packet size");
        return false;
    }
    m_offset = record.dataOffset + record.dataSize;
    if (m_verbose)
        qDebug() << "  Record Name:" << record.name << "Type:" << Qt::hex << record.type
                 << "Class:" << recordClass << Qt::dec << "RDLENGTH:" << record.dataSize;
    readData(record);
    return true;
}

void ResponseReader::readData(Record &record)
{
    switch (record.type)
    {
    case Ptr:
        return readPtr(record);
    case Srv:
        return readSrv(record);
    case Txt:
        return readTxt(record);
    case A:
    case Aaaa:
        return readAddress(record);
    default:
        return;
    }
}

void ResponseReader::readPtr(const Record &record)
{
    int offset = record.dataOffset;
    QString target = readName(m_data, offset, m_budget);
    if (m_verbose)
        qDebug() << "    PTR Record: " << target;
    if (target.endsWith(m_serviceType, Qt::CaseInsensitive))
        m_instances.insert(std::move(target));
}

void ResponseReader::readSrv(Record &record)
{
    if (m_verbose)
        qDebug() << "    SRV Record for name:" << record.name;
    SrvTarget &srv = m_srvs[std::move(record.name)];
    srv = readSrvData(m_data, record.dataOffset, m_budget);
    if (m_verbose)
        qDebug() << "    SRV: Host:" << srv.host << "Port:" << srv.port;
}

void ResponseReader::readTxt(Record &record)
{
    if (m_verbose)
        qDebug() << "    TXT Record for name:" << record.name;
    QMap<QString, QString> &txt = m_txts[std::move(record.name)];
    txt = readTxtData(m_data, record.dataOffset, m_budget);
    if (m_verbose)
        qDebug() << "    TXT Records:" << txt;
}

void ResponseReader::readAddress(Record &record)
{
    if (m_verbose)
        qDebug() << "    A/AAAA Record for name:" << record.name;
    const char *kind = nullptr;
    QHostAddress address;
    if (record.type == A && record.dataSize == 4)
    {
        kind = "    A: IP:";
        address = QHostAddress(readU32(m_data, record.dataOffset));
    }
    else if (record.type == Aaaa && record.dataSize == 16)
    {
        // Taken as text, real IPv6 addresses come out null, and a host's null address hides its services:
        // devices are reached by IPv4, and the record that stands last decides.
        kind = "    AAAA: IP:";
        address = QHostAddress(QString::fromUtf8(m_data.constData() + record.dataOffset, record.dataSize));
    }
    else
    {
        return;
    }
    if (m_verbose)
        qDebug() << kind << address;
    m_addresses[std::move(record.name)] = address;
}

QList<FoundService> ResponseReader::services() const
{
    QList<FoundService> found;
    for (const QString &instance : m_instances)
    {
        const auto srv = m_srvs.find(instance);
        if (srv == m_srvs.end())
            continue;
        const auto &[host, port] = srv->second;
        const auto address = m_addresses.find(host);
        if (address == m_addresses.end())
            continue;
        if (m_serviceType.isEmpty() || instance.isEmpty() || host.isEmpty() || address->second.isNull() ||
            port == 0)
            continue;
        const auto txt = m_txts.find(instance);
        found.append({m_serviceType, instance, host, address->second, port,
                      txt == m_txts.end() ? QMap<QString, QString>() : txt->second});
    }
    return found;
}

std::optional<QHostInfo> readHost(const QByteArray &data, const QString &lookupName)
{
    // Names on the wire hold length bytes instead of dots, so only a bare label is ever recognised.
    if (lookupName.isEmpty() || !data.contains(lookupName.toLatin1()))
        return {};
    const QString name = hostNameFromPacket(data);
    const QList<QHostAddress> addresses = addressesFromPacket(data, name);
    if (name.isEmpty() || addresses.isEmpty())
        return {};
    QHostInfo host(-1);
    host.setHostName(name);
    host.setAddresses(addresses);
    host.setError(QHostInfo::NoError);
    return host;
}
} // namespace

Response readResponse(const QByteArray &data, const Lookup &lookup, bool verbose)
{
    ResponseReader reader(data, lookup.serviceType, verbose);
    reader.readRecords();
    return {reader.services(), readHost(data, lookup.hostName)};
}
} // namespace mdns
