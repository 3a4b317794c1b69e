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
const QString loop = u"warning: Malformed mDNS packet: Compression loop detected"_s;
const QString pointerCut = u"warning: Malformed mDNS packet: Compression pointer out of bounds"_s;
const QString labelCut = u"warning: Malformed mDNS packet: Label length exceeds packet size"_s;
const QString srvCut = u"warning: Malformed SRV record: Not enough data for priority, weight, port"_s;
const QString txtCut = u"warning: Malformed TXT record: Length exceeds packet size"_s;

/// A name and the offset behind it. Like the next two, with a line for each warning.
QString decoded(const QByteArray &data, int offset = 0)
{
    const Log log;
    const QString text = mdns::readName(data, offset);
    return (QStringList{text + ' '_L1 + QString::number(offset)} + log.lines()).join(u'\n');
}

QString serviceTarget(const QByteArray &data)
{
    const Log log;
    const mdns::SrvTarget target = mdns::readSrvData("z" + data, 1);
    return (QStringList{target.host + ' '_L1 + QString::number(target.port)} + log.lines()).join(u'\n');
}

QString metadata(int length, const QByteArray &strings)
{
    const Log log;
    QStringList entries;
    const QMap<QString, QString> map = mdns::readTxtData(u16(length) + strings, 2);
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        entries += entry.key() + '='_L1 + entry.value();
    return (QStringList{entries.join(';'_L1)} + log.lines()).join(u'\n');
}

QString asked(const QByteArray &question)
{
    return mdns::questionName(packets::header(0x4142, 0, {1, 0, 0, 0}) + question);
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

/// The host's name, the text of its IPv4 address and those of its IPv6 addresses, then the usable addresses.
QStringList hostAnswer(const QByteArray &packet)
{
    const QString host = mdns::hostNameFromPacket(packet);
    QStringList addresses;
    for (const QHostAddress &address : mdns::addressesFromPacket(packet, host))
        addresses += address.toString();
    return {host, mdns::ipv4FromPacket(packet, host), mdns::ipv6FromPacket(packet, host).join(' '_L1),
            addresses.join(' '_L1)};
}
} // namespace

class TestDnsMessage : public QObject
{
    Q_OBJECT

private slots:
    void readsNumbers();
    void completesNames();
    void decodesNames();
    void readsServiceTargets();
    void readsMetadata();
    void asks();
    void understandsQuestions();
    void answers();
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
}

void TestDnsMessage::completesNames()
{
    QCOMPARE(mdns::normalizeName(u"box"_s), u"box.local"_s);
    QCOMPARE(mdns::normalizeName(u"box.lan"_s), u"box.lan"_s);
    QCOMPARE(mdns::normalizeName(u"box.local."_s), QString());
    QCOMPARE(mdns::normalizeName({}), u".local"_s);
}

void TestDnsMessage::decodesNames()
{
    const QByteArray local = name("x.local"); // 9 bytes, "local" at 2
    QCOMPARE(decoded(local, 8), u" 9"_s);
    QCOMPARE(decoded(local + pointer(0) + pointer(9) + "z", 11), u"x.local 13"_s);
    QCOMPARE(decoded(pointer(2) + local), u"x.local 2"_s);
    // No dot before a pointer
    QCOMPARE(decoded(local + label("y") + pointer(2), 9), u"ylocal 13"_s);

    QCOMPARE(decoded(label("a") + pointer(2)), u" 4\n"_s + loop);
    QCOMPARE(decoded(label("a") + pointer(0)), u" 4\n"_s + loop);
    QByteArray twenty;
    for (int i = 1; i <= 20; ++i)
        twenty += pointer(2 * i);
    QCOMPARE(decoded(twenty + local), u"x.local 2"_s);
    QCOMPARE(decoded(twenty + pointer(4)), u" 2\n"_s + loop);

    QCOMPARE(decoded(label("abc") + "\xC0"), u" 5\n"_s + pointerCut);
    QCOMPARE(decoded(pointer(3) + "zz\xC0"), u" 5\n"_s + labelCut);
    QCOMPARE(decoded(label("abc") + pointer(99)), u"abc 6"_s);
    QCOMPARE(decoded("\3ab"), u" 3\n"_s + labelCut);
    QCOMPARE(decoded("\3abc"), u"abc 4"_s);
    QCOMPARE(decoded(local, 12), u" 12"_s);
    QCOMPARE(decoded(local, -3), u" -3"_s);

    QCOMPARE(decoded(label(QByteArray(191, 'a')) + '\0'), QString(191, u'a') + " 193"_L1);
    QCOMPARE(decoded(label("Gerät") + label("\xC3") + label("\xA4") + '\0'), u"Gerät.\uFFFD.\uFFFD 12"_s);
}

