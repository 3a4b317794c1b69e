// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/SimulatedEndpoints.h"

#include <QTimeZone>
#include <QUuid>

using namespace Qt::StringLiterals;

DiskState DiskState::believable(int number)
{
    static const QString objects[] = {u"M42"_s, u"M31"_s, u"NGC7000"_s, u"M51"_s, u"IC1805"_s, u"M13"_s};
    static const QString filters[] = {u"L"_s, u"Ha"_s, u"OIII"_s, u"SII"_s};
    constexpr int pictureCount = 8;
    DiskState disk{.picturesDirectory = u"/home/noctaris/Pictures"_s,
                   .mounts = {{u"/dev/mmcblk0p2"_s, u"/"_s, u"btrfs"_s},
                              {u"/dev/mmcblk0p1"_s, u"/boot/firmware"_s, u"vfat"_s},
                              {u"/dev/sda1"_s, u"/media/noctaris/ASTRO"_s, u"exfat"_s},
                              {u"/dev/sdb1"_s, u"/run/media/noctaris/Backup"_s, u"ext4"_s}}};
    const QDateTime evening(QDate(2025, 10, 3).addDays(number), QTime(20, 15), QTimeZone::utc());
    for (int index = 0; index < pictureCount; ++index)
    {
        const quint32 seed = number * 1000 + index;
        const QString object = objects[(number + index / 2) % std::ssize(objects)];
        const QString filter = filters[index % std::ssize(filters)];
        const QUuid uuid = QUuid::createUuidV5(QUuid(), "noctaris picture " + QByteArray::number(seed));
        disk.pictures.append(
            {.uuid = uuid.toString(QUuid::WithoutBraces),
             .filename = u"%1_Light_%2_%3.fits"_s.arg(object, filter).arg(index + 1, 3, 10, QChar(u'0')),
             .date = evening.addSecs(qint64{330} * index),
             .object = object,
             .filter = filter,
             .exposureSeconds = 60.0 * (1 + index % 5),
             .ccdTemperature = -10.0 + index % 3 * 0.1,
             .seed = seed});
    }
    disk.videos = {{u"Moon_001.ser"_s, 1468006400, evening.addSecs(7200)},
                   {u"notes.txt"_s, 412, evening.addSecs(7300)},
                   {u"Jupiter/Jupiter_RGB_001.ser"_s, 5368709178, evening.addSecs(9000)},
                   {u"Jupiter/Jupiter_RGB_002.SER"_s, 734003378, evening.addSecs(9300)}};
    return disk;
}

namespace endpoints {
namespace {

HttpReply pictureFile(SimulatedDevice &device, const Call &call)
{
    const QString kind = call.path.section(u'/', 2, 2);
    for (const Picture &picture : std::as_const(device.work().disk.pictures))
    {
        if (picture.name(kind) == call.argument)
        {
            return {.body = picture.file(kind), .headers = {{"Content-Type", "application/octet-stream"}}};
        }
    }
    return notFound();
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
    {"GET", lumarc, "/images/raw/*", pictureFile},
    {"GET", lumarc, "/images/full/*", pictureFile},
    {"GET", lumarc, "/images/thumbnails/*", pictureFile},
};

} // namespace

const std::span<const Endpoint> ofDisk = table;

} // namespace endpoints
