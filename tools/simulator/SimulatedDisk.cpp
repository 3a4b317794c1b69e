// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/SimulatedEndpoints.h"

#include <QSet>
#include <QTimeZone>
#include <QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// The n-th picture of a family of devices. Of six, four are of the sky, one is dark, one not even exposed.
Picture believablePicture(int device, int index, const QDateTime &evening)
{
    static const QString objects[] = {u"M42"_s, u"M31"_s, u"NGC7000"_s, u"M51"_s, u"IC1805"_s, u"M13"_s};
    static const QString filters[] = {u"L"_s, u"Ha"_s, u"OIII"_s, u"SII"_s};
    constexpr int kinds = 6;
    const int kind = index % kinds;
    const bool isLight = kind < std::ssize(filters);
    const QString object = isLight ? objects[(device + index / 2) % std::ssize(objects)] : QString();
    const QString frame = isLight ? u"Light"_s : kind == kinds - 1 ? u"Bias"_s : u"Dark"_s;
    const QString filter = isLight ? filters[kind] : QString();
    const quint32 seed = device * 1000000 + index;
    const QUuid uuid = QUuid::createUuidV5(QUuid(), "noctaris picture " + QByteArray::number(seed));
    const QString number = u"%1.fits"_s.arg(index + 1, 3, 10, QChar(u'0'));
    return {
        .uuid = uuid.toString(QUuid::WithoutBraces),
        .filename =
            (isLight ? QStringList{object, frame, filter, number} : QStringList{frame, number}).join(u'_'),
        .date = evening.addSecs(qint64{330} * index),
        .object = object,
        .frame = frame,
        .filter = filter,
        .exposureSeconds = frame == "Bias"_L1 ? 0 : 0.5 + 60.0 * (index % 5),
        .ccdTemperature = -10.0 + index % 3 * 0.1,
        .binning = 1 + index / 4 % 2,
        .seed = seed,
        .fullFormat = index % 2 == 0 ? u"png"_s : u"jpg"_s};
}

Video believableVideo(int index, const QDateTime &evening)
{
    const QString form = index % 3 == 0   ? u"Moon_%1.ser"_s
                         : index % 3 == 1 ? u"Jupiter/Jupiter_RGB_%1.ser"_s
                                          : u"Jupiter/Jupiter_IR_%1.SER"_s;
    constexpr qint64 headerBytes = 178;
    constexpr qint64 frameBytes = 307200;
    return {.path = form.arg(index / 3 + 1, 3, 10, QChar(u'0')),
            .sizeBytes = headerBytes + frameBytes * (900 + 2311 * index % 6000),
            .modified = evening.addSecs(7200 + qint64{300} * index)};
}

} // namespace

DiskState DiskState::believable(int number, int pictureCount, int videoCount)
{
    DiskState disk{.picturesDirectory = u"/home/noctaris/Pictures"_s,
                   .mounts = {{u"/dev/mmcblk0p2"_s, u"/"_s, u"btrfs"_s},
                              {u"/dev/mmcblk0p1"_s, u"/boot/firmware"_s, u"vfat"_s},
                              {u"/dev/sda1"_s, u"/media/noctaris/ASTRO"_s, u"exfat"_s},
                              {u"/dev/sdb1"_s, u"/run/media/noctaris/Backup"_s, u"ext4"_s}}};
    const QDateTime evening(QDate(2025, 10, 3).addDays(number), QTime(20, 15), QTimeZone::utc());
    for (int index = 0; index < pictureCount; ++index)
    {
        disk.pictures.append(believablePicture(number, index, evening));
    }
    disk.videos = {{u"notes.txt"_s, 412, evening.addSecs(7300)}};
    for (int index = 0; index < videoCount; ++index)
    {
        disk.videos.append(believableVideo(index, evening));
    }
    while (disk.usedBytes() == disk.totalBytes)
    {
        disk.totalBytes *= 2;
    }
    return disk;
}

qint64 DiskState::usedBytes() const
{
    qint64 bytes = systemBytes;
    std::ranges::for_each(pictures, [&bytes](const Picture &each) { bytes += each.rawBytes(); });
    std::ranges::for_each(videos, [&bytes](const Video &each) { bytes += each.sizeBytes; });
    return std::min(bytes, totalBytes);
}