void TestDnsMessage::readsServiceTargets()
{
    const QByteArray numbers = QByteArray::fromHex("0001000221b0");
    QCOMPARE(serviceTarget(numbers + name("box.local")), u"box.local 8624"_s);
    QCOMPARE(serviceTarget(numbers + '\0'), u" 8624"_s);
    QCOMPARE(serviceTarget(numbers), u" 0\n"_s + srvCut);
    QCOMPARE(serviceTarget(numbers + "\3bo"), u" 8624\n"_s + labelCut);
}

void TestDnsMessage::readsMetadata()
{
    QCOMPARE(metadata(12, label("b=2") + label("a=1") + label("a=2")), u"a=2;b=2"_s);
    QCOMPARE(metadata(0, label("a=1")), QString());
    QCOMPARE(metadata(6, label("a=b=c")), u"a=b=c"_s);
    QCOMPARE(metadata(3, label("=v")), u"=v"_s);
    QCOMPARE(metadata(3, label("ab")), u"ab="_s);
    QCOMPARE(metadata(1, label("")), u"="_s);
    QCOMPARE(metadata(8, label("ä=ö\xC3z")), u"ä=ö\uFFFDz"_s);
    QCOMPARE(metadata(7, label("a=\xEF\xBB\xBFx")), u"a=\uFEFFx"_s);
    // Past the record, and past the packet
    QCOMPARE(metadata(1, label("a=1") + label("b=2")), u"a=1"_s);
    QCOMPARE(metadata(9, label("a=1") + "\5b=2"), u"a=1\n"_s + txtCut);
    QCOMPARE(metadata(99, label("a=1")), u"a=1"_s);
}

void TestDnsMessage::asks()
{
    const auto host = [](const QString &of) { return mdns::hostQuery(mdns::hostLabels(of)); };
    const QByteArray head = QByteArray::fromHex("000000000002000000000000");
    const QByteArray tail = QByteArray::fromHex("0000010001c00c001c0001");
    QCOMPARE(host(u"gärä.box.local"_s), head + "\4gärä\5local" + tail);
    QCOMPARE(host(u"a."_s + QString(258, u'b')), head + "\1a\2" + QByteArray(258, 'b') + tail);
    QCOMPARE(mdns::serviceQuery(u"_a..ü."_s), QByteArray::fromHex("000000000001000000000000") + "\2_a" +
                                                  '\0' + "\1ü" + '\0' + QByteArray::fromHex("00000c0001"));
    // Only the first label has a limit.
    QVERIFY(!mdns::hostLabels(QString(255, u'a') + ".local"_L1).isTooLong());
    QVERIFY(mdns::hostLabels(QString(256, u'a') + ".local"_L1).isTooLong());
    QVERIFY(!mdns::hostLabels(u"a."_s + QString(256, u'b')).isTooLong());
}

