// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "bench/Children.h"
#include "bench/Measures.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
constexpr qint64 mebibyte = qint64{1024} * 1024;
constexpr double pauseMs = 100;
const QString url = u"http://127.0.0.1:3000/"_s;

/// A file of so many MiB, no two of them the same.
bool makeFile(const QString &path, qint64 mebibytes)
{
    QFile file(path);
    QByteArray piece(mebibyte, Qt::Uninitialized);
    QRandomGenerator(1).generate(piece.begin(), piece.end());
    bool isGood = file.open(QIODevice::WriteOnly);
    for (qint64 i = 0; isGood && i < mebibytes; ++i)
    {
        piece.replace(0, 8, QByteArray::number(i).rightJustified(8, '0'));
        isGood = file.write(piece) == mebibyte;
    }
    return isGood;
}

/// How many MiB of two files differ; nothing if they cannot be read or differ in size.
std::optional<double> differences(const QString &path, const QString &otherPath)
{
    QFile file(path);
    QFile other(otherPath);
    if (!file.open(QIODevice::ReadOnly) || !other.open(QIODevice::ReadOnly) || file.size() != other.size())
        return {};
    double count = 0;
    while (!file.atEnd())
        count += file.read(mebibyte) == other.read(mebibyte) ? 0 : 1;
    return count;
}

/// What was measured of a batch: time (ms), extra memory (KiB), longest pause (ms); empty unless all came.
QList<double> fetched(const QString &folder, int count)
{
    QDir(folder).removeRecursively();
    const QList<double> numbers =
        children::numbersOf(u"noctaris-probe"_s, {u"fetch"_s, url, folder, QString::number(count)});
    return numbers.size() == 4 && int(numbers[3]) == count ? numbers : QList<double>();
}

QList<Measured> measureOneFile(const QString &source, const QString &folder)
{
    constexpr int rounds = 5;
    constexpr double memoryLimitMib = 24;
    constexpr double pauseLimitMs = 30;
    const QString curl = QStandardPaths::findExecutable(u"curl"_s);
    children::Devices server({u"serve"_s, source}, u"noctaris-probe"_s);
    server.waitFor("ready");
    QList<double> ours;
    QList<double> theirs;
    std::optional<double> memoryMib;
    std::optional<double> longestMs;
    for (int round = 0; round < rounds; ++round)
    {
        const QList<double> numbers = fetched(folder, 1);
        if (numbers.isEmpty())
            return {{u"Transfer of 1 GiB"_s, {}}};
        ours += 1024 * 1000 / (numbers[0] - pauseMs);
        memoryMib = std::max(memoryMib.value_or(0), numbers[1] / 1024);
        longestMs = std::max(longestMs.value_or(0), numbers[2]);
        QDir(folder).removeRecursively();
        const QList<double> seconds = children::numbersOf(
            curl, {u"-s"_s, u"--create-dirs"_s, u"-o"_s, folder + u"/0"_s, u"-w"_s, u"%{time_total}"_s, url});
        for (const double second : seconds)
            theirs += 1024 / second;
    }
    const auto information = Measured::Limit::None;
    return {{u"Transfer of 1 GiB to memory"_s, median(ours), 0, u"MiB/s"_s, information},
            {u"  curl"_s, median(theirs), 0, u"MiB/s"_s, information},
            {u"  ratio"_s, ratio(ours, theirs), 1, {}, Measured::Limit::AtLeast},
            {u"  extra memory"_s, memoryMib, memoryLimitMib, u"MiB"_s},
            {u"  longest pause"_s, longestMs, pauseLimitMs, u"ms"_s}};
}
} // namespace

QList<Measured> measureTransfer()
{
    constexpr qint64 largeMib = 3072;
    constexpr int batchSize = 500;
    constexpr double batchLimitS = batchSize * pauseMs / 1000 * 1.25;
    const QTemporaryDir memory(u"/dev/shm/noctaris-bench-XXXXXX"_s);
    const QString source = memory.filePath(u"source"_s);
    const QString folder = memory.filePath(u"pictures"_s);
    QList<Measured> lines;
    if (makeFile(source, 1024))
        lines += measureOneFile(source, folder);
    if (makeFile(source, 1))
    {
        children::Devices server({u"serve"_s, source}, u"noctaris-probe"_s);
        server.waitFor("ready");
        const QList<double> numbers = fetched(folder, batchSize);
        const std::optional<double> seconds = numbers.isEmpty() ? std::optional<double>() : numbers[0] / 1000;
        lines += {u"Transfer of 500 files of 1 MiB"_s, seconds, batchLimitS, u"s"_s};
    }
    QDir(folder).removeRecursively();
    // Twice the file, and as much again for everybody else.
    const bool isRoomy = QStorageInfo(memory.path()).bytesAvailable() > 3 * largeMib * mebibyte;
    const QTemporaryDir disk;
    const QString place = isRoomy ? memory.path() : disk.path();
    if (makeFile(place + u"/large"_s, largeMib))
    {
        children::Devices server({u"serve"_s, place + u"/large"_s}, u"noctaris-probe"_s);
        server.waitFor("ready");
        const bool isThere = !fetched(place + u"/copy"_s, 1).isEmpty();
        lines += {u"Transfer of 3 GiB: wrong MiB"_s,
                  isThere ? differences(place + u"/large"_s, place + u"/copy/0"_s) : std::nullopt, 0};
    }
    return lines;
}
