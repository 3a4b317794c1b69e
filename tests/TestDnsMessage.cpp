// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "mdns/DnsMessage.h"
#include "mdns/DnsQuery.h"
#include "mdns/HostAnswer.h"
#include "support/Log.h"
#include "support/Packets.h"

#include <QTest>

using namespace Qt::StringLiterals;
using packets::label;
using packets::name;
using packets::pointer;
using packets::responseHeader;
using packets::u16;

namespace {
const QByteArray fourBytes = QByteArray::fromHex("c0a8010a");

const QString loop = u"warning: Malformed mDNS packet: Compression loop detected"_s;
const QString pointerCut = u"warning: Malformed mDNS packet: Compression pointer out of bounds"_s;
const QString labelCut = u"warning: Malformed mDNS packet: Label length exceeds packet size"_s;
const QString srvCut = u"warning: Malformed SRV record: Not enough data for priority, weight, port"_s;
const QString txtCut = u"warning: Malformed TXT record: Length exceeds packet size"_s;

QString text(const QMap<QString, QString> &map)
{
    QStringList entries;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        entries += entry.key() + '='_L1 + entry.value();
    return entries.join(';'_L1);
}

/// The fixed layout of a host's answer: "box.local", an A record, and AAAA records of 16 bytes each.
QByteArray hostPacket(const QByteArray &ipv4, const QList<QByteArray> &ipv6, const QByteArray &ipv4Class)
{
    QByteArray packet = packets::header(0, 0x8000, {0, 1, 0, 2}) + name("box.local") +
                        QByteArray::fromHex("0001" + ipv4Class + "00001194") + u16(int(ipv4.size())) + ipv4;
    for (const QByteArray &bytes : ipv6)
        packet += QByteArray::fromHex("c00c001c8001000011940010") + bytes;
    return packet + QByteArray::fromHex("c00c002f8001000011940000");
}
} // namespace

class TestDnsMessage : public QObject
{
    Q_OBJECT

private slots:
    void readsNumbers();
    void completesNames_data();
    void completesNames();
    void decodesNames_data();
    void decodesNames();
    void readsServiceTargets_data();
    void readsServiceTargets();
    void readsMetadata_data();
    void readsMetadata();
    void asks_data();
    void asks();
    void limitsTheFirstLabel();
    void understandsQuestions_data();
    void understandsQuestions();
    void answers_data();
    void answers();
    void readsHostAnswers_data();
    void readsHostAnswers();
};

void TestDnsMessage::readsNumbers()
{
    const QByteArray data = QByteArray::fromHex("fedcba98");
    QCOMPARE(mdns::readU16(data, 2), 0xBA98);
    QCOMPARE(mdns::readU16(data, 3), 0);
    QCOMPARE(mdns::readU16(data, -1), 0);
    QCOMPARE(mdns::readU32(data, 0), 0xFEDCBA98U);
    QCOMPARE(mdns::readU32(data, 1), 0U);
    QCOMPARE(mdns::readU32({}, INT_MAX), 0U);
    QCOMPARE(mdns::encodeU16(0xFEDC) + mdns::encodeU32(0xFEDCBA98), QByteArray::fromHex("fedcfedcba98"));
}

void TestDnsMessage::completesNames_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("completed");
    QTest::newRow("bare label") << "box"
                                << "box.local";
    QTest::newRow("complete") << "box.local"
                              << "box.local";
    QTest::newRow("other ending") << "box.lan"
                                  << "box.lan";
    QTest::newRow("other case") << "Box.LOCAL"
                                << "Box.LOCAL";
    QTest::newRow("dot at the end") << "box.local."
                                    << "";
    QTest::newRow("nothing") << ""
                             << ".local";
}

void TestDnsMessage::completesNames()
{
    QFETCH(QString, given);
    QTEST(mdns::normalizeName(given), "completed");
}