void TestDnsMessage::understandsQuestions()
{
    QCOMPARE(asked(name("Box.local") + u16(1)), u"Box.local"_s);
    QCOMPARE(asked(name("a.box.local")), u"a.box\5local"_s);
    QCOMPARE(asked(name("box")), QString());
    QCOMPARE(asked(QByteArray("\5aa\3bb\3com\0", 11)), u"aa.com"_s);
    QCOMPARE(asked("\3box\5loc"), u"box.loc"_s);
    QCOMPARE(asked("\1\xE4\1\xFC"), u"ä.ü"_s);
    // Lengths that lead past the end, back into the header and before the packet
    QCOMPARE(asked(QByteArray(1, 127) + "box"), QString());
    QCOMPARE(asked("\xF2zz\xC0"), u"zzÀ.AB"_s);
    QCOMPARE(asked(QByteArray(1, -128) + name("box")), QString());
}

void TestDnsMessage::answers()
{
    const auto answer = [](const QStringList &texts) {
        QList<QHostAddress> addresses;
        for (const QString &text : texts)
            addresses += QHostAddress(text);
        return mdns::hostAnswer(0xABCD, mdns::hostLabels(u"böx.x.local"_s), 4500, addresses).toHex();
    };
    const QByteArray head =
        QByteArray("abcd80000000000100000002") + QByteArray("\3böx\5local").toHex() + "00";
    const QByteArray ipv4 = "0001800100001194"
                            "0004"
                            "c0a8010a"
                            "c00c";
    const QByteArray ipv6 = "001c800100001194"
                            "0010"
                            "fd00000000000000000000000000000a"
                            "c00c";
    const QByteArray nsec = "002f800100001194"
                            "0000";
    QCOMPARE(answer({}), head + QByteArray(ipv4).replace("c0a8010a", "00000000") + nsec);
    // The first IPv4 address that is one, and every IPv6 address
    QCOMPARE(answer({u"::1"_s, u"127.0.0.1"_s, u"fd00::a"_s, u"0.0.0.0"_s, u"192.168.1.10"_s, u"10.0.0.1"_s,
                     u"fe80::b%net0"_s}),
             head + ipv4 + ipv6 + QByteArray(ipv6).replace("fd00", "fe80").replace("0ac00c", "0bc00c") +
                 nsec);
}

void TestDnsMessage::readsHostAnswers()
{
    const QByteArray four = QByteArray::fromHex("c0a8010a");
    const QString ipv4 = u"192.168.1.10"_s;
    const QByteArray ab = QByteArray::fromHex("fd000a0b0100") + QByteArray(10, '\x11');
    const QByteArray one = QByteArray::fromHex("fd10") + QByteArray(14, '\x11');
    const QString oneText = u"fd10:1111:1111:1111:1111:1111:1111:1111"_s;
    const QString both = oneText + u" fd0:ab:10:1111:1111:1111:1111:1111"_s;
    const QString none;
    QCOMPARE(hostAnswer(hostPacket(four, {one, ab, one}, "8001")),
             QStringList({u"box.local"_s, ipv4, both, ipv4 + ' '_L1 + both}));
    QCOMPARE(hostAnswer(hostPacket(four, {one}, "0001")),
             QStringList({u"box.local"_s, none, oneText, oneText}));
    QCOMPARE(hostAnswer(hostPacket(four + "\7", {one}, "8001")),
             QStringList({u"box.local"_s, ipv4 + ".7"_L1, none, none}));
    const QByteArray shortest = hostPacket(four, {}, "8001").first(9 + 27);
    const QString cut = u"192.168.1.0"_s;
    QCOMPARE(hostAnswer(shortest), QStringList({u"box.local"_s, cut, none, cut}));
    QCOMPARE(hostAnswer(shortest.chopped(1)), QStringList({u"box.local"_s, none, none, none}));

    const auto host = [](const QByteArray &data) {
        return mdns::hostNameFromPacket(responseHeader(1) + data);
    };
    QCOMPARE(host(name("a.box.local")), u"a\3box.local"_s);
    QCOMPARE(host("\2a\1b"), u"a.b"_s);
    QCOMPARE(host("\1\xE4\1b"), u"ä.b"_s);
    QCOMPARE(host({}), QString());
}

QTEST_APPLESS_MAIN(TestDnsMessage)
#include "TestDnsMessage.moc"
