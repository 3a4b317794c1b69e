// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/SimulatedDevice.h"

#include <QTcpSocket>
#include <QTest>

using namespace Qt::StringLiterals;

/// What the faults of a pretend device look like on the wire: other tests rely on them.
class TestSimulator : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_device.stop(); }
    void faults_data();
    void faults();
    void hugeBodyArrivesWhole();
    void heldRequestsAreAnsweredInTheOrderOfTheTest();
    void requestsOfOneConnectionKeepTheirOrder();
    void faultsFitKeysAndCounts();
    void requestsAreRecorded();
    void stopResetsConnections();

private:
    /// A connection that has sent these bytes.
    std::unique_ptr<QTcpSocket> send(const QByteArray &bytes) const;
    /// All that the device says to a GET until it closes the connection.
    QByteArray get(const QByteArray &path) const;

    SimulatedDevice m_device{QHostAddress(u"127.0.0.2"_s)};
};

std::unique_ptr<QTcpSocket> TestSimulator::send(const QByteArray &bytes) const
{
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(m_device.address(), SimulatedDevice::apiPort);
    socket->write(bytes);
    return socket;
}

QByteArray TestSimulator::get(const QByteArray &path) const
{
    const auto socket = send("GET " + path + " HTTP/1.1\r\nConnection: close\r\n\r\n");
    const bool isClosed =
        QTest::qWaitFor([&socket] { return socket->state() == QTcpSocket::UnconnectedState; });
    return isClosed ? socket->readAll() : "still open";
}

void TestSimulator::init()
{
    m_device.clearFaults();
    m_device.clearRequests();
    m_device.state().version = u"2.3.1"_s;
    QVERIFY2(m_device.start(), qPrintable(m_device.errorString()));
}

void TestSimulator::faults_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QByteArray>("bytes");

    const QByteArray json = "Content-Type: application/json\r\n";
    const QByteArray end = "Connection: close\r\n\r\n";
    const QByteArray proper =
        "HTTP/1.1 200 OK\r\n" + json + "Content-Length: 19\r\n" + end + R"({"version":"2.3.1"})";
    QTest::newRow("none") << Fault() << proper;
    QTest::newRow("late") << Fault::delay(20) << proper;
    QTest::newRow("trickle") << Fault::trickle(1) << proper;
    QTest::newRow("partial") << Fault::partial() << proper.chopped(10);
    QTest::newRow("status keeps the body")
        << Fault::status(500) << QByteArray(proper).replace("200 OK", "500 Internal Server Error");
    QTest::newRow("another body") << Fault::body("[]")
                                  << "HTTP/1.1 200 OK\r\n" + json + "Content-Length: 2\r\n" + end + "[]";
    QTest::newRow("redirect") << Fault::redirect("/there")
                              << "HTTP/1.1 302 Found\r\nLocation: /there\r\nContent-Length: 0\r\n" + end;
    QTest::newRow("raw bytes") << Fault::raw("hello") << QByteArray("hello");
    QTest::newRow("drop") << Fault::drop() << QByteArray();
    QTest::newRow("from text") << Fault::fromText(u"body:a:b"_s).value_or(Fault())
                               << "HTTP/1.1 200 OK\r\n" + json + "Content-Length: 3\r\n" + end + "a:b";
}

void TestSimulator::faults()
{
    QFETCH(const Fault, fault);
    m_device.setFault("/api/info/version", fault);
    QTEST(get("/api/info/version"), "bytes");
}

void TestSimulator::hugeBodyArrivesWhole()
{
    constexpr int size = 3'000'000;
    m_device.setFault("/api/info/version", Fault::huge(size));
    const QByteArray answer = get("/api/info/version");
    QVERIFY(answer.contains("\r\nContent-Length: 3000000\r\n"));
    QCOMPARE(answer.size() - answer.indexOf("\r\n\r\n") - 4, size);
}

