// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "screenshots/Photographer.h"

#include "measure/Measure.h"
#include "simulator/SimulatedDevice.h"

#include <QJsonArray>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {
const QString rollbackDialog = u"rollbackDialogLoader"_s;
const QString imagesViewer = u"imagesViewerLoader"_s;
const QString videosViewer = u"videosViewerLoader"_s;
const QString longWord = u"Orion_Molecular_Cloud_Complex_"_s;
const QString longText = u"The system on the device is older than the one that wrote its settings. "_s;
} // namespace

void Photographer::closeViewers()
{
    for (const QString &name : {rollbackDialog, imagesViewer, videosViewer})
        m_program.part(name)->setProperty("active", false);
    // They are gone with the next events.
    measure::pass(0);
}

QObject *Photographer::takeOpened(const QString &loaderName, const QString &name, const QByteArray &heldKey)
{
    closeViewers();
    if (!heldKey.isEmpty())
        firstDevice().hold(heldKey);
    QObject *loader = m_program.part(loaderName);
    loader->setProperty("active", true);
    auto *part = loader->property("item").value<QObject *>();
    if (heldKey.isEmpty())
        awaitValue(part, "isLoading", false);
    take(name, Use::Checks);
    firstDevice().release(heldKey);
    awaitValue(part, "isLoading", false);
    return part;
}

bool Photographer::takeViewers()
{
    const DeviceWork kept = firstDevice().work();
    takeRollback();
    takeImages();
    takeImageAnswers();
    takeVideos();
    closeViewers();
    firstDevice().clearFaults();
    firstDevice().work() = kept;
    return m_isAllReached;
}

/// A switch, from the choice to the question that it ends in. Then more versions and notes than there is room
/// for, on a device that does not want to switch, and a device with nothing to switch to.
void Photographer::takeRollback()
{
    SimulatedDevice &device = firstDevice();
    const QByteArray apply = "/api/software/delta/rollback";
    const QObject *dialog =
        takeOpened(rollbackDialog, u"rollback-loading"_s, "/api/software/delta/subvolumes");
    take(u"rollback"_s);
    device.hold(apply);
    press(u"switchButton"_s, u"RollbackDialog"_s);
    take(u"rollback-preparing"_s, Use::Checks);
    device.release(apply);
    awaitValue(dialog, "pendingReboot", true);
    take(u"rollback-question"_s, Use::Checks);
    dialog->findChild<QObject *>(u"rebootConfirmDialog"_s)->setProperty("visible", false);
    take(u"rollback-prepared"_s, Use::Checks);

    QStringList &systems = device.work().software.systems;
    for (int number = 0; number < 40; ++number)
        systems.append(u"1.%1.0-beta+20250314"_s.arg(number));
    QJsonObject notes;
    const QJsonObject entry{{u"release_title"_s, longText},
                            {u"changelog"_s, QJsonArray{{longText.repeated(3), longWord.repeated(9)}}}};
    for (const QString &version : std::as_const(systems))
        notes[version] = entry;
    device.answer("/api/software/delta/changelogs", HttpReply::json(notes).body);
    device.answer(apply, HttpReply::json({{u"result"_s, false}, {u"message"_s, longText.repeated(20)}}).body);
    dialog = takeOpened(rollbackDialog, u"rollback-many"_s);
    press(u"switchButton"_s, u"RollbackDialog"_s);
    awaitValue(dialog, "isPreparing", false);
    take(u"rollback-error"_s, Use::Checks);
    systems.clear();
    takeOpened(rollbackDialog, u"rollback-none"_s);
}

/// The gallery, then one picture, large, and what is said above it.
void Photographer::takeImages()
{
    firstDevice().work().disk = DiskState::believable(0, 7);
    const QList<Picture> &pictures = firstDevice().work().disk.pictures;
    QObject *viewer = takeOpened(imagesViewer, u"images-loading"_s, "GET /images");
    auto *downloader = viewer->property("imageDownloader").value<QObject *>();
    downloader->setProperty("downloadDirectory", u"/home/ada/Pictures/Noctaris"_s);
    take(u"images-idle"_s, Use::Checks);
    for (const int index : {0, 2, 3})
        QMetaObject::invokeMethod(viewer, "toggleSelection", Q_ARG(QString, pictures.at(index).uuid));
    take(u"images"_s);
    press(u"deleteButton"_s, u"ImagesViewer"_s);
    take(u"images-question"_s, Use::Checks);
    press(u"cancelButton"_s, u"confirmDeleteDialog"_s);

    QMetaObject::invokeMethod(viewer, "showFullImage", Q_ARG(QString, pictures.at(1).uuid), Q_ARG(int, 1));
    take(u"image-alone"_s, Use::Checks);
    auto *full = m_program.part(u"fullImageViewer"_s);
    full->setProperty("showInfo", true);
    take(u"image"_s);
    // Made visible like this, a notification stays until all pictures are taken.
    auto *notification = m_program.part(u"floatingNotification"_s);
    notification->setProperty("message", longText.repeated(2));
    notification->setProperty("opacity", 1);
    take(u"image-notification"_s, Use::Checks);
    notification->setProperty("opacity", 0);
    firstDevice().setFault(pictures.at(2).path(u"full"_s).toLatin1(), Fault::status(404));
    QMetaObject::invokeMethod(full, "showImageAtIndex", Q_ARG(int, 2));
    take(u"image-failed"_s, Use::Checks);
    press(u"deleteImageButton"_s, u"fullImageViewer"_s);
    take(u"image-question"_s, Use::Checks);
}