void TestDnsMessage::decodesNames_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QString>("decoded");
    QTest::addColumn<int>("behind");
    QTest::addColumn<QString>("warnings");
    const QByteArray local = name("x.local"); // 9 bytes, "local" at 2
    const QString none;
    QTest::newRow("plain") << local + "z" << 0 << "x.local" << 9 << none;
    QTest::newRow("root") << local << 8 << "" << 9 << none;
    QTest::newRow("wholly a pointer") << local + pointer(0) + "z" << 9 << "x.local" << 11 << none;
    QTest::newRow("no dot before a pointer")
        << local + label("y") + pointer(2) << 9 << "ylocal" << 13 << none;
    QTest::newRow("chain") << local + pointer(0) + pointer(9) + "z" << 11 << "x.local" << 13 << none;
    QTest::newRow("forward") << pointer(2) + local << 0 << "x.local" << 2 << none;
    QTest::newRow("points at itself") << label("a") + pointer(2) << 0 << "" << 4 << loop;
    QTest::newRow("loop behind text") << label("a") + pointer(0) << 0 << "" << 4 << loop;
    QTest::newRow("pointer cut") << label("abc") + "\xC0" << 0 << "" << 5 << pointerCut;
    QTest::newRow("cut behind a pointer") << pointer(3) + "zz\xC0" << 0 << "" << 5 << labelCut;
    QTest::newRow("points past the end") << label("abc") + pointer(99) << 0 << "abc" << 6 << none;
    QTest::newRow("label too long") << QByteArray("\3ab") << 0 << "" << 3 << labelCut;
    QTest::newRow("label to the end") << QByteArray("\3abc") << 0 << "abc" << 4 << none;
    QTest::newRow("long label") << label(QByteArray(191, 'a')) + '\0' << 0 << QString(191, u'a') << 193
                                << none;
    QTest::newRow("UTF-8") << label("Gerät") + label("ü") + '\0' << 0 << u"Gerät.ü"_s << 11 << none;
    QTest::newRow("character over two labels")
        << label("\xC3") + label("\xA4") + '\0' << 0 << u"\uFFFD.\uFFFD"_s << 5 << none;
    QTest::newRow("past the end") << local << 12 << "" << 12 << none;
    QTest::newRow("before the start") << local << -3 << "" << -3 << none;
    QByteArray twenty;
    for (int i = 1; i <= 20; ++i)
        twenty += pointer(2 * i);
    QTest::newRow("twenty pointers") << twenty + local << 0 << "x.local" << 2 << none;
    QTest::newRow("twenty in a circle") << twenty + pointer(4) << 0 << "" << 2 << loop;
}

void TestDnsMessage::decodesNames()
{
    QFETCH(QByteArray, data);
    QFETCH(int, offset);
    const Log log;
    QTEST(mdns::readName(data, offset), "decoded");
    QTEST(offset, "behind");
    QTEST(log.lines().join('\n'_L1), "warnings");
}

void TestDnsMessage::readsServiceTargets_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("warnings");
    const QByteArray numbers = QByteArray::fromHex("0001000221b0");
    QTest::newRow("whole") << numbers + name("box.local") << "box.local" << 8624 << "";
    QTest::newRow("root") << numbers + '\0' << "" << 8624 << "";
    QTest::newRow("no target") << numbers << "" << 0 << srvCut;
    QTest::newRow("target cut") << numbers + "\3bo"
                                << "" << 8624 << labelCut;
}

void TestDnsMessage::readsServiceTargets()
{
    QFETCH(QByteArray, data);
    const Log log;
    const mdns::SrvTarget target = mdns::readSrvData("z" + data, 1);
    QTEST(target.host, "host");
    QTEST(int(target.port), "port");
    QTEST(log.lines().join('\n'_L1), "warnings");
}

void TestDnsMessage::readsMetadata_data()
{
    QTest::addColumn<QByteArray>("record");
    QTest::addColumn<QString>("map");
    QTest::addColumn<QString>("warnings");
    const QString none;
    QTest::newRow("several") << u16(8) + label("b=2") + label("A=1") << "A=1;b=2" << none;
    QTest::newRow("nothing") << u16(0) + label("a=1") << "" << none;
    QTest::newRow("two equals signs") << u16(6) + label("a=b=c") << "a=b=c" << none;
    QTest::newRow("no key") << u16(3) + label("=v") << "=v" << none;
    QTest::newRow("no value") << u16(3) + label("ab") << "ab=" << none;
    QTest::newRow("empty string") << u16(1) + label("") << "=" << none;
    QTest::newRow("the later counts") << u16(8) + label("a=1") + label("a=2") << "a=2" << none;
    QTest::newRow("UTF-8") << u16(6) + label("ä=ö") << u"ä=ö"_s << none;
    QTest::newRow("broken UTF-8") << u16(5) + label("\xC3=\xC3z") << u"\uFFFD=\uFFFDz"_s << none;
    QTest::newRow("mark in a value") << u16(7) + label("a=\xEF\xBB\xBFx") << u"a=\uFEFFx"_s << none;
    QTest::newRow("past the record") << u16(1) + label("a=1") + label("b=2") << "a=1" << none;
    QTest::newRow("past the packet") << u16(9) + label("a=1") + "\5b=2"
                                     << "a=1" << txtCut;
    QTest::newRow("record past the packet") << u16(99) + label("a=1") << "a=1" << none;
}

