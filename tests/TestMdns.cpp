// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "mdns/ThreadHandOver.h"
#include "mdns/qMDNS.h"
#include "support/Log.h"
#include "support/Packets.h"

#include <QCoreApplication>
#include <QNetworkProxy>
#include <QProcess>
#include <QSemaphore>
#include <QTest>
#include <QThreadPool>
#include <QTimer>
#include <QUdpSocket>

#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using packets::header;
using packets::name;
using packets::u16;

namespace {
constexpr quint16 port = 5353;
const QString boxLine = u"_http._tcp.local|Box_http._tcp.local|boxlocal|10.77.0.5|8624|device;noctaris"_s;

QByteArray boxPacket(const QByteArray &instance = "Box")
{
    return packets::serviceResponse(instance, "box", 8624, {"device=noctaris"}, QHostAddress(u"10.77.0.5"_s));
}

QByteArray hostQuestion(int id, const QByteArray &host, int type = 1)
{
    return header(id, 0, {1, 0, 0, 0}) + name(host) + u16(type) + u16(1);
}

/// A member of one group, which sees what every other member sees, and speaks to it.
class Member : public QUdpSocket
{
public:
    Member(QHostAddress::SpecialAddress any, const QString &group) : m_group(group)
    {
        setProxy(QNetworkProxy::NoProxy);
        m_joined = bind(any, port, ShareAddress | ReuseAddressHint) && joinMulticastGroup(m_group);
        connect(this, &QUdpSocket::readyRead, this, [this] {
            while (hasPendingDatagrams())
            {
                heard.append(QByteArray(pendingDatagramSize(), '\0'));
                readDatagram(heard.last().data(), heard.last().size());
            }
        });
    }

    bool hasJoined() const { return m_joined; }
    void say(const QByteArray &datagram) { writeDatagram(datagram, m_group, port); }

    QList<QByteArray> heard;

private:
    QHostAddress m_group;
    bool m_joined = false;
};
/// Lives on a thread, and makes calls there.
class Visitor : public QObject
{
public:
    explicit Visitor(QThread *thread) { moveToThread(thread); }

    /// Returns when the call is over.
    void call(const std::function<void()> &call)
    {
        QSemaphore done;
        handover::post(this, [&] {
            call();
            handover::give(&done);
            done.release();
        });
        done.acquire();
        handover::take(&done);
    }

    bool event(QEvent *event) override { return handover::run(event) || QObject::event(event); }
};
} // namespace

/// Runs in a private network with an interface of its own, see support/prepare-multicast.
class TestMdns : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_visitor->deleteLater(); }
    void init();
    void cleanup() { m_log.reset(); }
    void answersNothingWithoutAName();
    void asksOnBothGroups();
    void refusesWhatItCannotAsk();
    void leavesForeignNamesToTheResolver();
    void reportsServices();
    void readsOnlyResponses();
    void readsTheLastOfABurst();
    void answersForItsName();
    void answersForNoOtherName();
    void findsItsOwnHost();
    void findsForeignResponders();
    void endsQuietly();

private:
    void say(const QByteArray &datagram);
    /// All other members have read what was said so far.
    void settle();

    qMDNS *m_mdns = nullptr;
    Visitor *m_visitor = nullptr;
    std::optional<Log> m_log;
    Member m_ipv4{QHostAddress::AnyIPv4, u"224.0.0.251"_s};
    Member m_ipv6{QHostAddress::AnyIPv6, u"FF02::FB"_s};
    QStringList m_found;
    QStringList m_hosts;
};

