// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/DeviceWork.h"

#include <QBuffer>
#include <QImage>
#include <QRandomGenerator>
#include <QUrl>
#include <QtEndian>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// The light that a camera has collected: a noisy sky with stars.
QImage exposure(quint32 seed)
{
    constexpr int starCount = 90;
    constexpr int reach = 5;
    QRandomGenerator random(seed);
    QImage frame(640, 480, QImage::Format_Grayscale16);
    const auto pixel = [&frame](int x, int y) -> quint16 & {
        return reinterpret_cast<quint16 *>(frame.scanLine(y))[x];
    };
    for (int index = 0; index < frame.width() * frame.height(); ++index)
    {
        pixel(index % frame.width(), index / frame.width()) =
            static_cast<quint16>(random.bounded(4000, 6000));
    }
    for (int star = 0; star < starCount; ++star)
    {
        const int x = random.bounded(reach, frame.width() - reach);
        const int y = random.bounded(reach, frame.height() - reach);
        const double peak = 6000 * std::exp(random.bounded(3.0));
        for (int dy = -reach; dy <= reach; ++dy)
        {
            for (int dx = -reach; dx <= reach; ++dx)
            {
                quint16 &lit = pixel(x + dx, y + dy);
                lit = static_cast<quint16>(
                    std::min(65535.0, lit + peak * std::exp(-(dx * dx + dy * dy) / 3.0)));
            }
        }
    }
    return frame;
}

/// Filled up to whole FITS blocks.
QByteArray inBlocks(const QByteArray &bytes, char filler)
{
    constexpr qsizetype blockBytes = 2880;
    return bytes.leftJustified((bytes.size() + blockBytes - 1) / blockBytes * blockBytes, filler);
}

QByteArray fitsFile(const Picture &picture)
{
    const QImage frame = exposure(picture.seed);
    const auto quoted = [](const QString &text) { return '\'' + text.toLatin1().leftJustified(8) + '\''; };
    const std::pair<QByteArray, QByteArray> cards[] = {
        {"SIMPLE", "T"},
        {"BITPIX", "16"},
        {"NAXIS", "2"},
        {"NAXIS1", QByteArray::number(frame.width())},
        {"NAXIS2", QByteArray::number(frame.height())},
        {"BZERO", "32768"},
        {"EXPTIME", QByteArray::number(picture.exposureSeconds, 'f', 1)},
        {"FILTER", quoted(picture.filter)},
        {"OBJECT", quoted(picture.object)},
        {"DATE-OBS", quoted(picture.date.toString(u"yyyy-MM-ddThh:mm:ss"_s))}};
    constexpr qsizetype cardBytes = 80;
    QByteArray header;
    for (const auto &[keyword, value] : cards)
    {
        const QByteArray aligned = value.startsWith('\'') ? value : value.rightJustified(20);
        header += (keyword.leftJustified(8) + "= " + aligned).leftJustified(cardBytes);
    }
    QByteArray data;
    for (int index = 0; index < frame.width() * frame.height(); ++index)
    {
        const auto *line = reinterpret_cast<const quint16 *>(frame.constScanLine(index / frame.width()));
        // FITS knows signed numbers only; BZERO moves them back up.
        const auto stored = qToBigEndian<quint16>(line[index % frame.width()] ^ 0x8000);
        data.append(reinterpret_cast<const char *>(&stored), sizeof(stored));
    }
    return inBlocks(header + "END", ' ') + inBlocks(data, '\0');
}

} // namespace

QString Picture::name(const QString &kind) const
{
    return kind == "raw"_L1 ? filename : uuid + (kind == "full"_L1 ? ".png"_L1 : ".jpg"_L1);
}

QString Picture::path(const QString &kind) const
{
    return u"/images/%1/%2"_s.arg(kind, QString::fromLatin1(QUrl::toPercentEncoding(name(kind))));
}

QByteArray Picture::file(const QString &kind) const
{
    if (kind == "raw"_L1)
    {
        return content ? *content : fitsFile(*this);
    }
    constexpr int thumbnailWidth = 240;
    const bool isFull = kind == "full"_L1;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    const QImage drawing = exposure(seed).convertToFormat(QImage::Format_Grayscale8);
    (isFull ? drawing : drawing.scaledToWidth(thumbnailWidth)).save(&buffer, isFull ? "PNG" : "JPG");
    return buffer.data();
}
