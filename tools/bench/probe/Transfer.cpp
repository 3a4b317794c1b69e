// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "bench/probe/Transfer.h"

#include "images/ImageDownloader.h"
#include "measure/Measure.h"
#include "measure/Pauses.h"

#include <QCoreApplication>
#include <QFile>

#include <array>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <netinet/in.h>
#include <string>
#include <sys/sendfile.h>
#include <sys/socket.h>
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

/// Answers one client's requests, one after the other. The file goes from the kernel to the kernel, so that
/// what is measured is not the server.
static void serveClient(int client, int file, qint64 fileBytes)
{
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(fileBytes) + "\r\n\r\n";
    std::string request;
    std::array<char, 4096> piece{};
    ssize_t count = 0;
    while ((count = read(client, piece.data(), piece.size())) > 0)
    {
        request.append(piece.data(), size_t(count));
        if (!request.ends_with("\r\n\r\n"))
            continue;
        request.clear();
        off_t sent = 0;
        bool isGood = send(client, head.data(), head.size(), MSG_NOSIGNAL) > 0;
        while (isGood && sent < fileBytes)
            isGood = sendfile(client, file, &sent, size_t(fileBytes - sent)) > 0;
        if (!isGood)
            return;
    }
}

int transfer::serve(const QString &fileName)
{
    // Who breaks off is no reason to end.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    QFile file(fileName);
    const int server = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    constexpr int queueLength = 16;
    const int reuse = 1;
    setsockopt(server, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
    if (!file.open(QIODevice::ReadOnly) ||
        bind(server, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        listen(server, queueLength) != 0)
        return 1;
    std::cout << "\nready" << std::endl;
    for (;;)
    {
        const int client = accept(server, nullptr, nullptr);
        if (client < 0)
            return 1;
        serveClient(client, file.handle(), file.size());
        close(client);
    }
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