void TestSimulator::heldRequestsAreAnsweredInTheOrderOfTheTest()
{
    m_device.hold("/api/info/version");
    const QByteArray request = "GET /api/info/version HTTP/1.1\r\n\r\n";
    const auto first = send(request);
    QTRY_COMPARE(m_device.heldCount(), 1);
    const auto second = send(request);
    QTRY_COMPARE(m_device.heldCount("/api/info/version"), 2);
    QVERIFY(m_device.releaseOne("/api/info/version", Fault::body("early")));
    QTRY_VERIFY(first->peek(1000).endsWith("early"));
    QCOMPARE(m_device.release("/api/info/version"), 1);
    QTRY_VERIFY(second->peek(1000).endsWith(R"({"version":"2.3.1"})"));
    // The hold is over; and a client that has gone away is not held.
    QVERIFY(get("/api/info/version").endsWith(R"({"version":"2.3.1"})"));
    m_device.hold("/api/info/version");
    second->write(request);
    QTRY_COMPARE(m_device.heldCount(), 1);
    second->abort();
    QTRY_COMPARE(m_device.heldCount(), 0);
}

void TestSimulator::requestsOfOneConnectionKeepTheirOrder()
{
    m_device.setFault("/slow", Fault::body("1").after(50));
    m_device.setFault("/fast", Fault::body("2"));
    constexpr qint64 answerBytes = 95;
    const auto socket = send("GET /slow HTTP/1.1\r\n\r\n");
    QTRY_COMPARE(m_device.requestCount("/slow"), 1);
    socket->write("GET /fast HTTP/1.1\r\n\r\nGET /fast HTTP/1.1\r\n\r\n");
    QTRY_COMPARE(socket->bytesAvailable(), 3 * answerBytes);
    const QByteArray answers = socket->readAll();
    QCOMPARE(answers.at(answerBytes - 1), '1');
    QCOMPARE(answers.back(), '2');
}

void TestSimulator::faultsFitKeysAndCounts()
{
    m_device.setFault("/api/info/version", Fault::body("once").next(1));
    m_device.setFault("POST /api/info/version", Fault::body("posted"));
    QVERIFY(get("/api/info/version?x=1").endsWith("once"));
    QVERIFY(get("/api/info/version").endsWith(R"({"version":"2.3.1"})"));
    QVERIFY(get("/api/info/other").startsWith("HTTP/1.1 404 "));
    m_device.setFault("/api/info/other", Fault::body("first"));
    m_device.setFault("GET /api/info/other", Fault::body("last"));
    QVERIFY(get("/api/info/other").endsWith("last"));
}

void TestSimulator::requestsAreRecorded()
{
    const auto socket = send("PUT /a?b=c HTTP/1.1\r\nuser-agent: X\r\nEmpty:\r\nContent-Length: 4\r\n\r\nbo");
    QTRY_COMPARE(socket->state(), QTcpSocket::ConnectedState);
    socket->write("dy");
    QTRY_COMPARE(m_device.requestCount("PUT /a"), 1);
    const HttpRequest request = m_device.requests().constFirst();
    QCOMPARE(request.target, "/a?b=c");
    QCOMPARE(request.header("User-Agent"), "X");
    QVERIFY(request.hasHeader("empty") && !request.hasHeader("Content-Type"));
    QCOMPARE(request.body, "body");
    QCOMPARE(request.port, SimulatedDevice::apiPort);
    QCOMPARE(m_device.requestCount("GET /a"), 0);
}

void TestSimulator::stopResetsConnections()
{
    m_device.hold("/api/info/version");
    const auto socket = send("GET /api/info/version HTTP/1.1\r\n\r\n");
    QTRY_COMPARE(m_device.heldCount(), 1);
    m_device.stop();
    QTRY_COMPARE(socket->state(), QTcpSocket::UnconnectedState);
    socket->connectToHost(m_device.address(), SimulatedDevice::apiPort);
    QTRY_COMPARE(socket->error(), QTcpSocket::ConnectionRefusedError);
    QVERIFY(m_device.start());
    m_device.clearFaults();
    QVERIFY(get("/api/info/version").startsWith("HTTP/1.1 200 "));
}

QTEST_GUILESS_MAIN(TestSimulator)
#include "TestSimulator.moc"
