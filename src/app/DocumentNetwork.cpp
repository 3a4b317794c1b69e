// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/DocumentNetwork.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {
constexpr qint64 mebibyte = 1024LL * 1024;

struct Expectation
{
    QLatin1StringView mark;
    qint64 maxBytes;
    /// For the whole answer, and for the silence in between; 0 for no limit.
    int maxMs;
    int maxSilenceMs;
};

const Expectation s_expectations[] = {
    {"thumbnail"_L1, 8 * mebibyte, 30000, 0},
    {"preview"_L1, 32 * mebibyte, 60000, 0},
    // Sixty megapixels, with four bytes each.
    {"full"_L1, 256 * mebibyte, 0, 30000},
};
/// The list of ten thousand pictures is a tenth of it.
constexpr Expectation s_anythingElse = {{}, 64 * mebibyte, 0, 0};

Expectation expectationOf(const QUrl &url)
{
    const QString mark = url.fragment();
    const auto *const found = std::ranges::find(s_expectations, mark, &Expectation::mark);
    return found == std::end(s_expectations) ? s_anythingElse : *found;
}

/// Gives up answers that turn out to be longer or slower than expected.
class BoundedManager : public QNetworkAccessManager
{
public:
    using QNetworkAccessManager::QNetworkAccessManager;

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *outgoingData) override
    {
        const Expectation expected = expectationOf(request.url());
        QNetworkRequest bounded = request;
        bounded.setTransferTimeout(expected.maxSilenceMs);
        QNetworkReply *reply = QNetworkAccessManager::createRequest(operation, bounded, outgoingData);
        const auto endBeyond = [reply, maxBytes = expected.maxBytes](qint64 bytes) {
            if (bytes > maxBytes)
                reply->abort();
        };
        // The one counts everything, but only ten times a second; the other what nobody has read yet.
        connect(reply, &QNetworkReply::downloadProgress, reply, endBeyond);
        connect(reply, &QNetworkReply::readyRead, reply, [=] { endBeyond(reply->bytesAvailable()); });
        if (expected.maxMs > 0)
            QTimer::singleShot(expected.maxMs, reply, &QNetworkReply::abort);
        return reply;
    }
};
} // namespace

QNetworkAccessManager *DocumentNetwork::create(QObject *parent)
{
    auto *manager = new BoundedManager(parent);
    manager->setProxy(QNetworkProxy::NoProxy);
    return manager;
}