void TestMdns::initTestCase()
{
    QVERIFY(m_ipv4.hasJoined() && m_ipv6.hasJoined());
    qMDNS::setVerboseLogging(true);
    // The program makes the object on a thread of the pool, which has no event loop and soon ends.
    QThreadPool::globalInstance()->start([] { qMDNS::getInstance(); });
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    m_mdns = qMDNS::getInstance();
    m_visitor = new Visitor(m_mdns->thread());
    connect(m_mdns, &qMDNS::serviceFound, this,
            [this](const QString &type, const QString &name, const QString &host, const QHostAddress &address,
                   ushort servicePort, const QMap<QString, QString> &txt) {
                m_found += u"%1|%2|%3|%4|%5|%6"_s.arg(type, name, host, address.toString())
                               .arg(servicePort)
                               .arg(QStringList(txt.keys() + txt.values()).join(u';'));
                QCOMPARE(QThread::currentThread(), thread());
            });
    connect(m_mdns, &qMDNS::hostFound, this, [this](const QHostInfo &info) {
        QString line = info.hostName();
        for (const QHostAddress &address : info.addresses())
            line += ' '_L1 + address.toString();
        m_hosts += line;
    });
}

void TestMdns::init()
{
    m_log.emplace();
    QCoreApplication::processEvents();
    m_ipv4.heard.clear();
    m_ipv6.heard.clear();
    m_mdns->lookupService(u"_http._tcp.local"_s);
    QTRY_COMPARE(m_ipv4.heard.size(), 1);
    QTRY_COMPARE(m_ipv6.heard.size(), 1);
    settle();
    m_ipv4.heard.clear();
    m_ipv6.heard.clear();
    m_found.clear();
    m_hosts.clear();
    m_log->clear();
}

void TestMdns::say(const QByteArray &datagram)
{
    const qsizetype count = m_ipv4.heard.count(datagram);
    m_ipv4.say(datagram);
    QTRY_COMPARE(m_ipv4.heard.count(datagram), count + 1);
    settle();
}

void TestMdns::settle()
{
    const auto isIdle = [this] {
        bool pending = false;
        m_visitor->call([&] {
            for (const QUdpSocket *socket : m_mdns->findChildren<QUdpSocket *>())
                pending = pending || socket->hasPendingDatagrams();
        });
        return !pending;
    };
    QTRY_VERIFY(isIdle());
}

void TestMdns::answersNothingWithoutAName()
{
    say(hostQuestion(1, "."));
    say(hostQuestion(2, ".local"));
    say(boxPacket());
    QTRY_COMPARE(m_found, QStringList{boxLine});
    QCOMPARE(m_ipv4.heard.size(), 3);
}

void TestMdns::asksOnBothGroups()
{
    m_mdns->lookupService(u"_ipp._tcp"_s);
    m_mdns->lookup(u"box"_s);
    m_mdns->lookup(u"a.b.LOCAL"_s);
    const QByteArray addresses = QByteArray::fromHex("0000010001c00c001c0001");
    const QList<QByteArray> questions{
        header(0, 0, {1, 0, 0, 0}) + "\4_ipp\4_tcp" + QByteArray::fromHex("00000c0001"),
        header(0, 0, {2, 0, 0, 0}) + "\3box\5local" + addresses,
        header(0, 0, {2, 0, 0, 0}) + "\1a\5LOCAL" + addresses,
    };
    QTRY_COMPARE(m_ipv4.heard, questions);
    QTRY_COMPARE(m_ipv6.heard, questions);
    QCOMPARE(m_log->lines(), QStringList({
                                 u"Starting mDNS service lookup for type: \"_ipp._tcp\""_s,
                                 u"Starting mDNS lookup for service \"box\""_s,
                                 u"Starting mDNS lookup for service \"a.b.LOCAL\""_s,
                             }));
}

