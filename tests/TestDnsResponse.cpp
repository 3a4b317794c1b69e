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
        QString line =
            u"host "_s + response.host->hostName() + ' '_L1 + QString::number(response.host->lookupId());
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
    void findsServices_data();
    void findsServices();
    void findsHosts_data();
    void findsHosts();
    void logsEachRecordWhenVerbose();
    void keepsItsBudget_data();
    void keepsItsBudget();
    void sparesHonestGiants();
    void survivesMutations();
};

void TestDnsResponse::findsServices_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<QString>("found");
    const QString bare = u"_http._tcp.local box._http._tcp.local box.local 192.168.1.10 8624"_s;
    const QString whole = bare + u" device=noctaris"_s;
    const QString warning = whole + u"\nwarning: Malformed mDNS packet: "_s;
    const struct
    {
        const char *what;
        QByteArray packet;
        QString found;
    } rows[] = {
        {"as responders compress it",
         packets::serviceResponse("My Box", "box", 80, {"a=1", "b"}, QHostAddress(u"10.0.0.7"_s)),
         u"_http._tcp.local My Box_http._tcp.local boxlocal 10.0.0.7 80 a=1 b="_s},
        {"in all sections", header(7, 0x8000, {0, 1, 1, 2}) + box, whole},
        {"in another order", response(boxA + boxTxt + boxSrv + ptr(boxHttp)), whole},
        {"more than counted", header(0, 0x8400, {0, 1, 1, 1}) + box, {}},
        {"without metadata", response(ptr(boxHttp) + boxSrv + boxA), bare},
        {"without an address", response(ptr(boxHttp) + boxSrv + boxTxt), {}},
        {"without a target", response(ptr(boxHttp) + boxTxt + boxA), {}},
        {"IPv6 behind IPv4", response(box + boxAaaa), {}},
        {"IPv4 behind IPv6", response(boxAaaa + box), whole},
        {"IPv6 that reads as text", response(box + record(name(boxLocal), 28, "fd00:0:1::22:333")),
         QString(whole).replace("192.168.1.10"_L1, "fd00:0:1::22:333"_L1)},
        {"the later records count", response(srv(boxHttp, 9, name("x")) + address("1234") + box), whole},
        {"addresses of other sizes", response(box + address("12345") + record(name(boxLocal), 28, "1234")),
         whole},
        {"port 0", response(box + srv(boxHttp, 0, name(boxLocal))), {}},
        {"target without a name", response(box + srv(boxHttp, 80, root) + record(root, 1, "1234")), {}},
        {"of another type",
         response(ptr("a._ipp._tcp.local") + srv("a._ipp._tcp.local", 1, name(boxLocal)) + boxA),
         {}},
        {"type in other letters",
         response(ptr("a._HTTP._tcp.Local") + srv("a._HTTP._tcp.Local", 1, name(boxLocal)) + boxA),
         u"_http._tcp.local a._HTTP._tcp.Local box.local 192.168.1.10 1"_s},
        {"target compressed, owner not",
         response(ptr(boxHttp) + srv(boxHttp, 80, label("box") + pointer(23)) + boxA),
         {}},
        {"two, by name",
         response(box + ptr("Box._http._tcp.local") + srv("Box._http._tcp.local", 2, name(boxLocal))),
         u"_http._tcp.local Box._http._tcp.local box.local 192.168.1.10 2\n"_s + whole},
        {"record cut", response(box + boxA.chopped(1)), warning + u"RDLENGTH exceeds packet size"_s},
        {"head of a record cut", response(box + boxA.first(20)), whole},
        {"name cut", response(box + QByteArray(1, 60) + QByteArray(20, 'a')),
         warning + u"Label length exceeds packet size"_s},
        {"name that loops", response(record(pointer(12), 1, "1234") + box),
         warning + u"Compression loop detected"_s},
        {"questions repeated",
         header(0, 0x8400, {2, 4, 0, 0}) + name("a.b") + u16(12) + u16(1) + name("c") + u16(1) + u16(1) + box,
         whole},
        // A compressed question is left one byte too late.
        {"question compressed", header(0, 0x8400, {1, 4, 0, 0}) + pointer(12) + u16(12) + u16(1) + "z" + box,
         whole},
        {"question with a long label", header(0, 0x8400, {1, 4, 0, 0}) + "@" + QByteArray(6, 'z') + box,
         whole},
    };
    for (const auto &row : rows)
        QTest::newRow(row.what) << row.packet << row.found;
}

void TestDnsResponse::findsServices()
{
    QFETCH(QByteArray, packet);
    const Log log;
    const QStringList found = text(mdns::readResponse(packet, http, false));
    QTEST((found + log.lines()).join('\n'_L1), "found");
}

