// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "support/Log.h"
#include "support/Probing.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTcpServer>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;
using namespace probing;

namespace {
constexpr qint64 mebibyte = 1024LL * 1024;

/// The most memory that the process had since resetPeak(), in MiB.
qint64 peakMemory()
{
    QFile file(u"/proc/self/status"_s);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray peak = file.readAll();
    return peak.mid(peak.indexOf("VmHWM:") + 6, 20).trimmed().split(' ').first().toLongLong() / 1024;
}

bool resetPeak()
{
    QFile file(u"/proc/self/clear_refs"_s);
    return file.open(QIODevice::WriteOnly) && file.write("5") == 1;
}

/// Ticks while a test goes on, and knows the longest time that the main loop made it wait.
class Ticker : public QObject
{
public:
    Ticker()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            longestGapMs = std::max(longestGapMs, m_clock.restart());
            ++count;
        });
        m_timer.start(5);
        m_clock.start();
    }
    qint64 longestGapMs = 0;
    int count = 0;

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
};

Fault deflated(const QByteArray &body)
{
    // What Qt compresses is what HTTP calls "deflate", behind four bytes of its own.
    return {.instead =
                HttpReply{.body = qCompress(body).sliced(4), .headers = {{"Content-Encoding", "deflate"}}}};
}

/// A good answer that is so long and, being noise, stays about half as long when it is compressed.
QByteArray longAnswer(qint64 bytes)
{
    QByteArray noise(bytes / 2, Qt::Uninitialized);
    QRandomGenerator generator(1);
    generator.generate(noise.begin(), noise.end());
    return R"({"hostname":"x","noise":")" + noise.toHex() + R"("})";
}

Fault endlessHead()
{
    Fault fault = Fault::raw("HTTP/1.1 200 OK\r\nX-Fill: ");
    fault.filledBytes = -1;
    return fault;
}
} // namespace

/// Anyone on the network can answer a probe with anything. It fails, and costs neither memory nor time. The
/// device is on the subnet's address: nobody would ask a proxy for one of the loopback device.
class TestUntrustedReplies : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void survivesAnyAnswer_data();
    void survivesAnyAnswer();
    void givesUpOnATrickle();
    void asksNoProxy();

private:
    std::unique_ptr<Log> m_log;
    std::unique_ptr<DeviceDiscovery> m_discovery;
    std::unique_ptr<SimulatedDevice> m_device;
    QTcpServer m_proxy;
    int m_proxyConnections = 0;
};

void TestUntrustedReplies::initTestCase()
{
    QVERIFY(m_proxy.listen(QHostAddress(u"127.0.0.9"_s), 3128));
    connect(&m_proxy, &QTcpServer::newConnection, this, [this] { ++m_proxyConnections; });
    for (const char *name : {"http_proxy", "HTTP_PROXY", "all_proxy"})
        QVERIFY(qputenv(name, "http://127.0.0.9:3128"));
}

void TestUntrustedReplies::init()
{
    m_log = std::make_unique<Log>();
    m_discovery = std::make_unique<DeviceDiscovery>();
    m_device = std::make_unique<SimulatedDevice>(QHostAddress(u"10.77.0.1"_s));
    QVERIFY(m_device->start());
}

void TestUntrustedReplies::cleanup()
{
    m_discovery.reset();
    m_log.reset();
}

void TestUntrustedReplies::survivesAnyAnswer_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("line"); // the start of one that is logged; empty if the host is to be listed
    const QString networkError = uR"(Network error for "10.77.0.1" "hostname" : )"_s;
    const QString parseError = uR"(JSON parse error for "10.77.0.1" type: "hostname" - Error: )"_s;
    const QByteArray nested = R"({"hostname":"x","y":)" + QByteArray(mebibyte, '[');
    QTest::newRow("16 MiB") << hostname << Fault::huge(16 * mebibyte) << QString();
    QTest::newRow("a byte more") << hostname << Fault::huge(16 * mebibyte + 1) << networkError;
    QTest::newRow("100 MB") << hostname << Fault::huge(100'000'000) << networkError;
    QTest::newRow("endless") << hostname << Fault::huge(-1) << networkError;
    QTest::newRow("all endless") << anything << Fault::huge(-1) << networkError;
    QTest::newRow("endless head") << hostname << endlessHead() << networkError;
    QTest::newRow("compressed") << hostname << deflated(longAnswer(8 * mebibyte)) << QString();
    QTest::newRow("compressed and too long")
        << hostname << deflated(longAnswer(24 * mebibyte)) << networkError;
    QTest::newRow("compressed blanks")
        << hostname << deflated(QByteArray(200 * mebibyte, ' ')) << networkError;
    QTest::newRow("redirect loop") << hostname << Fault::redirect("/api/info/hostname") << networkError;
    QTest::newRow("redirect to a file")
        << hostname << Fault::redirect("file:///etc/hostname") << networkError;
    QTest::newRow("not UTF-8") << hostname << Fault::body("{\"hostname\":\"\xC0\xAF\xFF\"}") << parseError;
    QTest::newRow("nested deeply") << hostname << Fault::body(nested) << parseError;
}

void TestUntrustedReplies::survivesAnyAnswer()
{
    QFETCH(const QByteArray, path);
    QFETCH(const Fault, fault);
    QFETCH(const QString, line);
    m_device->setFault(path, fault);
    const Ticker ticker;
    QVERIFY(resetPeak());
    const qint64 before = peakMemory();
    QVERIFY(before > 0);
    // Nothing has to wait for the time limit, but for a head: of that one sees nothing before it is whole.
    const int limitMs = QTest::currentDataTag() == QByteArray("endless head") ? 15000 : 8000;
    m_discovery->addManualDevice(m_device->address());
    QVERIFY(settle(*m_discovery, 0, limitMs));
    QCOMPARE(m_discovery->deviceCount(), line.isEmpty() ? 1 : 0);
    QCOMPARE(m_log->starting(line.isEmpty() ? u"Network error"_s : line).size(), line.isEmpty() ? 0 : 1);
    QVERIFY2(peakMemory() - before < 300, qPrintable(u"%1 MiB"_s.arg(peakMemory() - before)));
    QVERIFY2(ticker.longestGapMs < 1000, qPrintable(u"%1 ms"_s.arg(ticker.longestGapMs)));
}

void TestUntrustedReplies::givesUpOnATrickle()
{
    m_device->setFault(hostname, Fault::trickle(1000));
    const Ticker ticker;
    QElapsedTimer clock;
    clock.start();
    m_discovery->addManualDevice(m_device->address());
    QVERIFY(settle(*m_discovery, 0, 20000));
    QCOMPARE(timing(clock.elapsed(), 10000), u"about 10000 ms"_s);
    QCOMPARE(m_log->starting(uR"(Network error for "10.77.0.1" "hostname" : )"_s).size(), 1);
    QCOMPARE(m_discovery->deviceCount(), 0);
    QVERIFY(ticker.count > 500);
    QVERIFY(ticker.longestGapMs < 1000);
}

void TestUntrustedReplies::asksNoProxy()
{
    QVERIFY(admit(*m_discovery, *m_device));
    m_device->setFault(hostname, Fault::redirect("http://10.77.0.1:3000/elsewhere"));
    m_discovery->queryDeviceStatus(m_device->address());
    QVERIFY(settle(*m_discovery));
    QCOMPARE(m_device->requestCount("/elsewhere"), 1);
    QCOMPARE(m_proxyConnections, 0);
}

QTEST_GUILESS_MAIN(TestUntrustedReplies)
#include "TestUntrustedReplies.moc"
