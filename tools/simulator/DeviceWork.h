// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QElapsedTimer>
#include <QList>
#include <QMap>
#include <QSize>
#include <QStringList>

#include <algorithm>
#include <optional>

/// Work that takes its time: from 0 to 100 percent, and steadily, by the clock.
struct TimedProgress
{
    /// How long all of it takes; with 0 it stands still until it is moved.
    int durationMs = 0;
    double basePercent = 0;
    QElapsedTimer clock = {};

    void begin() { setPercent(0); }
    /// Goes on from here.
    void setPercent(double percent)
    {
        basePercent = percent;
        clock.start();
    }
    /// As if it had never begun.
    void cancel() { *this = {durationMs}; }
    bool hasBegun() const { return clock.isValid(); }
    bool isRunning() const { return hasBegun() && !isDone(); }
    bool isDone() const { return percent() >= 100; }
    double percent() const
    {
        const double moved = hasBegun() && durationMs > 0 ? 100.0 * clock.elapsed() / durationMs : 0;
        return std::min(100.0, basePercent + moved);
    }
};

/// The system on a device and the ways to another one.
struct SoftwareState
{
    QString newestVersion;
    bool offersDelta = false;
    /// The versions it can start, in the order in which they came.
    QStringList systems;
    /// The version that the next start brings; empty: the same as now.
    QString pendingVersion = {};
    /// Whether it has asked for newer software since it was started.
    bool hasLooked = false;
    /// Whether an upgrade or a delta is under way.
    bool isBusy = false;
    /// Of this one, or of the last: 12 % a second.
    TimedProgress progress{8300};
};

/// One installed branch of an application.
struct ApplicationBranch
{
    QString id;
    QString branch;
    QString version;
    bool isActive = false;
};

/// The flatpak applications of a device.
struct ApplicationsState
{
    QList<ApplicationBranch> installed;
    /// What is being installed, or was last.
    QString id = {};
    QString branch = {};
    TimedProgress installation{6000};
    /// If not empty, an installation fails half-way and says this.
    QString failure = {};

    bool hasFailed() const { return !failure.isEmpty() && installation.percent() >= 50; }
    bool has(const QString &wantedId, const QString &wantedBranch) const;
};

/// What runs in the background of a device.
struct ServicesState
{
    QString rustdeskId;
    QString rustdeskPassword = {};
    /// By service: whether it starts with the device, and whether it runs.
    QMap<QString, bool> isEnabled = {{QStringLiteral("lumarc"), true}, {QStringLiteral("rustdesk"), false}};
    QMap<QString, bool> isActive = isEnabled;
    /// How long Lumarc is away from its port when it is restarted.
    int companionRestartMs = 1000;
    TimedProgress regeneration{4000};
};

struct NetworkState
{
    /// The second one is a dongle.
    QStringList wlans = {QStringLiteral("wlan0"), QStringLiteral("wlan1")};
    QString hotspotInterface = wlans.first();
    bool isDirectEthernet = false;
};

/// One picture. Its files are of the kinds "raw" (FITS), "full" and "thumbnails" (JPEG), and drawn when
/// somebody asks for them: always the same ones for the same seed, and the same stars at every size.
struct Picture
{
    QString uuid;
    QString filename;
    QDateTime date = {};
    QString object = {};
    /// "Light", or a frame without stars such as "Dark".
    QString frame = QStringLiteral("Light");
    /// Empty: there was none.
    QString filter = {};
    double exposureSeconds = 0;
    double ccdTemperature = 0;
    int binning = 1;
    quint32 seed = 0;
    /// Of the raw and of the full image. Sixty megapixels take a second or two to be drawn.
    QSize size = {640, 480};
    /// The form of the full image, "png" or "jpg".
    QString fullFormat = QStringLiteral("png");
    /// Bytes to deliver as the raw file in place of the drawn ones.
    std::optional<QByteArray> content = {};

    /// Where the companion service offers a file; and the end of that, not encoded.
    QString path(const QString &kind) const;
    QString name(const QString &kind) const;
    QByteArray file(const QString &kind) const;
    /// The size of the raw file, known without drawing it.
    qint64 rawBytes() const;
};

/// One recording. Devices list and delete them only, so their bytes do not exist.
struct Video
{
    /// Below the device's videos directory, or from the root on.
    QString path;
    qint64 sizeBytes = 0;
    QDateTime modified;
};

struct DiskState
{
    QString picturesDirectory;
    /// Device, mount point, and kind of file system of each drive.
    QList<QStringList> mounts;
    QList<Picture> pictures = {};
    QList<Video> videos = {};
    /// The name under which the device lists its pictures' files; empty: its address.
    QString urlHost = {};
    qint64 totalBytes = 127865454592;
    /// What everything but pictures and videos takes.
    qint64 systemBytes = 19327352832;

    /// Never more than there is.
    qint64 usedBytes() const;

    /// The disk of the n-th of a family of devices, counted from 0. Beside the videos lies one other file.
    static DiskState believable(int number, int pictureCount = 12, int videoCount = 6);
};

/// What a device has and does beside what it says of itself. The endpoints read and change it.
struct DeviceWork
{
    SoftwareState software;
    ApplicationsState applications;
    ServicesState services;
    DiskState disk;
    NetworkState network = {};
    /// Lists of applications and interfaces, and release notes, as earlier systems send them: bare.
    bool answersInOldShape = false;
    /// From the answer to a reboot or shutdown until the device is gone, and from there until it is back.
    int obeyMs = 200;
    int rebootMs = 4000;

    /// The work of the n-th of a family of devices, counted from 0.
    static DeviceWork believable(int number, const QString &version);

    /// Draws the consequences of what has come to its end; called before each answer.
    void settle();
    /// The start after a reboot or shutdown: jobs are lost, a prepared version becomes the running one.
    void restart(QString &version);
    /// The user's settings become those of a new device; systems, applications and files stay.
    void restoreSettings();
    void restoreNetwork();
};