/// No answer, no thumbnails, no pictures; then some with long names on a disk that is almost full, and their
/// download.
void Photographer::takeImageAnswers()
{
    SimulatedDevice &device = firstDevice();
    DiskState &disk = device.work().disk;
    device.setFault("GET /images", Fault::drop());
    takeOpened(imagesViewer, u"images-error"_s);
    device.clearFaults();
    // Pictures that nobody has seen yet, or they would be shown from memory.
    disk = DiskState::believable(7, 30);
    for (qsizetype index = 0; index < disk.pictures.size(); index += 2)
        device.setFault(disk.pictures.at(index).path(u"thumbnails"_s).toLatin1(), Fault::status(404));
    takeOpened(imagesViewer, u"images-partial"_s);
    disk.pictures.clear();
    takeOpened(imagesViewer, u"images-empty"_s);

    disk = DiskState::believable(0, 12);
    for (Picture &picture : disk.pictures)
    {
        picture.filename.prepend(longWord.repeated(6));
        picture.filter = longWord.repeated(2);
    }
    disk.totalBytes = disk.usedBytes() / 100 * 101;
    device.clearFaults();
    QObject *viewer = takeOpened(imagesViewer, u"images-long"_s);
    const QTemporaryDir folder;
    auto *downloader = viewer->property("imageDownloader").value<QObject *>();
    downloader->setProperty("downloadDirectory", folder.filePath(longWord.repeated(8)));
    const QByteArray third = disk.pictures.at(2).path(u"raw"_s).toLatin1();
    device.hold(third);
    QMetaObject::invokeMethod(viewer, "selectAll");
    press(u"downloadButton"_s, u"ImagesViewer"_s);
    awaitValue(viewer, "completedDownloadFiles", 3);
    take(u"images-downloading"_s, Use::Checks);
    QMetaObject::invokeMethod(viewer, "showFullImage", Q_ARG(QString, disk.pictures.at(2).uuid),
                              Q_ARG(int, 2));
    auto *full = m_program.part(u"fullImageViewer"_s);
    full->setProperty("showInfo", true);
    take(u"image-long"_s, Use::Checks);
    full->setProperty("visible", false);
    device.release(third);
    awaitValue(downloader, "isDownloading", false);
    take(u"images-downloaded"_s, Use::Checks);
}

/// A few videos, then many deep in the tree, on a device that does not delete all of them.
void Photographer::takeVideos()
{
    SimulatedDevice &device = firstDevice();
    DiskState &disk = device.work().disk;
    disk = DiskState::believable(0);
    QObject *viewer = takeOpened(videosViewer, u"videos-loading"_s, "/api/info/directoryfolders");
    const QVariantList videos = viewer->property("videosData").toList();
    for (const int index : {0, 2})
        QMetaObject::invokeMethod(viewer, "toggleSelection",
                                  Q_ARG(QString, videos.at(index).toMap()[u"path"_s].toString()));
    take(u"videos"_s, Use::Checks);
    press(u"videosDirectoryButton"_s, u"VideosViewer"_s);
    take(u"videos-editing"_s, Use::Checks);
    disk.videos.clear();
    takeOpened(videosViewer, u"videos-empty"_s);

    disk = DiskState::believable(0, 0, 60);
    for (Video &video : disk.videos)
        video.path.prepend(longWord.repeated(6) + u'/');
    const QByteArray remove = "/api/system/deletefile";
    viewer = takeOpened(videosViewer, u"videos-long"_s);
    device.hold(remove);
    QMetaObject::invokeMethod(viewer, "selectAll");
    press(u"deleteButton"_s, u"VideosViewer"_s);
    press(u"confirmButton"_s, u"confirmDeleteDialog"_s);
    const QObject *progress = m_program.part(u"deleteProgressDialog"_s);
    for (int index = 1; index < 13; ++index)
    {
        awaitValue(progress, "currentIndex", index);
        measure::waitUntil([&] { return device.heldCount(remove) == 1; }, answerMs);
        device.releaseOne(remove);
    }
    take(u"videos-deleting"_s, Use::Checks);
    device.release(remove);
    device.answer(remove, HttpReply::json({{u"result"_s, false}}).body);
    awaitValue(progress, "visible", false);
    take(u"videos-failures"_s, Use::Checks);
}
