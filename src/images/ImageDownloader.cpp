// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "images/ImageDownloader.h"

#include "images/LocalFile.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStandardPaths>
#include <QUrl>
#include <QVariantMap>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {
constexpr int pauseMs = 100;
/// What a reply reads ahead. Without a limit it would take the whole of a file that comes faster than the
/// disk writes; a larger one is not faster, and has each piece hold up the interface for longer.
constexpr qint64 readAheadBytes = qint64{1024} * 1024;
constexpr qint64 pieceBytes = qint64{128} * 1024;

QString defaultDirectory()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return (pictures.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::HomeLocation) : pictures) +
           "/NoctarisImages"_L1;
}

/// How many bytes of body a reply announced; 0 if it did not, or meant them as they were packed on the way.
qint64 announcedBytes(const QNetworkReply &reply)
{
    if (reply.hasRawHeader("Content-Encoding") || reply.hasRawHeader("Transfer-Encoding"))
        return 0;
    return reply.header(QNetworkRequest::ContentLengthHeader).toLongLong();
}
} // namespace

ImageDownloader::ImageDownloader(QObject *parent)
    : QObject(parent),
      m_networkManager(new QNetworkAccessManager(this)),
      m_downloadDirectory(defaultDirectory())
{
    // A device stands on the user's own network; a proxy could not reach it.
    m_networkManager->setProxy(QNetworkProxy::NoProxy);
    m_pauseTimer.setSingleShot(true);
    m_pauseTimer.setTimerType(Qt::PreciseTimer);
    m_pauseTimer.setInterval(pauseMs);
    connect(&m_pauseTimer, &QTimer::timeout, this, &ImageDownloader::downloadNext);
}

ImageDownloader::~ImageDownloader()
{
    cancelDownload();
}

/// Stores a value and notifies of it, if it is another one.
template <typename T>
void ImageDownloader::store(T &field, const T &value, void (ImageDownloader::*changed)())
{
    if (field == value)
        return;
    field = value;
    emit(this->*changed)();
}

void ImageDownloader::setDownloadDirectory(const QString &dir)
{
    store(m_downloadDirectory, dir, &ImageDownloader::downloadDirectoryChanged);
}

void ImageDownloader::setIsDownloading(bool isDownloading)
{
    store(m_isDownloading, isDownloading, &ImageDownloader::isDownloadingChanged);
}

void ImageDownloader::startDownload(const QString &downloadDir, const QVariantList &selectedImages)
{
    if (m_isDownloading)
    {
        qWarning() << "Download already in progress";
        return;
    }
    if (selectedImages.isEmpty())
    {
        emit downloadCompleted(false, 0, 0, u"No images selected"_s);
        return;
    }
    setDownloadDirectory(downloadDir);
    // No folder at all would mean the root of the file system.
    if (downloadDir.isEmpty() || !QDir().mkpath(downloadDir))
    {
        emit downloadCompleted(false, 0, 0, u"Failed to create download directory: "_s + downloadDir);
        return;
    }
    m_downloadedImages = 0;
    m_failedImages = 0;
    m_cancelled = false;
    m_downloadQueue = queueOf(selectedImages);
    store(m_totalImages, static_cast<int>(m_downloadQueue.size()), &ImageDownloader::totalImagesChanged);
    if (m_totalImages == 0)
    {
        emit downloadCompleted(false, 0, 0, u"No valid images to download"_s);
        return;
    }
    qDebug() << "Starting download of" << m_totalImages << "images to" << m_downloadDirectory;
    setIsDownloading(true);
    downloadNext();
}

