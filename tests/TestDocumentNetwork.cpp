// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/DocumentNetwork.h"
#include "simulator/SimulatedDevice.h"
#include "support/Probing.h"

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
constexpr qint64 mebibyte = 1024LL * 1024;

/// A request, what the device makes of it, and what becomes of that.
struct Case
{
    QByteArray name;
    QString mark;
    Fault fault;
    /// Of what comes, in bytes; nothing if it is given up.
    qint64 size = -1;
    qint64 endMs = 0;
    /// Of what is given up. What the machine sends in a tenth of a second may come on top.
    qint64 mostBytes = 0;

    std::unique_ptr<QNetworkAccessManager> manager = {};
    QNetworkReply *reply = nullptr;
    qint64 received = 0;
    qint64 endedMs = -1;
};

Fault filled(qint64 bytes)
{
    Fault fault = Fault::body("x");
    fault.filledBytes = bytes;
    return fault;
}

Fault trickling(qsizetype bytes, int intervalMs)
{
    Fault fault = Fault::trickle(intervalMs);
    fault.instead = HttpReply{.body = QByteArray(bytes, 'x')};
    return fault;
}

std::vector<Case> cases()
{
    const QString thumbnail = u"#thumbnail"_s;
    const QString full = u"#full"_s;
    std::vector<Case> list;
    list.push_back({"thumbnail", thumbnail, filled(8 * mebibyte), 8 * mebibyte});
    list.push_back({"endless thumbnail", thumbnail, filled(-1), -1, 0, 8 * mebibyte});
    list.push_back({"slow thumbnail", thumbnail, trickling(1000, 500), -1, 30000, 1000});
    list.push_back({"silent thumbnail", thumbnail, Fault::hold(), -1, 30000});
    list.push_back({"large picture", full, filled(100 * mebibyte), 100 * mebibyte});
    list.push_back({"slow picture", full, trickling(3, 12000), 3, 36000});
    list.push_back({"silent picture", full, Fault::hold(), -1, 30000});
    list.push_back({"long list", {}, filled(60 * mebibyte), 60 * mebibyte});
    list.push_back({"endless list", {}, filled(-1), -1, 0, 64 * mebibyte});
    list.push_back({"late list", {}, Fault::body("[]").after(35000), 2, 35000});
    return list;
}
} // namespace

/// What the documents fetch comes, but has an end. The device is on the subnet's address: nobody would ask a
/// proxy for one of the loopback device.
class TestDocumentNetwork : public QObject
{
    Q_OBJECT

private slots:
    void endsWhatIsTooMuch();
};

void TestDocumentNetwork::endsWhatIsTooMuch()
{
    // Nobody listens there.
    qputenv("http_proxy", "http://10.77.0.1:9");
    SimulatedDevice device(QHostAddress(u"10.77.0.1"_s), 0);
    QVERIFY(device.start());
    DocumentNetwork network;
    QElapsedTimer clock;
    clock.start();
    std::vector<Case> list = cases();
    // All at once, for most of them only wait.
    for (Case &one : list)
    {
        const QString path = u'/' + QString::fromLatin1(one.name).replace(u' ', u'-');
        device.setFault(path.toLatin1(), one.fault);
        one.manager.reset(network.create(nullptr));
        one.reply = one.manager->get(
            QNetworkRequest(QUrl(u"http://%1:3000%2%3"_s.arg(device.address(), path, one.mark))));
        connect(one.reply, &QNetworkReply::downloadProgress, this,
                [&one](qint64 received) { one.received = std::max(one.received, received); });
        connect(one.reply, &QNetworkReply::finished, this, [&one, &clock] { one.endedMs = clock.elapsed(); });
    }
    QTRY_VERIFY_WITH_TIMEOUT(std::ranges::all_of(list, [](const Case &one) { return one.endedMs >= 0; }),
                             60000);
    for (const Case &one : list)
    {
        const auto expected = one.size < 0 ? QNetworkReply::OperationCanceledError : QNetworkReply::NoError;
        QVERIFY2(one.reply->error() == expected, one.name + ": " + one.reply->errorString().toUtf8());
        constexpr qint64 atOnceMs = 15000;
        if (one.endMs > 0)
            QCOMPARE(one.name + probing::timing(one.endedMs, one.endMs).toUtf8(),
                     one.name + probing::timing(one.endMs, one.endMs).toUtf8());
        else
            QVERIFY2(one.endedMs < atOnceMs, one.name + QByteArray::number(one.endedMs));
        if (one.size >= 0)
            QCOMPARE(one.reply->readAll().size(), one.size);
        else
            QVERIFY2(one.received <= one.mostBytes + 64 * mebibyte,
                     one.name + QByteArray::number(one.received));
    }
}

QTEST_GUILESS_MAIN(TestDocumentNetwork)
#include "TestDocumentNetwork.moc"
