// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QQueue>
#include <QString>
#include <QTimer>
#include <QVariantList>

class QFile;
class QNetworkAccessManager;
class QNetworkReply;

/// Brings pictures from a device into a folder, one at a time and in their order. A file is either there
/// with all of its bytes or not there at all, and one that fails does not keep the others from coming.
class ImageDownloader : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isDownloading READ isDownloading NOTIFY isDownloadingChanged)
    Q_PROPERTY(int totalImages READ totalImages NOTIFY totalImagesChanged)
    Q_PROPERTY(int downloadedImages READ downloadedImages NOTIFY downloadedImagesChanged)
    Q_PROPERTY(QString currentFileName READ currentFileName NOTIFY currentFileNameChanged)
    Q_PROPERTY(qlonglong currentFileProgress READ currentFileProgress NOTIFY currentFileProgressChanged)
    Q_PROPERTY(qlonglong currentFileSize READ currentFileSize NOTIFY currentFileSizeChanged)
    Q_PROPERTY(QString downloadDirectory READ downloadDirectory WRITE setDownloadDirectory NOTIFY
                   downloadDirectoryChanged)

public:
    explicit ImageDownloader(QObject *parent = nullptr);
    /// Cancels a batch that is running, with all that goes with it.
    ~ImageDownloader() override;

    bool isDownloading() const { return m_isDownloading; }
    /// The size of the batch; like the count of downloaded files it stays until the next one.
    int totalImages() const { return m_totalImages; }
    int downloadedImages() const { return m_downloadedImages; }
    QString currentFileName() const { return m_currentFileName; }
    /// Bytes of the current file that have come so far.
    qlonglong currentFileProgress() const { return m_currentFileProgress; }
    /// Bytes that the current file will have; -1 while the device has not told.
    qlonglong currentFileSize() const { return m_currentFileSize; }
    /// The folder that the files go to, at first one in the user's pictures. Nothing creates it before a
    /// batch needs it.
    QString downloadDirectory() const { return m_downloadDirectory; }

public slots:
    void setDownloadDirectory(const QString &dir);
    /// Starts a batch. An image is a map: "raw" is the URL of its file, and "metadata" a map with its
    /// "uuid" and "filename"; one that lacks any of them is left out.
    void startDownload(const QString &downloadDir, const QVariantList &selectedImages);
    void cancelDownload();

signals:
    void isDownloadingChanged();
    void totalImagesChanged();
    /// Never comes: the count is told by downloadProgress() and downloadCompleted().
    void downloadedImagesChanged();
    void currentFileNameChanged();
    void currentFileProgressChanged();
    void currentFileSizeChanged();
    void downloadDirectoryChanged();
    /// The end of a batch, or the reason why none starts.
    void downloadCompleted(bool success, int successCount, int failCount, const QString &message);
    /// A file starts: the number of files that are there, and one; failed ones are not counted.
    void downloadProgress(int current, int total, const QString &filename);
    void fileDownloadFailed(const QString &filename, const QString &error);

private slots:
    void onDownloadFinished();
    void onDownloadProgress(qlonglong bytesReceived, qlonglong bytesTotal);
    void onDownloadReadyRead();
    void onHeadReceived();

private:
    struct DownloadItem
    {
        QString uuid;
        QString filename;
        QString url;
        QString localPath;
    };

    QQueue<DownloadItem> queueOf(const QVariantList &images) const;
    void downloadNext();
    void completeBatch();
    bool openFile(const DownloadItem &item);
    void requestFile(const QString &url);
    void writeAvailable();
    void writePiece(const char *bytes, qint64 count);
    QString closeFile();
    void releaseFile();

    template <typename T> void store(T &field, const T &value, void (ImageDownloader::*changed)());
    void setIsDownloading(bool isDownloading);

    QNetworkAccessManager *m_networkManager;
    QNetworkReply *m_currentReply = nullptr;
    QFile *m_currentFile = nullptr;
    QQueue<DownloadItem> m_downloadQueue;
    bool m_isDownloading = false;
    int m_totalImages = 0;
    int m_downloadedImages = 0;
    int m_failedImages = 0;
    QString m_currentFileName;
    qint64 m_currentFileProgress = 0;
    qint64 m_currentFileSize = 0;
    QString m_downloadDirectory;
    bool m_cancelled = false;
    /// Why the current file fails, whatever becomes of its reply; empty if nothing speaks against it.
    QString m_failure;
    /// How many answers began for the current file, those apart that send elsewhere.
    int m_headCount = 0;
    QTimer m_pauseTimer;
};