void TestDnsMessage::readsMetadata()
{
    QFETCH(QByteArray, record);
    const Log log;
    QTEST(text(mdns::readTxtData(record, 2)), "map");
    QTEST(log.lines().join('\n'_L1), "warnings");
}

void TestDnsMessage::asks_data()
{
    QTest::addColumn<QByteArray>("query");
    QTest::addColumn<QByteArray>("wire");
    const QByteArray hostHead = QByteArray::fromHex("000000000002000000000000");
    const QByteArray hostTail = QByteArray::fromHex("0000010001c00c001c0001");
    const QByteArray typeHead = QByteArray::fromHex("000000000001000000000000");
    const QByteArray typeTail = QByteArray::fromHex("00000c0001");
    const auto host = [](const QString &of) { return mdns::hostQuery(mdns::hostLabels(of)); };
    QTest::newRow("host") << host(u"box.local"_s) << hostHead + "\3box\5local" + hostTail;
    QTest::newRow("host of three labels") << host(u"a.box.local"_s) << hostHead + "\1a\5local" + hostTail;
    QTest::newRow("host in UTF-8") << host(u"gärä.local"_s) << hostHead + "\4gärä\5local" + hostTail;
    QTest::newRow("long last label") << host(u"a."_s + QString(258, u'b'))
                                     << hostHead + "\1a\2" + QByteArray(258, 'b') + hostTail;
    QTest::newRow("type") << mdns::serviceQuery(u"_http._tcp.local"_s)
                          << typeHead + "\5_http\4_tcp\5local" + typeTail;
    QTest::newRow("type with empty part")
        << mdns::serviceQuery(u"_a..ü."_s) << typeHead + "\2_a" + '\0' + "\1ü" + '\0' + typeTail;
}

void TestDnsMessage::asks()
{
    QFETCH(QByteArray, query);
    QTEST(query, "wire");
}

void TestDnsMessage::limitsTheFirstLabel()
{
    QVERIFY(!mdns::hostLabels(QString(255, u'a') + ".local"_L1).isTooLong());
    QVERIFY(mdns::hostLabels(QString(256, u'a') + ".local"_L1).isTooLong());
    QVERIFY(!mdns::hostLabels(u"a."_s + QString(256, u'b')).isTooLong());
}

void TestDnsMessage::understandsQuestions_data()
{
    QTest::addColumn<QByteArray>("question");
    QTest::addColumn<QString>("host");
    QTest::newRow("two labels") << name("Box.local") + u16(1) << "Box.local";
    QTest::newRow("three labels") << name("a.box.local") << u"a.box\5local"_s;
    QTest::newRow("one label") << name("box") << "";
    QTest::newRow("second length among the letters") << QByteArray("\5aa\3bb\3com\0", 11) << "aa.com";
    QTest::newRow("no end") << QByteArray("\3box\5loc") << "box.loc";
    QTest::newRow("past the end") << QByteArray(1, 127) + "box"
                                  << "";
    QTest::newRow("high characters") << QByteArray("\1\xE4\1\xFC") << u"ä.ü"_s;
    QTest::newRow("into the header") << QByteArray("\xF2zz\xC0") << u"zzÀ.AB"_s;
    QTest::newRow("far before the packet") << QByteArray(1, -128) + name("box") << "";
}

void TestDnsMessage::understandsQuestions()
{
    QFETCH(QByteArray, question);
    QTEST(mdns::questionName(packets::header(0x4142, 0, {1, 0, 0, 0}) + question), "host");
}