void TestMdns::refusesWhatItCannotAsk()
{
    // What cannot even be stored leaves the last lookup as it was, and responses are still read by it.
    m_mdns->lookupService({});
    m_mdns->lookup({});
    say(boxPacket());
    QTRY_COMPARE(m_found, QStringList{boxLine});
    const QString tooLong(256, u'a');
    m_mdns->lookup(tooLong);
    say(boxPacket("Other"));
    m_mdns->lookup(u"box.local."_s);
    say(boxPacket());
    QCoreApplication::processEvents();
    QCOMPARE(m_found, QStringList{boxLine});
    QCOMPARE(m_ipv4.heard, QList<QByteArray>({boxPacket(), boxPacket("Other"), boxPacket()}));
    QCOMPARE(m_log->starting(u"warning: "_s),
             QStringList({u"warning: void qMDNS::lookupService(QString) Empty service type specified"_s,
                          u"warning: void qMDNS::lookup(QString) Empty host name specified"_s,
                          u"warning: void qMDNS::lookup(QString) \"%1\" is too long!"_s.arg(tooLong)}));
}

void TestMdns::leavesForeignNamesToTheResolver()
{
    m_mdns->lookup(u"127.0.0.2"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_hosts, QStringList{u"127.0.0.2 127.0.0.2"_s}, 20000);
    QCOMPARE(m_ipv4.heard.size(), 0);
}

void TestMdns::reportsServices()
{
    const QByteArray packet = boxPacket();
    say(packet);
    QTRY_COMPARE(m_found, QStringList{boxLine});
    QCOMPARE(m_log->lines().first(),
             u"mDNS response data: \""_s + QString::fromLatin1(packet.toHex()) + '"'_L1);
    QCOMPARE(
        m_log->lines().last(),
        u"Found mDNS service: \"Box_http._tcp.local\" on host: \"boxlocal\" IP: \"10.77.0.5\" Port: 8624 TXT records: QMap((\"device\", \"noctaris\"))"_s);
    // Datagrams never combine: the first has no address, and the second is nothing but one.
    say(packet.chopped(16));
    say(packets::responseHeader(1) + name("boxlocal") + packet.last(14));
    m_ipv6.say(packet);
    QTRY_COMPARE(m_found, QStringList({boxLine, boxLine}));
}

void TestMdns::readsOnlyResponses()
{
    const auto isRead = [this](const QByteArray &datagram) {
        m_log->clear();
        say(datagram);
        return !m_log->starting(u"mDNS response data: "_s).isEmpty();
    };
    const auto flagged = [](int flags) { return boxPacket().replace(2, 2, u16(flags)); };
    QVERIFY(!isRead(flagged(0)));
    QVERIFY(!isRead(flagged(0x7FFF)));
    QVERIFY(isRead(flagged(0x8000)));
    QVERIFY(isRead(flagged(0xFFFF)));
    QVERIFY(!isRead({}));
    QVERIFY(!isRead(boxPacket().first(13)));
    QVERIFY(isRead(boxPacket().first(14)));
}

void TestMdns::readsTheLastOfABurst()
{
    // The object's thread is held up while three datagrams arrive.
    QSemaphore go;
    handover::post(m_visitor, [&go] { go.acquire(); });
    for (const char *instance : {"First", "Second", "Box"})
        m_ipv4.say(boxPacket(instance));
    QTRY_COMPARE(m_ipv4.heard.size(), 3);
    go.release();
    settle();
    say(boxPacket("Later"));
    QTRY_COMPARE(m_found, QStringList({boxLine, QString(boxLine).replace("Box"_L1, "Later"_L1)}));
}