void TestDnsResponse::findsHosts_data()
{
    QTest::addColumn<QString>("lookup");
    QTest::addColumn<QByteArray>("addresses");
    QTest::addColumn<QString>("found");
    const QByteArray ipv4 = u16(1) + u16(0x8001) + QByteArray(4, 0) + u16(4) + "\1\2\3\4";
    QTest::newRow("bare label") << u"box"_s << ipv4 << u"host box.local -1 1.2.3.4"_s;
    QTest::newRow("part of a label") << u"ox"_s << ipv4 << u"host box.local -1 1.2.3.4"_s;
    QTest::newRow("with its dot") << u"box.local"_s << ipv4 << QString();
    QTest::newRow("in other letters") << u"Box"_s << ipv4 << QString();
    QTest::newRow("no address") << u"box"_s << QByteArray(ipv4).replace(0, 2, u16(16)) << QString();
    QTest::newRow("nothing asked") << QString() << ipv4 << QString();
}

void TestDnsResponse::findsHosts()
{
    QFETCH(QString, lookup);
    QFETCH(QByteArray, addresses);
    // No record is counted: a host's answer is read by its fixed layout alone.
    const QByteArray packet = header(0, 0x8000, {}) + name(boxLocal) + addresses + QByteArray(2, 0);
    QTEST(text(mdns::readResponse(packet, {{}, lookup}, false)).join('\n'_L1), "found");
}

void TestDnsResponse::logsEachRecordWhenVerbose()
{
    const Log log;
    mdns::readResponse(response(box + address("12345") + boxAaaa + record(name("x"), 47, "")), http, true);
    QCOMPARE(log.lines(), QStringList({
                              u"  Record Name: \"_http._tcp.local\" Type: c Class: 1 RDLENGTH: 22"_s,
                              u"    PTR Record:  \"box._http._tcp.local\""_s,
                              u"  Record Name: \"box._http._tcp.local\" Type: 21 Class: 1 RDLENGTH: 17"_s,
                              u"    SRV Record for name: \"box._http._tcp.local\""_s,
                              u"    SRV: Host: \"box.local\" Port: 8624"_s,
                              u"  Record Name: \"box._http._tcp.local\" Type: 10 Class: 1 RDLENGTH: 16"_s,
                              u"    TXT Record for name: \"box._http._tcp.local\""_s,
                              u"    TXT Records: QMap((\"device\", \"noctaris\"))"_s,
                              u"  Record Name: \"box.local\" Type: 1 Class: 1 RDLENGTH: 4"_s,
                              u"    A/AAAA Record for name: \"box.local\""_s,
                              u"    A: IP: QHostAddress(\"192.168.1.10\")"_s,
                              u"  Record Name: \"box.local\" Type: 1 Class: 1 RDLENGTH: 5"_s,
                              u"    A/AAAA Record for name: \"box.local\""_s,
                              u"  Record Name: \"box.local\" Type: 1c Class: 1 RDLENGTH: 16"_s,
                              u"    A/AAAA Record for name: \"box.local\""_s,
                              u"    AAAA: IP: QHostAddress(\"\")"_s,
                              u"  Record Name: \"x\" Type: 2f Class: 1 RDLENGTH: 0"_s,
                          }));
}

void TestDnsResponse::keepsItsBudget_data()
{
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<QString>("warning");
    QTest::addColumn<bool>("isHonest");
    for (const packets::Hostile &hostile : packets::hostileDatagrams())
        QTest::newRow(hostile.what) << hostile.datagram << QString::fromLatin1(hostile.warning)
                                    << hostile.isHonest;
}

void TestDnsResponse::keepsItsBudget()
{
    QFETCH(QByteArray, datagram);
    QFETCH(QString, warning);
    QVERIFY(datagram.size() <= packets::largestDatagram);
    for (const mdns::Lookup &lookup : {http, mdns::Lookup{{}, u"host"_s}})
    {
        const Log log;
        QElapsedTimer timer;
        timer.start();
        const bool foundMany = mdns::readResponse(datagram, lookup, false).services.size() > 500;
        // Far above what it takes on a loaded machine, far below what a reader without limits needs.
        QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
        if (!lookup.serviceType.isEmpty())
            QTEST(foundMany, "isHonest");
        QCOMPARE(log.lines().isEmpty(), warning.isEmpty());
        QVERIFY(log.lines().size() <= 5);
        QCOMPARE(log.starting(u"warning: "_s + warning), log.lines());
    }
}

void TestDnsResponse::sparesHonestGiants()
{
    const Log log;
    QByteArray packet = response(boxA);
    int count = 0;
    for (; packet.size() < 16000; ++count)
    {
        const QByteArray owner = pointer(int(packet.size()) + 12);
        packet += record(pointer(12), 12, name("device-" + QByteArray::number(count) + "._http._tcp.local")) +
                  record(owner, 33, packets::srvData(1, pointer(12)));
    }
    // The largest datagram that compresses every name it can.
    while (packet.size() < 65000)
        packet += record(pointer(12 + int(boxA.size()) + 12), 16, label(QByteArray(200, 'p')));
    QCOMPARE(mdns::readResponse(packet, http, false).services.size(), count);
    QCOMPARE(log.lines(), QStringList());
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
    for (int i = 0; i < 40000; ++i)
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
    QVERIFY2(found > 2000 && found < 20000, qPrintable(QString::number(found)));
}

QTEST_APPLESS_MAIN(TestDnsResponse)
#include "TestDnsResponse.moc"