void TestDnsMessage::answers_data()
{
    QTest::addColumn<QList<QHostAddress>>("addresses");
    QTest::addColumn<QByteArray>("records");
    const auto list = [](std::initializer_list<QString> texts) {
        QList<QHostAddress> addresses;
        for (const QString &each : texts)
            addresses += QHostAddress(each);
        return addresses;
    };
    const QByteArray ipv4 = "0001800100001194"
                            "0004"
                            "c0a8010a"
                            "c00c";
    const QByteArray nsec = "002f800100001194"
                            "0000";
    QTest::newRow("no address") << list({})
                                << "0001800100001194"
                                   "0004"
                                   "00000000"
                                   "c00c" +
                                       nsec;
    QTest::newRow("first IPv4 that is one")
        << list({u"127.0.0.1"_s, u"0.0.0.0"_s, u"192.168.1.10"_s, u"10.0.0.1"_s}) << ipv4 + nsec;
    QTest::newRow("every IPv6") << list({u"::1"_s, u"fd00::a"_s, u"192.168.1.10"_s, u"fe80::b%net0"_s})
                                << ipv4 +
                                       "001c800100001194"
                                       "0010"
                                       "fd00000000000000000000000000000a"
                                       "c00c"
                                       "001c800100001194"
                                       "0010"
                                       "fe80000000000000000000000000000b"
                                       "c00c" +
                                       nsec;
}

void TestDnsMessage::answers()
{
    QFETCH(QList<QHostAddress>, addresses);
    QFETCH(QByteArray, records);
    QCOMPARE(mdns::hostAnswer(0xABCD, mdns::hostLabels(u"böx.x.local"_s), 4500, addresses),
             QByteArray::fromHex("abcd80000000000100000002") + "\3böx\5local" + '\0' +
                 QByteArray::fromHex(records));
}

void TestDnsMessage::readsHostAnswers_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("ipv4");
    QTest::addColumn<QString>("ipv6");
    QTest::addColumn<QString>("addresses");
    const QByteArray ab = QByteArray::fromHex("fd000a0b0100") + QByteArray(10, '\x11');
    const QString abText = u"fd0:ab:10:1111:1111:1111:1111:1111"_s;
    const QByteArray one = QByteArray::fromHex("fd10") + QByteArray(14, '\x11');
    const QString oneText = u"fd10:1111:1111:1111:1111:1111:1111:1111"_s;
    const QString none;
    QTest::newRow("IPv4") << hostPacket(fourBytes, {}, "8001") << "box.local"
                          << "192.168.1.10" << none << "192.168.1.10";
    QTest::newRow("each IPv6 once") << hostPacket(fourBytes, {one, ab, one}, "8001") << "box.local"
                                    << "192.168.1.10" << oneText + ' '_L1 + abText
                                    << u"192.168.1.10 "_s + oneText + ' '_L1 + abText;
    QTest::newRow("other class") << hostPacket(fourBytes, {one}, "0001") << "box.local"
                                 << "" << oneText << oneText;
    QTest::newRow("odd size") << hostPacket(fourBytes + "\7", {one}, "8001") << "box.local"
                              << "192.168.1.10.7" << none << "";
    const QByteArray shortest = hostPacket(fourBytes, {}, "8001").first(9 + 27);
    QTest::newRow("shortest") << shortest << "box.local"
                              << "192.168.1.0" << none << "192.168.1.0";
    QTest::newRow("too short") << shortest.first(35) << "box.local"
                               << "" << none << "";
    QTest::newRow("three labels") << responseHeader(1) + name("a.box.local") << u"a\3box.local"_s << ""
                                  << none << "";
    QTest::newRow("letter taken for a length") << responseHeader(1) + "\2a\1b"
                                               << "a.b"
                                               << "" << none << "";
    QTest::newRow("high character") << responseHeader(1) + "\1\xE4\1b" << u"ä.b"_s << "" << none << "";
    QTest::newRow("no name") << responseHeader(1) << ""
                             << "" << none << "";
}

void TestDnsMessage::readsHostAnswers()
{
    QFETCH(QByteArray, packet);
    const QString host = mdns::hostNameFromPacket(packet);
    QTEST(host, "host");
    QTEST(mdns::ipv4FromPacket(packet, host), "ipv4");
    QTEST(mdns::ipv6FromPacket(packet, host).join(' '_L1), "ipv6");
    QStringList addresses;
    for (const QHostAddress &address : mdns::addressesFromPacket(packet, host))
        addresses += address.toString();
    QTEST(addresses.join(' '_L1), "addresses");
}

QTEST_APPLESS_MAIN(TestDnsMessage)
#include "TestDnsMessage.moc"
