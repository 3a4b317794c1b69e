// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "mdns/DnsQuery.h"
#include "mdns/DnsResponse.h"
#include "support/Log.h"
#include "support/Packets.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTest>

#include <vector>

using namespace Qt::StringLiterals;
using packets::header;
using packets::label;
using packets::name;
using packets::pointer;
using packets::record;
using packets::u16;

namespace {
const mdns::Lookup http{u"_http._tcp.local"_s, {}};
const QByteArray boxHttp = "box._http._tcp.local";
const QByteArray boxLocal = "box.local";

// The owner's name of every record is written out, so that each stands for itself.
QByteArray ptr(const QByteArray &instance)
{
    return record(name("_http._tcp.local"), 12, name(instance));
}

QByteArray srv(const QByteArray &instance, int port, const QByteArray &target)
{
    return record(name(instance), 33, packets::srvData(port, target));
}

QByteArray address(const QByteArray &bytes)
{
    return record(name(boxLocal), 1, bytes);
}

const QByteArray root(1, '\0');
const QByteArray boxSrv = srv(boxHttp, 8624, name(boxLocal));
const QByteArray boxTxt = record(name(boxHttp), 16, label("device=noctaris"));
const QByteArray boxA = address(QByteArray::fromHex("c0a8010a"));
const QByteArray boxAaaa = record(name(boxLocal), 28, QByteArray::fromHex("fe80") + QByteArray(14, 7));
const QByteArray box = ptr(boxHttp) + boxSrv + boxTxt + boxA;

/// A response that counts more records than it holds, as one cut short does.
QByteArray response(const QByteArray &records)
{
    return header(0, 0x8400, {0, 65535, 65535, 65535}) + records;
}

/// What was found, one line for each service and one for the host.
QStringList text(const mdns::Response &response)
{
    QStringList lines;
    for (const mdns::FoundService &found : response.services)
    {
        QString line = found.type + ' '_L1 + found.name + ' '_L1 + found.host + ' '_L1 +
                       found.address.toString() + ' '_L1 + QString::number(found.port);
        for (auto entry = found.txtRecords.begin(); entry != found.txtRecords.end(); ++entry)
            line += ' '_L1 + entry.key() + '='_L1 + entry.value();
        lines += line;
    }
    if (response.host)
    {
        QString line = u"host %1 %2"_s.arg(response.host->hostName()).arg(response.host->lookupId());
        for (const QHostAddress &each : response.host->addresses())
            line += ' '_L1 + each.toString();
        lines += line;
    }
    return lines;
}
} // namespace

class TestDnsResponse : public QObject
{
    Q_OBJECT

private slots:
    void findsServices();
    void findsHosts();
    void logsEachRecordWhenVerbose();
    void keepsItsBudget();
    void survivesMutations();
};

void TestDnsResponse::findsServices()
{
    const QString bare = u"_http._tcp.local box._http._tcp.local box.local 192.168.1.10 8624"_s;
    const QString whole = bare + u" device=noctaris"_s;
    const QString warning = whole + u"\nwarning: Malformed mDNS packet: "_s;
    const auto found = [](const QByteArray &packet) {
        const Log log;
        const QStringList lines = text(mdns::readResponse(packet, http, false));
        return (lines + log.lines()).join('\n'_L1);
    };
    // As responders compress it
    QCOMPARE(found(packets::serviceResponse("My Box", "box", 80, {"a=1", "b"}, QHostAddress(u"10.0.0.7"_s))),
             u"_http._tcp.local My Box_http._tcp.local boxlocal 10.0.0.7 80 a=1 b="_s);
    QCOMPARE(found(header(7, 0x8000, {0, 1, 1, 2}) + box), whole);
    QCOMPARE(found(response(boxAaaa + boxA + boxTxt + boxSrv + ptr(boxHttp))), whole);
    QCOMPARE(found(header(0, 0x8400, {0, 1, 1, 1}) + box), QString());
    QCOMPARE(found(response(ptr(boxHttp) + boxSrv + boxA)), bare);
    QCOMPARE(found(response(ptr(boxHttp) + boxSrv + boxTxt)), QString());
    QCOMPARE(found(response(box + boxAaaa)), QString());
    // IPv6 that reads as text
    QCOMPARE(found(response(box + record(name(boxLocal), 28, "fd00:0:1::22:333"))),
             QString(whole).replace("192.168.1.10"_L1, "fd00:0:1::22:333"_L1));
    QCOMPARE(found(response(srv(boxHttp, 9, name("x")) + address("1234") + box)), whole);
    QCOMPARE(found(response(box + address("12345") + record(name(boxLocal), 28, "1234"))), whole);
    QCOMPARE(found(response(box + srv(boxHttp, 0, name(boxLocal)))), QString());
    QCOMPARE(found(response(box + srv(boxHttp, 80, root) + record(root, 1, "1234"))), QString());
    // Of another type
    QCOMPARE(found(response(ptr("a._ipp._tcp.local") + srv("a._ipp._tcp.local", 1, name(boxLocal)) + boxA)),
             QString());
    // Type in other letters
    QCOMPARE(found(response(ptr("a._HTTP._tcp.Local") + srv("a._HTTP._tcp.Local", 1, name(boxLocal)) + boxA)),
             u"_http._tcp.local a._HTTP._tcp.Local box.local 192.168.1.10 1"_s);
    // Target compressed, owner not
    QCOMPARE(found(response(ptr(boxHttp) + srv(boxHttp, 80, label("box") + pointer(23)) + boxA)), QString());
    QCOMPARE(
        found(response(box + ptr("Box._http._tcp.local") + srv("Box._http._tcp.local", 2, name(boxLocal)))),
        u"_http._tcp.local Box._http._tcp.local box.local 192.168.1.10 2\n"_s + whole);
    QCOMPARE(found(response(box + boxA.chopped(1))), warning + u"RDLENGTH exceeds packet size"_s);
    QCOMPARE(found(response(box + boxA.first(20))), whole);
    QCOMPARE(found(response(record(pointer(12), 1, "1234") + box)), warning + u"Compression loop detected"_s);
    QCOMPARE(found(header(0, 0x8400, {2, 4, 0, 0}) + name("a.b") + u16(12) + u16(1) + name("c") + u16(1) +
                   u16(1) + box),
             whole);

    // A compressed question is left one byte too late.
    QCOMPARE(found(header(0, 0x8400, {1, 4, 0, 0}) + pointer(12) + u16(12) + u16(1) + "z" + box), whole);
}