void TestMdns::answersForItsName()
{
    const struct
    {
        QString hostName;
        QByteArray question;
        int ttl;
        QByteArray labels;
    } rows[] = {
        {u"mybox"_s, hostQuestion(7, "mybox.local"), 4500, "\5mybox\5local"},
        {u"MyBox.local"_s, hostQuestion(0xFEDC, "myBOX.LOCAL", 255), 1, "\5MyBox\5local"},
        {u"mybox"_s, hostQuestion(7, "mybox2.local"), 1, {}},
        {u"a.mybox.local"_s, hostQuestion(7, "a.mybox.local"), 1, {}},
        {{}, hostQuestion(7, ".local"), 1, QByteArray("\0\5local", 7)},
        {u"mybox"_s, hostQuestion(7, "mybox.local").replace(12, 1, "\x80"), 1, {}},
    };
    QList<QByteArray> questions;
    QList<QByteArray> answers;
    for (const auto &[hostName, question, ttl, labels] : rows)
    {
        m_mdns->setHostName(hostName);
        m_mdns->setTTL(uint(ttl));
        const QByteArray flush = u16(0x8001) + u16(0) + u16(ttl);
        questions += question;
        if (!labels.isEmpty())
            answers += question.first(2) + QByteArray::fromHex("80000000000100000002") + labels + '\0' +
                       u16(1) + flush + QByteArray::fromHex("00040a4d0009c00c") + u16(28) + flush +
                       QByteArray::fromHex("0010fe800000000000000000000000000009c00c") + u16(47) + flush +
                       u16(0);
        say(question);
        QTRY_COMPARE(m_ipv6.heard, answers);
        QTRY_COMPARE(m_ipv4.heard.size(), questions.size() + answers.size());
    }
    for (const QByteArray &answer : answers)
        QVERIFY(m_ipv4.heard.contains(answer));
    m_mdns->setHostName(u"nobody"_s);
}

void TestMdns::answersForNoOtherName()
{
    m_mdns->setHostName(u"kept"_s);
    for (const QString &refused : {u"kept.lan"_s, u"kept.local."_s, u"kept.LOCAL"_s})
        m_mdns->setHostName(refused);
    say(hostQuestion(7, "kept.local"));
    QTRY_COMPARE(m_ipv4.heard.size(), 2);
    QCOMPARE(m_log->count(u"warning: Invalid domain name"_s), 3);

    // A length byte that leads back into the header is what it takes to ask for too long a label.
    const QString tooLong(256, u'a');
    m_mdns->setHostName(tooLong);
    say(QByteArray(4, '\0') + "local" + QByteArray(3, '\0') + "\xF6" + tooLong.toLatin1() + '\0');
    const QString warning = u"warning: void qMDNS::sendResponse(ushort) \"%1\" is too long!"_s.arg(tooLong);
    QCOMPARE(m_log->count(warning), 1);
    QCOMPARE(m_ipv4.heard.size(), 3);
}

void TestMdns::findsItsOwnHost()
{
    m_mdns->setHostName(u"mybox"_s);
    m_mdns->lookup(u"mybox"_s);
    QTRY_VERIFY(m_hosts.contains(u"mybox.local 10.77.0.9 fe80::9"_s));
    settle();
    // A lookup of the other kind takes the place of this one: the same answer means nothing now.
    m_mdns->lookupService(u"_http._tcp.local"_s);
    QTRY_VERIFY(m_ipv6.heard.size() > 1);
    settle();
    QCoreApplication::processEvents();
    m_hosts.clear();
    say(hostQuestion(7, "mybox.local"));
    say(boxPacket());
    QTRY_COMPARE(m_found, QStringList{boxLine});
    QCOMPARE(m_hosts, QStringList());
}