/// What is to be fetched of the images. Paths are chosen before the first file comes, so of two images with
/// one name the later takes the place of the earlier.
QQueue<ImageDownloader::DownloadItem> ImageDownloader::queueOf(const QVariantList &images) const
{
    QQueue<DownloadItem> queue;
    for (const QVariant &image : images)
    {
        const QVariantMap fields = image.toMap();
        const QVariantMap metadata = fields.value(u"metadata"_s).toMap();
        DownloadItem item = {.uuid = metadata.value(u"uuid"_s).toString(),
                             .filename = metadata.value(u"filename"_s).toString(),
                             .url = fields.value(u"raw"_s).toString(),
                             .localPath = {}};
        if (item.uuid.isEmpty() || item.filename.isEmpty() || item.url.isEmpty())
            continue;
        item.localPath = localfile::freePath(m_downloadDirectory, item.filename);
        queue.enqueue(item);
    }
    return queue;
}

void ImageDownloader::downloadNext()
{
    if (m_cancelled)
        return;
    if (m_downloadQueue.isEmpty())
    {
        completeBatch();
        return;
    }
    const DownloadItem item = m_downloadQueue.dequeue();
    store(m_currentFileName, item.filename, &ImageDownloader::currentFileNameChanged);
    store(m_currentFileProgress, qint64{0}, &ImageDownloader::currentFileProgressChanged);
    store(m_currentFileSize, qint64{0}, &ImageDownloader::currentFileSizeChanged);
    // Whoever was told so may have cancelled.
    if (m_cancelled)
        return;
    qDebug() << "Downloading:" << item.filename << "from" << item.url;
    if (!openFile(item))
    {
        qWarning() << "Failed to create file:" << item.localPath;
        ++m_failedImages;
        m_pauseTimer.start();
        emit fileDownloadFailed(item.filename, u"Failed to create local file"_s);
        return;
    }
    requestFile(item.url);
    emit downloadProgress(m_downloadedImages + 1, m_totalImages, item.filename);
}

void ImageDownloader::completeBatch()
{
    setIsDownloading(false);
    const QString downloaded = QString::number(m_downloadedImages);
    const QString message =
        m_failedImages == 0
            ? u"Successfully downloaded %1 image(s) to:\n%2"_s.arg(downloaded, m_downloadDirectory)
            : u"Downloaded %1 image(s), %2 failed.\nSaved to:\n%3"_s.arg(
                  downloaded, QString::number(m_failedImages), m_downloadDirectory);
    emit downloadCompleted(m_failedImages == 0, m_downloadedImages, m_failedImages, message);
}