namespace endpoints {
namespace {

HttpReply pictureFile(SimulatedDevice &device, const Call &call)
{
    const QString kind = call.path.section(u'/', 2, 2);
    const bool isRaw = kind == "raw"_L1;
    const QString key = isRaw ? call.argument : call.argument.section(u'.', 0, 0);
    for (const Picture &picture : std::as_const(device.work().disk.pictures))
    {
        if (key == (isRaw ? picture.filename : picture.uuid) && picture.name(kind) == call.argument)
        {
            return {.body = picture.file(kind), .headers = {{"Content-Type", "application/octet-stream"}}};
        }
    }
    return notFound();
}

QJsonObject record(const SimulatedDevice &device, const Picture &picture)
{
    QJsonObject metadata{{u"uuid"_s, picture.uuid},
                         {u"filename"_s, picture.filename},
                         {u"filesize"_s, picture.rawBytes()},
                         {u"frame"_s, picture.frame},
                         {u"xbinning"_s, picture.binning},
                         {u"ybinning"_s, picture.binning},
                         {u"date-obs"_s, picture.date.toString(u"yyyy-MM-ddThh:mm:ss.zzz"_s)},
                         {u"exptime"_s, picture.exposureSeconds},
                         {u"ccd-temp"_s, picture.ccdTemperature}};
    if (!picture.filter.isEmpty())
    {
        metadata[u"filter"_s] = picture.filter;
    }
    return {{u"src"_s, device.companionUrl(picture.path(u"full"_s))},
            {u"raw"_s, device.companionUrl(picture.path(u"raw"_s))},
            {u"thumbnail"_s, device.companionUrl(picture.path(u"thumbnails"_s))},
            {u"metadata"_s, metadata}};
}

HttpReply pictures(SimulatedDevice &device, const Call & /*call*/)
{
    QJsonArray list;
    for (const Picture &picture : std::as_const(device.work().disk.pictures))
    {
        list.append(record(device, picture));
    }
    return HttpReply::json({{u"success"_s, true}, {u"data"_s, list}});
}

/// The files go with the records, for they are drawn from them.
HttpReply deletePictures(SimulatedDevice &device, const QStringList &uuids, int statusIfUnknown)
{
    const QSet<QString> wanted(uuids.begin(), uuids.end());
    const qsizetype count = device.work().disk.pictures.removeIf(
        [&wanted](const Picture &picture) { return wanted.contains(picture.uuid); });
    return HttpReply::json(
        {{u"success"_s, count > 0},
         {u"message"_s, count > 0 ? u"%1 images deleted"_s.arg(count) : u"There is no such image"_s}},
        count > 0 ? 200 : statusIfUnknown);
}

QString pathOf(const SimulatedDevice &device, const Video &video)
{
    return video.path.startsWith(u'/') ? video.path
                                       : u"/home/%1/Videos/%2"_s.arg(device.state().hostname, video.path);
}

/// What lies below the call's directory, as paths from there on, each with its video.
QList<std::pair<QString, Video>> below(const SimulatedDevice &device, const Call &call)
{
    QList<std::pair<QString, Video>> found;
    QString directory = call.text("directory"_L1);
    directory += directory.endsWith(u'/') ? QString() : u"/"_s;
    for (const Video &video : device.work().disk.videos)
    {
        if (const QString path = pathOf(device, video); path.startsWith(directory))
        {
            found.append({path.sliced(directory.size()), video});
        }
    }
    return found;
}

HttpReply noSuchFile(const QString &path)
{
    return refused(u"No such file or directory: \"%1\""_s.arg(path));
}

HttpReply folders(SimulatedDevice &device, const Call &call)
{
    QJsonArray list;
    QStringList names;
    for (const auto &[path, video] : below(device, call))
    {
        const QString name = path.section(u'/', 0, 0);
        if (path.contains(u'/') && !names.contains(name))
        {
            const QString whole = pathOf(device, video);
            names.append(name);
            list.append(
                QJsonObject{{u"name"_s, name}, {u"path"_s, whole.chopped(path.size() - name.size())}});
        }
    }
    return done({{u"folders"_s, list}});
}

HttpReply files(SimulatedDevice &device, const Call &call)
{
    const auto contents = below(device, call);
    if (contents.isEmpty())
    {
        return noSuchFile(call.text("directory"_L1));
    }
    QJsonArray list;
    for (const auto &[path, video] : contents)
    {
        if (!path.contains(u'/'))
        {
            list.append(QJsonObject{{u"file"_s, path},
                                    {u"path"_s, pathOf(device, video)},
                                    {u"stat"_s, QJsonObject{{u"st_size"_s, video.sizeBytes}}},
                                    {u"mtime"_s, video.modified.toSecsSinceEpoch()}});
        }
    }
    return done({{u"files"_s, list}});
}

HttpReply deleteFile(SimulatedDevice &device, const Call &call)
{
    const QString path = call.text("directory"_L1);
    const qsizetype count =
        device.work().disk.videos.removeIf([&](const Video &video) { return pathOf(device, video) == path; });
    return count > 0 ? done() : noSuchFile(path);
}

HttpReply setPicturesDirectory(SimulatedDevice &device, const Call &call)
{
    const QString directory = call.text("directory"_L1);
    if (!directory.startsWith(u'/'))
    {
        return refused(u"\"%1\" is no directory"_s.arg(directory));
    }
    device.work().disk.picturesDirectory = directory;
    return done();
}

HttpReply storage(SimulatedDevice &device, const Call & /*call*/)
{
    QJsonArray list;
    for (const QStringList &mount : std::as_const(device.work().disk.mounts))
    {
        list.append(QJsonArray::fromStringList(mount));
    }
    return found(list);
}

const Endpoint table[] = {
    {"GET", api, "/api/info/pictures",
     [](auto &device, auto &) { return found(device.work().disk.picturesDirectory); }},
    {"POST", api, "/api/info/pictures", setPicturesDirectory},
    {"GET", api, "/api/info/storage", storage},
    {"GET", api, "/api/info/disk-utilization",
     [](auto &device, auto &) {
         const DiskState &disk = device.work().disk;
         return found(QJsonObject{{u"total"_s, disk.totalBytes}, {u"used"_s, disk.usedBytes()}});
     }},
    {"POST", api, "/api/info/directoryfolders", folders},
    {"POST", api, "/api/info/directory", files},
    {"POST", api, "/api/system/deletefile", deleteFile},
    {"GET", lumarc, "/images", pictures},
    {"POST", lumarc, "/images/bulk-delete",
     [](auto &device, auto &call) {
         return deletePictures(device, call.body["uuids"_L1].toVariant().toStringList(), 200);
     }},
    {"DELETE", lumarc, "/images/*",
     [](auto &device, auto &call) { return deletePictures(device, {call.argument}, 404); }},
    {"GET", lumarc, "/images/raw/*", pictureFile},
    {"GET", lumarc, "/images/full/*", pictureFile},
    {"GET", lumarc, "/images/thumbnails/*", pictureFile},
};

} // namespace

const std::span<const Endpoint> ofDisk = table;

} // namespace endpoints
