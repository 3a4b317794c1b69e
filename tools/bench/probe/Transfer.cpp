// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "bench/probe/Transfer.h"

#include "images/ImageDownloader.h"
#include "measure/Measure.h"
#include "measure/Pauses.h"
#include "simulator/HttpServer.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>
#include <iostream>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
/// The memory (RSS) that this process holds now, in KiB; the second number of the file, in pages.
qint64 memoryKib()
{
    QFile file(u"/proc/self/statm"_s);
    return file.open(QIODevice::ReadOnly)
               ? file.readAll().split(' ')[1].toLongLong() * sysconf(_SC_PAGESIZE) / 1024
               : 0;
}
} // namespace

int transfer::serve(const QString &file)
{
    HttpServer server;
    if (!server.listen(QHostAddress::LocalHost, port))
        return 1;
    QObject::connect(&server, &HttpServer::requestReceived, &server,
                     [&file](HttpConnection *connection) { connection->reply(HttpReply{.bodyFile = file}); });
    std::cout << "\nready" << std::endl;
    return QCoreApplication::exec();
}

int transfer::fetch(const QString &url, const QString &folder, int count)
{
    QVariantList images;
    for (int i = 0; i < count; ++i)
    {
        const QString name = QString::number(i);
        images += QVariantMap{{u"raw"_s, url},
                              {u"metadata"_s, QVariantMap{{u"uuid"_s, name}, {u"filename"_s, name}}}};
    }
    ImageDownloader downloader;
    Pauses pauses;
    measure::pass(measure::settlingMs);
    const qint64 beforeKib = memoryKib();
    const double startMs = measure::nowMs();
    pauses.start();
    QObject::connect(&downloader, &ImageDownloader::downloadCompleted, &downloader, [&](bool, int came) {
        std::printf("%.3f %lld %.3f %d\n", measure::nowMs() - startMs, measure::peakMemoryKib() - beforeKib,
                    pauses.longestMs(), came);
        QCoreApplication::quit();
    });
    downloader.startDownload(folder, images);
    return QCoreApplication::exec();
}
