// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "bench/Children.h"
#include "bench/Measures.h"

using namespace Qt::StringLiterals;

namespace {
constexpr double kibPerMib = 1024;
const QString address = u"10.77.0.2"_s;

/// A device whose disk is full of them.
QStringList deviceWith(const QStringList &content)
{
    return QStringList{u"--devices"_s, u"1"_s, u"--no-mdns"_s, u"--address"_s, address} + content;
}

QList<Measured> measureBrowsing(const QString &kind, const QString &what, const QStringList &content)
{
    constexpr double shownLimitMs = 1000;
    constexpr double frameLimitMs = 50;
    constexpr double selectionLimitMs = 100;
    constexpr double memoryLimitMib = 250;
    children::Devices devices(deviceWith(content));
    devices.waitFor("ready");
    QList<std::optional<double>> values =
        valuesOf(children::numbersOf(u"noctaris-probe"_s, {u"browse"_s, address, kind}), 5);
    if (values[4])
        *values[4] /= kibPerMib;
    return {{what + u": answer to list"_s, values[0], shownLimitMs, u"ms"_s},
            {u"  longest frame while scrolling"_s, values[1], frameLimitMs, u"ms"_s},
            {u"  median frame while scrolling"_s, values[2], 0, u"ms"_s, Measured::Limit::None},
            {u"  selecting all"_s, values[3], selectionLimitMs, u"ms"_s},
            {u"  extra memory after scrolling"_s, values[4], memoryLimitMib, u"MiB"_s}};
}

QList<Measured> measureLargePicture()
{
    constexpr double pauseLimitMs = 100;
    children::Devices devices(deviceWith({u"--pictures"_s, u"2"_s, u"--megapixels"_s, u"60"_s}));
    devices.waitFor("ready");
    QList<std::optional<double>> values =
        valuesOf(children::numbersOf(u"noctaris-probe"_s, {u"large"_s, address}), 4);
    for (const qsizetype memory : {2, 3})
    {
        if (values[memory])
            *values[memory] /= kibPerMib;
    }
    return {{u"A picture of 60 megapixels"_s, values[0], 0, u"ms"_s, Measured::Limit::None},
            {u"  longest pause"_s, values[1], pauseLimitMs, u"ms"_s},
            {u"  extra memory while it is made"_s, values[2], 0, u"MiB"_s, Measured::Limit::None},
            {u"  extra memory once it is there"_s, values[3], 0, u"MiB"_s, Measured::Limit::None}};
}
} // namespace

QList<Measured> measureViewers()
{
    QList<Measured> lines = measureBrowsing(u"images"_s, u"10,000 pictures"_s, {u"--pictures"_s, u"10000"_s});
    lines += measureBrowsing(u"videos"_s, u"2,000 videos"_s, {u"--videos"_s, u"2000"_s});
    lines += measureLargePicture();
    return lines;
}
