// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/DeviceWork.h"

#include <QBuffer>
#include <QImage>
#include <QRandomGenerator>
#include <QUrl>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// A piece of night sky as the camera's noise: every line is another part of it.
void drawNoise(QImage &frame, QRandomGenerator &random)
{
    std::array<quint16, 4096> noise{};
    std::ranges::generate(noise, [&random] { return static_cast<quint16>(random.bounded(4000, 6000)); });
    for (int y = 0; y < frame.height(); ++y)
    {
        auto *line = reinterpret_cast<quint16 *>(frame.scanLine(y));
        const int shift = random.bounded(static_cast<int>(noise.size()));
        for (int x = 0; x < frame.width(); ++x)
        {
            line[x] = noise[(x + shift) % noise.size()];
        }
    }
}

void drawStar(QImage &frame, const QPoint &middle, double peak, double spread)
{
    const int reach = static_cast<int>(std::ceil(4 * spread));
    const QRect area = QRect(middle, QSize(1, 1)).adjusted(-reach, -reach, reach, reach) & frame.rect();
    for (int y = area.top(); y <= area.bottom(); ++y)
    {
        auto *line = reinterpret_cast<quint16 *>(frame.scanLine(y));
        for (int x = area.left(); x <= area.right(); ++x)
        {
            const double distance = std::hypot(x - middle.x(), y - middle.y()) / spread;
            line[x] =
                static_cast<quint16>(std::min(65535.0, line[x] + peak * std::exp(-distance * distance / 2)));
        }
    }
}

/// The light that a camera has collected.
QImage exposure(const Picture &picture, const QSize &size)
{
    const int starCount = picture.frame == "Light"_L1 ? 90 : 0;
    const double spread = std::max(0.7, 1.2 * size.width() / 640);
    QImage frame(size, QImage::Format_Grayscale16);
    // Each has numbers of its own, so the stars do not depend on the size.
    QRandomGenerator ofNoise(picture.seed);
    QRandomGenerator ofStars(~picture.seed);
    drawNoise(frame, ofNoise);
    for (int star = 0; star < starCount; ++star)
    {
        const double x = ofStars.bounded(1.0);
        const double y = ofStars.bounded(1.0);
        const double peak = 6000 * std::exp(ofStars.bounded(3.0));
        drawStar(frame, QPointF(x * size.width(), y * size.height()).toPoint(), peak, spread);
    }
    return frame;
}

constexpr qint64 blockBytes = 2880;

qint64 inWholeBlocks(qint64 bytes)
{
    return (bytes + blockBytes - 1) / blockBytes * blockBytes;
}

/// Filled up to whole FITS blocks.
QByteArray inBlocks(const QByteArray &bytes, char filler)
{
    return bytes.leftJustified(inWholeBlocks(bytes.size()), filler);
}

QByteArray fitsFile(const Picture &picture)
{
    const QImage frame = exposure(picture, picture.size);
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
    data.reserve(2 * qsizetype{frame.width()} * frame.height());
    for (int y = 0; y < frame.height(); ++y)
    {
        const auto *line = reinterpret_cast<const quint16 *>(frame.constScanLine(y));
        for (int x = 0; x < frame.width(); ++x)
        {
            // FITS knows signed numbers only; BZERO moves them back up.
            const auto stored = qToBigEndian<quint16>(line[x] ^ 0x8000);
            data.append(reinterpret_cast<const char *>(&stored), sizeof(stored));
        }
    }
    return inBlocks(header + "END", ' ') + inBlocks(data, '\0');
}

} // namespace

QString Picture::name(const QString &kind) const
{
    return kind == "raw"_L1 ? filename : uuid + u'.' + (kind == "full"_L1 ? fullFormat : u"jpg"_s);
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
    // For PNG this is how hard it is packed: noise does not become much smaller, only later.
    constexpr int quickQuality = 85;
    const bool isFull = kind == "full"_L1;
    const QSize drawn = isFull ? size : QSize(thumbnailWidth, thumbnailWidth * size.height() / size.width());
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    exposure(*this, drawn)
        .convertToFormat(QImage::Format_Grayscale8)
        .save(&buffer, isFull ? fullFormat.toLatin1().constData() : "jpg", quickQuality);
    return buffer.data();
}

qint64 Picture::rawBytes() const
{
    const qint64 dataBytes = 2 * qint64{size.width()} * size.height();
    return content ? content->size() : blockBytes + inWholeBlocks(dataBytes);
}