void TestMdns::findsForeignResponders()
{
    const struct
    {
        QString probe;
        QString command;
        QString names;
    } rows[] = {
        {u"PATH=$PATH:/usr/sbin command -v avahi-daemon"_s, u"/announce-with-avahi test0"_s,
         u"Avahi Box_http._tcp.local|avahiboxlocal"_s},
        {u"/usr/bin/python3 -c 'import zeroconf'"_s, u"/announce-with-zeroconf 10.77.0.9"_s,
         u"Python Box_http._tcp.local|pyboxlocal"_s},
    };
    for (const auto &[probe, command, names] : rows)
    {
        QVERIFY2(QProcess::execute(u"sh"_s, {u"-c"_s, probe + u" >/dev/null"_s}) == 0, qPrintable(probe));
        const QString found =
            u"_http._tcp.local|%1|10.77.0.9|8624|device;version;noctaris;1.9.0"_s.arg(names);
        QProcess responder;
        responder.setProcessChannelMode(QProcess::MergedChannels);
        responder.start(u"sh"_s,
                        {u"-c"_s, u"exec "_s + QStringLiteral(NOCTARIS_TEST_SUPPORT_FOLDER) + command});
        QVERIFY(responder.waitForStarted());
        // Asked again and again until the responder is up, as a user would press the button.
        const auto isFound = [&, expected = found] { return m_found.contains(expected); };
        for (int i = 0; i < 15 && !QTest::qWaitFor(isFound, 1000); ++i)
            m_mdns->lookupService(u"_http._tcp.local"_s);
        responder.terminate();
        QVERIFY(responder.waitForFinished());
        QVERIFY2(m_found.contains(found), responder.readAll() + "\nfound: " + m_found.join('\n'_L1).toUtf8());
    }
}

void TestMdns::endsQuietly()
{
    for (const auto *way :
         {"after its loop", "without a loop", "by exit", "while being made", "and goes on", "unbound"})
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        // The last of them takes the port, in a network of its own.
        const QString network = qstrcmp(way, "unbound") == 0 ? u"--net"_s : u"--fork"_s;
        process.start(u"unshare"_s, {network, QCoreApplication::applicationFilePath(), u"--end"_s,
                                     QString::fromLatin1(way)});
        QVERIFY2(process.waitForFinished(30000), way);
        QCOMPARE(process.readAll(), QByteArray());
        QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0, way);
    }
}

namespace {
bool isBound()
{
    bool bound = false;
    for (const QUdpSocket *socket : qMDNS::getInstance()->findChildren<QUdpSocket *>())
        bound = bound || socket->localPort() != 0;
    return bound;
}

/// A socket that cannot have the port stays without one, also when something is to be sent.
int useWithoutPort()
{
    QUdpSocket holder;
    holder.setProxy(QNetworkProxy::NoProxy);
    if (!holder.bind(QHostAddress::Any, port, QAbstractSocket::DontShareAddress))
        return 2;
    qMDNS::getInstance()->lookupService(u"_end._tcp.local"_s);
    bool wasBound = false;
    auto *visitor = new Visitor(qMDNS::getInstance()->thread());
    visitor->call([&] {
        wasBound = isBound();
        delete visitor;
    });
    return wasBound ? 3 : 0;
}

/// Ends a process that uses the object, in one of the ways a program may.
int end(const QByteArray &way, int argc, char **argv)
{
    auto application = std::make_unique<QCoreApplication>(argc, argv);
    if (way == "unbound")
        return useWithoutPort();
    const bool isLate = way == "while being made";
    QThreadPool::globalInstance()->start([isLate] {
        QThread::msleep(isLate ? 200 : 0);
        qMDNS::getInstance()->lookupService(u"_end._tcp.local"_s);
    });
    if (isLate)
        return 0;
    QThreadPool::globalInstance()->waitForDone();
    if (way == "after its loop")
    {
        QTimer::singleShot(100, application.get(), &QCoreApplication::quit);
        return QCoreApplication::exec();
    }
    if (way == "by exit")
        std::exit(0);
    if (way == "and goes on")
    {
        // Nothing is served any more, and nothing is touched.
        application.reset();
        qMDNS::getInstance()->lookupService(u"_end._tcp.local"_s);
        return isBound() ? 4 : 0;
    }
    return 0;
}
} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--end") == 0)
        return end(argv[2], argc, argv);
    QCoreApplication application(argc, argv);
    if (QProcess::execute(QStringLiteral(NOCTARIS_TEST_SUPPORT_FOLDER "/prepare-multicast")) != 0)
        return 1;
    TestMdns test;
    return QTest::qExec(&test, argc, argv);
}
#include "TestMdns.moc"