void TestDnsResponse::findsHosts()
{
    const auto found = [](const QString &lookup, int type) {
        // No record is counted: a host's answer is read by its fixed layout alone.
        const QByteArray packet = header(0, 0x8000, {}) + name(boxLocal) + u16(type) + u16(0x8001) +
                                  QByteArray(4, 0) + u16(4) + "\1\2\3\4" + QByteArray(2, 0);
        return text(mdns::readResponse(packet, {{}, lookup}, false)).join('\n'_L1);
    };
    QCOMPARE(found(u"box"_s, 1), u"host box.local -1 1.2.3.4"_s);
    QCOMPARE(found(u"ox"_s, 1), u"host box.local -1 1.2.3.4"_s);
    QCOMPARE(found(u"box.local"_s, 1), QString());
    QCOMPARE(found(u"Box"_s, 1), QString());
    QCOMPARE(found(u"box"_s, 16), QString());
    QCOMPARE(found({}, 1), QString());
}

void TestDnsResponse::logsEachRecordWhenVerbose()
{
    const Log log;
    mdns::readResponse(response(box + boxAaaa), http, true);
    QCOMPARE(log.lines().first(), u"  Record Name: \"_http._tcp.local\" Type: c Class: 1 RDLENGTH: 22"_s);
    QCOMPARE(log.starting(u"    "_s), QStringList({
                                          u"    PTR Record:  \"box._http._tcp.local\""_s,
                                          u"    SRV Record for name: \"box._http._tcp.local\""_s,
                                          u"    SRV: Host: \"box.local\" Port: 8624"_s,
                                          u"    TXT Record for name: \"box._http._tcp.local\""_s,
                                          u"    TXT Records: QMap((\"device\", \"noctaris\"))"_s,
                                          u"    A/AAAA Record for name: \"box.local\""_s,
                                          u"    A: IP: QHostAddress(\"192.168.1.10\")"_s,
                                          u"    A/AAAA Record for name: \"box.local\""_s,
                                          u"    AAAA: IP: QHostAddress(\"\")"_s,
                                      }));
}

void TestDnsResponse::keepsItsBudget()
{
    for (const auto &[what, datagram, warning, isHonest] : packets::hostileDatagrams())
    {
        QVERIFY2(datagram.size() <= packets::largestDatagram, what);
        for (const mdns::Lookup &lookup : {http, mdns::Lookup{{}, u"host"_s}})
        {
            const Log log;
            QElapsedTimer timer;
            timer.start();
            const bool foundMany = mdns::readResponse(datagram, lookup, false).services.size() > 500;
            // Far above what it takes on a loaded machine, far below what a reader without limits needs.
            QVERIFY2(timer.elapsed() < 2000, what);
            QVERIFY2(foundMany == (isHonest && !lookup.serviceType.isEmpty()), what);
            QVERIFY2(log.lines().isEmpty() == (*warning == '\0') && log.lines().size() <= 5, what);
            QCOMPARE(log.starting(u"warning: "_s + QLatin1StringView(warning)), log.lines());
        }
    }
}

void TestDnsResponse::survivesMutations()
{
    const QList<QByteArray> seeds{
        packets::serviceResponse("box", "box", 8624, {"a=b", "c"}, QHostAddress(u"10.0.0.7"_s)),
        response(ptr(boxHttp) + boxSrv + boxTxt + boxAaaa + boxA),
        header(0, 0x8000, {0, 1, 0, 2}) + name(boxLocal) +
            QByteArray(boxA).replace(13, 2, u16(0x8001)).sliced(11) + pointer(12) + boxAaaa.sliced(11),
        header(0, 0, {1, 0, 0, 0}) + name(boxLocal) + u16(1) + u16(1),
    };
    QRandomGenerator random(5353);
    int found = 0;
    for (int i = 0; i < 20000; ++i)
    {
        QByteArray packet = seeds.at(i % seeds.size());
        for (int changes = random.bounded(1, 6); changes > 0; --changes)
            packet[random.bounded(packet.size())] =
                static_cast<char>(random.bounded(4) == 0 ? 0xC0 : random.bounded(256));
        packet.truncate(packet.size() - std::max(random.bounded(-60, 30), 0));
        // Without the zero that QByteArray puts behind its bytes, a sanitizer sees each read past the end.
        const std::vector<char> exact(packet.cbegin(), packet.cend());
        packet = QByteArray::fromRawData(exact.data(), packet.size());
        const Log log;
        found += int(mdns::readResponse(packet, http, false).services.size());
        found += mdns::readResponse(packet, {{}, u"box"_s}, false).host ? 1 : 0;
        mdns::questionName(packet);
        QVERIFY(log.lines().size() <= 10);
    }
    // Some changes do no harm, most do.
    QVERIFY2(found > 1000 && found < 10000, qPrintable(QString::number(found)));
}

QTEST_APPLESS_MAIN(TestDnsResponse)
#include "TestDnsResponse.moc"