bool ImageDownloader::openFile(const DownloadItem &item)
{
    if (!localfile::staysInFolder(item.filename))
        return false;
    m_currentFile = new QFile(item.localPath, this);
    // Without a buffer, for a write that fails is to be known at once.
    if (m_currentFile->open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return true;
    releaseFile();
    return false;
}

void ImageDownloader::requestFile(const QString &url)
{
    m_failure.clear();
    m_headCount = 0;
    QNetworkRequest request{QUrl(url)};
    const QString scheme = request.url().scheme();
    if (scheme != "http"_L1 && scheme != "https"_L1)
    {
        // The manager would also read this computer's own files. Asked for nothing, it only fails.
        m_failure = u"Protocol \"%1\" is unknown"_s.arg(scheme);
        request.setUrl({});
    }
    request.setRawHeader("User-Agent", "Noctaris-ImageDownloader/1.0");
    // Each file has a connection of its own. On one that served before, the manager repeats a request when
    // the device breaks off, and may then take the piece it has for the whole. Nothing else is under way.
    m_networkManager->clearConnectionCache();
    m_currentReply = m_networkManager->get(request);
    m_currentReply->setReadBufferSize(readAheadBytes);
    connect(m_currentReply, &QNetworkReply::metaDataChanged, this, &ImageDownloader::onHeadReceived);
    connect(m_currentReply, &QNetworkReply::finished, this, &ImageDownloader::onDownloadFinished);
    connect(m_currentReply, &QNetworkReply::downloadProgress, this, &ImageDownloader::onDownloadProgress);
    connect(m_currentReply, &QNetworkReply::readyRead, this, &ImageDownloader::onDownloadReadyRead);
}

void ImageDownloader::onHeadReceived()
{
    const int status =
        m_currentReply ? m_currentReply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() : 0;
    const bool isRedirect = status / 100 == 3;
    m_headCount += isRedirect ? 0 : 1;
}

void ImageDownloader::onDownloadReadyRead()
{
    if (!m_currentFile || !m_currentReply)
        return;
    writeAvailable();
    // The rest could not be kept either. This ends in onDownloadFinished().
    if (!m_failure.isEmpty())
        m_currentReply->abort();
}

void ImageDownloader::writeAvailable()
{
    // In pieces that the processor still has at hand when they are written.
    std::array<char, pieceBytes> piece; // NOLINT(cppcoreguidelines-pro-type-member-init): about to be filled
    qint64 count = 0;
    while ((count = m_currentReply->read(piece.data(), pieceBytes)) > 0)
        writePiece(piece.data(), count);
}

void ImageDownloader::writePiece(const char *bytes, qint64 count)
{
    qint64 written = 0;
    // A disk that fills up takes a part first, and gives its reason only for what comes behind it.
    while (m_failure.isEmpty() && written < count)
    {
        const qint64 taken = m_currentFile->write(bytes + written, count - written);
        written += taken;
        if (taken <= 0)
            m_failure = m_currentFile->errorString();
    }
}

void ImageDownloader::onDownloadProgress(qlonglong bytesReceived, qlonglong bytesTotal)
{
    store(m_currentFileProgress, qint64{bytesReceived}, &ImageDownloader::currentFileProgressChanged);
    store(m_currentFileSize, qint64{bytesTotal}, &ImageDownloader::currentFileSizeChanged);
}

void ImageDownloader::onDownloadFinished()
{
    if (!m_currentReply)
        return;
    const QString name = m_currentFileName;
    const QString failure = closeFile();
    if (failure.isEmpty())
    {
        // Nobody is notified: see downloadedImagesChanged().
        ++m_downloadedImages;
        qDebug() << "Successfully downloaded:" << name;
    }
    else
    {
        qWarning() << "Download failed for" << name << ":" << failure;
        ++m_failedImages;
        m_currentFile->remove();
    }
    releaseFile();
    std::exchange(m_currentReply, nullptr)->deleteLater();
    m_pauseTimer.start();
    // Last, for whoever is told so may cancel the batch.
    if (!failure.isEmpty())
        emit fileDownloadFailed(name, failure);
}

/// Writes what is left and closes the current file. Returns why it is not what the device has; empty if
/// it is.
QString ImageDownloader::closeFile()
{
    if (m_currentReply->error() == QNetworkReply::NoError)
        writeAvailable();
    const qint64 written = m_currentFile->pos();
    m_currentFile->close();
    if (!m_failure.isEmpty())
        return m_failure;
    if (m_currentReply->error() != QNetworkReply::NoError)
        return m_currentReply->errorString();
    if (m_currentFile->error() != QFileDevice::NoError)
        return m_currentFile->errorString();
    // A second head comes of an answer that broke off: the manager asked again, and no longer knows what is
    // missing.
    if (written < announcedBytes(*m_currentReply) || m_headCount > 1)
        return u"Connection closed"_s;
    // A file whose folder was deleted meanwhile took every byte, and is nowhere.
    QFile kept(m_currentFile->fileName());
    return kept.open(QIODevice::ReadOnly) ? QString() : kept.errorString();
}

void ImageDownloader::releaseFile()
{
    if (!m_currentFile)
        return;
    m_currentFile->close();
    m_currentFile->deleteLater();
    m_currentFile = nullptr;
}

void ImageDownloader::cancelDownload()
{
    // The end of the current file, which is told before the batch's own, is no time to cancel again.
    if (!m_isDownloading || m_cancelled)
        return;
    qDebug() << "Cancelling download...";
    m_cancelled = true;
    if (m_currentReply)
        m_currentReply->abort();
    releaseFile();
    // A pause that went on would end in the middle of the next batch.
    m_pauseTimer.stop();
    m_downloadQueue.clear();
    setIsDownloading(false);
    emit downloadCompleted(false, m_downloadedImages, m_failedImages, u"Download cancelled by user"_s);
}
