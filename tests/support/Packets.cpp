// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "support/Packets.h"

namespace packets {
namespace {
constexpr int a = 1;
constexpr int ptr = 12;
constexpr int txtType = 16;
constexpr int aaaa = 28;
constexpr int srv = 33;

/// A datagram that starts with a given body and is filled up with a record as often as that fits.
QByteArray filledWith(const QByteArray &body, const QByteArray &record)
{
    QByteArray datagram = header(0, 0x8400, {0, 65535, 65535, 65535}) + body;
    while (datagram.size() + record.size() <= largestDatagram)
        datagram += record;
    return datagram;
}

/// A record whose data is ignored, and holds what names are to point at.
QByteArray store(const QByteArray &data)
{
    return record(name("x"), 99, data);
}
constexpr int storeOffset = 12 + 3 + 10;

/// Records whose owners are names of different length in one stored text of one-byte labels.
QByteArray overlappingNames(int type, const QByteArray &data)
{
    QByteArray stored;
    for (int i = 0; i < 2000; ++i)
        stored += label("a");
    QByteArray datagram = header(0, 0x8400, {0, 65535, 65535, 65535}) + store(stored + '\0');
    for (int i = 0; datagram.size() + 12 + data.size() <= largestDatagram; ++i)
        datagram += record(pointer(storeOffset + 2 * (i % 2000)), type, data);
    return datagram;
}

/// One name that winds through the whole datagram again and again, read from another byte each time: the
/// labels of each reading end at a pointer of their own, to the start of the next reading.
QByteArray endlessName()
{
    constexpr int stride = 64;
    QByteArray datagram = responseHeader(1);
    const int start = int(datagram.size());
    datagram += QByteArray(64000, '?');
    for (int reading = 0; reading < stride; reading += 2)
        datagram += pointer(start + reading + 2);
    return datagram + QByteArray(100, '\0');
}

QByteArray manyServices()
{
    QByteArray datagram = header(0, 0x8400, {0, 65535, 0, 0}) + record(name("h.local"), a, QByteArray(4, 9));
    for (int i = 0; datagram.size() + 100 < largestDatagram; ++i)
    {
        const QByteArray instance = label(u16(i)) + name("_http._tcp.local");
        datagram +=
            record(QByteArray(1, '\0'), ptr, instance) + record(instance, srv, srvData(80, pointer(12)));
    }
    return datagram;
}

QByteArray manyIpv6Addresses()
{
    QByteArray datagram = header(0, 0x8000, {0, 1, 0, 2}) + name("host.local") +
                          record(QByteArray(), a, QByteArray(4, 9)).replace(2, 2, u16(0x8001));
    for (int i = 0; datagram.size() + 28 <= largestDatagram; ++i)
        datagram += pointer(12) + u16(aaaa) + u16(0x8001) + QByteArray(4, '\0') + u16(255) + u16(i) +
                    QByteArray(14, 1);
    return datagram;
}
} // namespace

QByteArray u16(int value)
{
    return QByteArray(1, static_cast<char>(value >> 8)) + static_cast<char>(value);
}

QByteArray header(int id, int flags, const Counts &counts)
{
    return u16(id) + u16(flags) + u16(counts.questions) + u16(counts.answers) + u16(counts.authorities) +
           u16(counts.additionals);
}

QByteArray responseHeader(int answers)
{
    return header(0, 0x8400, {0, answers, 0, 0});
}

QByteArray label(const QByteArray &text)
{
    return static_cast<char>(text.size()) + text;
}

QByteArray name(const QByteArray &dotted)
{
    QByteArray labels;
    for (const QByteArray &text : dotted.split('.'))
        labels += label(text);
    return labels + '\0';
}

QByteArray pointer(int offset)
{
    return u16(0xC000 | offset);
}

QByteArray record(const QByteArray &name, int type, const QByteArray &data)
{
    return name + u16(type) + u16(1) + u16(0) + u16(120) + u16(int(data.size())) + data;
}

QByteArray srvData(int port, const QByteArray &target)
{
    return u16(0) + u16(0) + u16(port) + target;
}

QByteArray txtData(const QList<QByteArray> &strings)
{
    QByteArray data;
    for (const QByteArray &text : strings)
        data += label(text);
    return data;
}

QByteArray address(const QHostAddress &ipv4)
{
    return u16(int(ipv4.toIPv4Address() >> 16)) + u16(int(ipv4.toIPv4Address() & 0xFFFF));
}

QByteArray serviceResponse(const QByteArray &instance, const QByteArray &host, int port,
                           const QList<QByteArray> &txt, const QHostAddress &ipv4)
{
    QByteArray packet = responseHeader(4);
    const QByteArray type = pointer(int(packet.size()));
    const QByteArray local = pointer(int(packet.size()) + 11);
    packet += record(name("_http._tcp.local"), ptr, label(instance) + type);
    const QByteArray instanceName = pointer(int(packet.size() - instance.size() - 3));
    packet += record(instanceName, srv, srvData(port, label(host) + local));
    const QByteArray hostName = pointer(int(packet.size() - host.size() - 3));
    packet += record(instanceName, txtType, txtData(txt));
    return packet + record(hostName, a, address(ipv4));
}

QList<Hostile> hostileDatagrams()
{
    QByteArray chain;
    for (int i = 1; i <= 8180; ++i)
        chain += pointer(storeOffset + 2 * i);
    const QByteArray chained = pointer(storeOffset);
    const char *hops = "Malformed mDNS packet: Too many compression pointers";
    const char *text = "Malformed mDNS packet: Too much text";
    return {
        {"one chain of thousands of pointers, walked by thousands of records",
         filledWith(store(chain + name("end")), record(chained, a, QByteArray(4, 1))), hops},
        {"names that overlap, as owners of addresses", overlappingNames(a, QByteArray(4, 1)), text},
        {"names that overlap, as instances", overlappingNames(ptr, pointer(storeOffset)), text},
        {"one name without end", endlessName(), text},
        {"metadata that runs over its record's end",
         filledWith({}, record(name("x"), txtType, QByteArray(1, '\xFF'))), "Malformed "},
        {"empty metadata strings", responseHeader(1) + record(name("x"), txtType, QByteArray(65400, '\0'))},
        {"thousands of loops", filledWith(store(pointer(storeOffset)), record(chained, ptr, chained)),
         "Malformed mDNS packet: Compression loop detected"},
        {"thousands of services", manyServices(), "", true},
        {"thousands of addresses behind a host answer", manyIpv6Addresses()},
        {"questions without end", header(0, 0x8400, {65535, 65535, 65535, 65535}) + QByteArray(65495, 1)},
    };
}
} // namespace packets
