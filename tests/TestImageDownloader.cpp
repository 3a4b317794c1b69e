// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "images/ImageDownloader.h"
#include "images/LocalFile.h"
#include "simulator/SimulatedDevice.h"
#include "support/Log.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {
constexpr qsizetype mebibyte = qsizetype{1024} * 1024;
const QString device = u"http://127.0.0.1:3000/"_s;

QByteArray noise(qsizetype bytes)
{
    QByteArray noise(bytes + 4 - bytes % 4, Qt::Uninitialized);
    QRandomGenerator(1).generate(noise.begin(), noise.end());
    return noise.first(bytes);
}

QVariantMap image(const QString &name, const QString &raw, const QString &uuid = u"7"_s)
{
    return {{u"raw"_s, raw}, {u"metadata"_s, QVariantMap{{u"uuid"_s, uuid}, {u"filename"_s, name}}}};
}

Fault reply(const QByteArray &headers, const QByteArray &body)
{
    return Fault::raw("HTTP/1.1 200 OK\r\n" + headers + "\r\n" + body);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "cannot be read";
}
} // namespace

/// Pictures come home whole or not at all, whatever a device names them, and the batch goes on.
class TestImageDownloader : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void bringsAllBytesOrNone_data();
    void bringsAllBytesOrNone();
    void choosesItsFile_data();
    void choosesItsFile();
    void refusesWhatWindowsWouldMistake();
    void startsOnlyWhatItCan();
    void keepsNothingWithoutRoom();
    void cancels_data();
    void cancels();

private:
    void tell(const QString &line);
    bool fetch(const QVariantList &images);
    QString folder() const { return m_parent->filePath(u"new/pictures"_s); }
    QString path(const QString &name) const { return folder() + u'/' + name; }
    QStringList files() const { return QDir(folder()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
    QString ending(int count, int failed) const;

    std::unique_ptr<Log> m_log;
    std::unique_ptr<QTemporaryDir> m_parent;
    std::unique_ptr<SimulatedDevice> m_device;
    std::unique_ptr<ImageDownloader> m_downloader;
    /// What was told, in its order; and the start of a line at which the batch is cancelled.
    QStringList m_told;
    QString m_cancelAt;
};

void TestImageDownloader::init()
{
    m_downloader = std::make_unique<ImageDownloader>();
    m_log.reset();
    m_log = std::make_unique<Log>();
    m_parent = std::make_unique<QTemporaryDir>();
    m_device.reset();
    m_device = std::make_unique<SimulatedDevice>(QHostAddress(u"127.0.0.1"_s));
    QVERIFY(m_device->start());
    m_device->answer("", "bytes");
    m_told.clear();
    m_cancelAt = u"never"_s;
    const ImageDownloader *from = m_downloader.get();
    connect(from, &ImageDownloader::downloadProgress, this, [this](int current, int total, auto &name) {
        tell(u"progress %1/%2 "_s.arg(current).arg(total) + name);
    });
    connect(from, &ImageDownloader::fileDownloadFailed, this,
            [this](auto &name, auto &error) { tell(u"failed "_s + name + u": "_s + error); });
    connect(from, &ImageDownloader::downloadCompleted, this,
            [this](bool success, int count, int failed, auto &message) {
                tell(u"completed %1 %2 %3 "_s.arg(success).arg(count).arg(failed) + message);
            });
}

void TestImageDownloader::tell(const QString &line)
{
    m_told += line;
    if (line.startsWith(m_cancelAt))
        m_downloader->cancelDownload();
}

/// Starts a batch and waits for its end.
bool TestImageDownloader::fetch(const QVariantList &images)
{
    QSignalSpy completed(m_downloader.get(), &ImageDownloader::downloadCompleted);
    m_downloader->startDownload(folder(), images);
    return !completed.isEmpty() || completed.wait(20000);
}

QString TestImageDownloader::ending(int count, int failed) const
{
    const QString message = failed == 0
                                ? u"completed 1 %1 0 Successfully downloaded %1 image(s) to:\n"_s
                                : u"completed 0 %1 %2 Downloaded %1 image(s), %2 failed.\nSaved to:\n"_s;
    return (failed == 0 ? message.arg(count) : message.arg(count).arg(failed)) + folder();
}

void TestImageDownloader::bringsAllBytesOrNone_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("url");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QByteArray>("bytes"); // or, if they are not to come,
    QTest::addColumn<QString>("reason");   // what the reason ends in
    const auto named = [](const QString &name, const QByteArray &bytes) {
        QTest::addRow("%s, %lld", qPrintable(name), bytes.size())
            << name << device + u"x"_s << Fault::body(bytes) << bytes << QString();
    };
    const auto sent = [](const char *what, const Fault &fault, const QByteArray &bytes,
                         const QString &reason = {}) {
        QTest::newRow(what) << u"a.fits"_s << device + u"x"_s << fault << bytes << reason;
    };
    const auto linked = [](const QString &url, const QString &reason) {
        QTest::newRow(qPrintable(url)) << u"a.fits"_s << url << Fault() << QByteArray() << reason;
    };
    const QByteArray bytes = noise(3 * mebibyte + 1);
    named(u"a.fits"_s, "");
    named(u"a.fits"_s, QByteArray(1, '\0'));
    named(u"a.fits"_s, noise(64 * mebibyte));
    named(u"Ὠρίων и 猎户座 %1 #?.fits"_s, bytes);
    named(u"🔭👩‍🚀.fits"_s, bytes);
    named(u"..a\\b..c:"_s, bytes);
    named(u"é"_s.repeated(125) + u".fits"_s, bytes); // 255 bytes
    // What Qt compresses is what HTTP calls "deflate", behind four bytes of its own.
    sent("packed", reply("Content-Encoding: deflate\r\n", qCompress(bytes).sliced(4)), bytes);
    sent("length untold", reply("", bytes), bytes);
    sent("redirect", Fault::redirect("/elsewhere"), "bytes");
    const QString closed = u"Connection closed"_s;
    sent("404 with a body", Fault::answer(404, bytes), {}, u"server replied: Not Found"_s);
    sent("reset", Fault::drop(), {}, closed);
    sent("a byte short", reply("Content-Length: 6\r\n", "bytes"), {}, closed);
    sent("much short", reply("Content-Length: 99999999\r\n", bytes), {}, closed);
    sent("length only", reply("Content-Length: 6\r\n", ""), {}, closed);
    sent("no HTTP", Fault::broken(), {}, u""_s);
    sent("redirect to a file", Fault::redirect("file:///etc/hostname"), {}, u""_s);
    linked(u"http://127.0.0.1:9/"_s, u"Connection refused"_s);
    linked(u"file:///etc/hostname"_s, u"Protocol \"file\" is unknown"_s);
    linked(u"data:,bytes"_s, u"Protocol \"data\" is unknown"_s);
    linked(u"preconnect-http://127.0.0.1:3000"_s, u"Protocol \"preconnect-http\" is unknown"_s);
    linked(u"/etc/hostname"_s, u"Protocol \"\" is unknown"_s);
    linked(u"http://["_s, u""_s);
    linked(u"http://"_s, u""_s);
}

void TestImageDownloader::bringsAllBytesOrNone()
{
    QFETCH(const QString, name);
    QFETCH(const QString, url);
    QFETCH(const Fault, fault);
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, reason);
    m_device->setFault("/x", fault);
    QSignalSpy counted(m_downloader.get(), &ImageDownloader::downloadedImagesChanged);
    QVERIFY(fetch({image(u"b"_s, device + u"b"_s), image(name, url), image(u"c"_s, device + u"c"_s)}));
    const QString failure = m_told.value(2);
    QStringList told = {u"progress 1/3 b"_s, u"progress 2/3 "_s + name, u"progress 3/3 c"_s, ending(3, 0)};
    if (!reason.isNull())
        told = {told[0], told[1], failure, u"progress 2/3 c"_s, ending(2, 1)};
    QCOMPARE(m_told, told);
    QVERIFY2(reason.isNull() || failure.startsWith(u"failed a.fits: "_s), qPrintable(failure));
    QVERIFY2(reason.isNull() || failure.endsWith(reason), qPrintable(failure));
    QVERIFY(reason.isNull() ? contentOf(path(name)) == bytes : files() == QStringList({u"b"_s, u"c"_s}));
    QCOMPARE(contentOf(path(u"b"_s)) + contentOf(path(u"c"_s)), "bytesbytes");
    QCOMPARE(counted.size(), 0);
    QCOMPARE(m_log->lines().size(), 7);
    QCOMPARE(m_log->starting(u"warning: Download failed for \"a.fits\" : "_s).size(),
             reason.isNull() ? 0 : 1);
    QCOMPARE(m_device->requests("/b").first().header("User-Agent"), "Noctaris-ImageDownloader/1.0");
}

void TestImageDownloader::choosesItsFile_data()
{
    QTest::addColumn<QStringList>("there");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("file"); // none if the names are refused
    const auto row = [](const QStringList &there, const QStringList &names, const QString &file) {
        QTest::newRow(qPrintable(names.join(u' '))) << there << names << file;
    };
    row({u"pic"_s}, {u"pic"_s}, u"pic_1"_s);
    row({u"a.gz"_s, u"a_1.gz"_s}, {u"a.gz"_s}, u"a_2.gz"_s);
    row({u"a.b.c"_s}, {u"a.b.c"_s}, u"a.b_1.c"_s);
    row({u".hidden"_s}, {u".hidden"_s}, u".hidden_1"_s);
    row({u".a.b"_s}, {u".a.b"_s}, u".a_1.b"_s);
    row({}, {u"same"_s, u"same"_s}, u"same"_s);
    row({u"x"_s}, {u"."_s, u".."_s, u"../x"_s, u"/x"_s, u"x/y"_s, u"./y"_s, u"y\0"_s, u"y"_s.repeated(256)},
        {});
}

void TestImageDownloader::choosesItsFile()
{
    QFETCH(QStringList, there);
    QFETCH(const QStringList, names);
    QFETCH(const QString, file);
    QVERIFY(QDir().mkpath(folder()));
    for (const QString &name : std::as_const(there))
        QVERIFY(QFile(path(name)).open(QIODevice::WriteOnly));
    QVariantList images;
    QStringList failures;
    for (const QString &name : names)
    {
        const QString url = QString::number(images.size());
        m_device->answer("/" + url.toLatin1(), url.toLatin1());
        images += image(name, device + url);
        failures += u"failed "_s + name + u": Failed to create local file"_s;
    }
    QVERIFY(fetch(images));
    if (file.isEmpty())
        QCOMPARE(m_told, failures + QStringList(ending(0, int(names.size()))));
    else
        QCOMPARE(contentOf(path(file)), QByteArray::number(names.size() - 1));
    for (const QString &name : std::as_const(there))
        QCOMPARE(contentOf(path(name)), "");
    there += file;
    there.removeAll(QString());
    QCOMPARE(files(), there);
    QCOMPARE(QDir(m_parent->filePath(u"new"_s)).entryList(QDir::Files), QStringList());
}

void TestImageDownloader::refusesWhatWindowsWouldMistake()
{
    const auto windows = localfile::System::Windows;
    for (const char *name :
         {"..\\x", "\\x", "C:x", "a:b", "nul", "CON", "com1.fits", "Lpt9 .x.y", "COM¹", "x.", "x "})
        QVERIFY2(!localfile::staysInFolder(QString::fromUtf8(name), windows), name);
    for (const char *name : {"a.fits", ".hidden", "console", "com10", "null.fits", "a con", "..a"})
        QVERIFY2(localfile::staysInFolder(QString::fromUtf8(name), windows), name);
}

void TestImageDownloader::startsOnlyWhatItCan()
{
    const QVariantMap good = image(u"a"_s, device);
    const QString taken = m_parent->filePath(u"taken"_s);
    QVERIFY(QFile(taken).open(QIODevice::WriteOnly));
    m_downloader->cancelDownload();
    m_downloader->startDownload(folder(), {});
    QVERIFY(!QDir(folder()).exists());
    m_downloader->startDownload(taken, {good});
    m_downloader->startDownload({}, {good});
    m_downloader->startDownload(folder(),
                                {image({}, device), image(u"a"_s, {}), image(u"a"_s, device, {}), 5});
    const QString cannot = u"completed 0 0 0 Failed to create download directory: "_s;
    QCOMPARE(m_told, QStringList({u"completed 0 0 0 No images selected"_s, cannot + taken, cannot,
                                  u"completed 0 0 0 No valid images to download"_s}));
    m_downloader->startDownload(folder(), {good});
    m_downloader->startDownload(taken, {good, good});
    QTRY_COMPARE(m_told.mid(4), QStringList({u"progress 1/1 a"_s, ending(1, 0)}));
    QCOMPARE(m_log->count(u"warning: Download already in progress"_s), 1);
}

void TestImageDownloader::keepsNothingWithoutRoom()
{
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    const rlimit small = {mebibyte + 1, RLIM_INFINITY};
    const rlimit large = {RLIM_INFINITY, RLIM_INFINITY};
    m_device->answer("/big", noise(9 * mebibyte));
    setrlimit(RLIMIT_FSIZE, &small);
    const bool isOver = fetch({image(u"big"_s, device + u"big"_s), image(u"b"_s, device)});
    setrlimit(RLIMIT_FSIZE, &large);
    QVERIFY(isOver);
    QCOMPARE(m_told, QStringList({u"progress 1/2 big"_s, u"failed big: File too large"_s, u"progress 1/2 b"_s,
                                  ending(1, 1)}));
    QCOMPARE(files(), QStringList(u"b"_s));

    connect(
        m_downloader.get(), &ImageDownloader::currentFileNameChanged, this,
        [this] { QDir(folder()).removeRecursively(); }, Qt::QueuedConnection);
    m_told.clear();
    QVERIFY(fetch({image(u"c"_s, device), image(u"d"_s, device)}));
    QCOMPARE(m_told, QStringList({u"progress 1/2 c"_s, u"failed c: No such file or directory"_s,
                                  u"failed d: Failed to create local file"_s, ending(0, 2)}));
}

void TestImageDownloader::cancels_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("cancelAt");
    QTest::addColumn<QString>("counts");
    for (const bool isDestroyed : {false, true})
    {
        const auto row = [isDestroyed](const char *what, const Fault &fault, const QString &counts,
                                       const QString &cancelAt = u"never"_s) {
            QTest::addRow("%s%s", what, isDestroyed ? ", destroyed" : "") << fault << cancelAt << counts;
        };
        row("no answer yet", Fault::hold(), u"0 1"_s);
        row("bytes coming", Fault::huge(-1), u"0 1"_s);
        row("pause after a success", Fault(), u"1 0"_s);
        row("pause after a failure", Fault::drop(), u"0 1"_s);
        if (isDestroyed)
            break;
        row("told of the start", Fault::hold(), u"0 1"_s, u"progress"_s);
        row("told of the failure", Fault::drop(), u"0 1"_s, u"failed"_s);
    }
}

void TestImageDownloader::cancels()
{
    QFETCH(const Fault, fault);
    QFETCH(const QString, counts);
    QFETCH(const QString, cancelAt);
    m_cancelAt = cancelAt;
    Fault first = fault;
    if (!first.instead)
        first.instead = HttpReply{.body = "bytes"};
    m_device->setFault("/a", first);
    m_downloader->startDownload(folder(), {image(u"a"_s, device + u"a"_s), image(u"b"_s, device + u"b"_s)});
    QTRY_VERIFY(m_told.size() > 1 || m_device->heldCount() > 0 ||
                m_log->count(u"Successfully downloaded: \"a\""_s) > 0 ||
                m_downloader->currentFileProgress() > mebibyte);
    const bool isDestroyed = QByteArray(QTest::currentDataTag()).endsWith("destroyed");
    isDestroyed ? m_downloader.reset() : m_downloader->cancelDownload();
    QCOMPARE(m_told.last(), u"completed 0 %1 Download cancelled by user"_s.arg(counts));
    QCOMPARE(m_told.size(), counts == u"1 0"_s ? 2 : 3);
    QCOMPARE(files(), counts == u"1 0"_s ? QStringList(u"a"_s) : QStringList());
    if (isDestroyed)
        return;
    // What is left of a pause must not start the second file beside the first.
    m_told.clear();
    m_cancelAt = u"never"_s;
    m_device->hold("/c");
    m_downloader->startDownload(folder(), {image(u"c"_s, device + u"c"_s), image(u"d"_s, device + u"d"_s)});
    QTest::qWait(300);
    QCOMPARE(m_told, QStringList(u"progress 1/2 c"_s));
    QCOMPARE(m_device->release("/c", Fault::body("c")), 1);
    QTRY_COMPARE(m_told.mid(1), QStringList({u"progress 2/2 d"_s, ending(2, 0)}));
    QCOMPARE(m_device->requestCount("/b"), 0);
}

QTEST_GUILESS_MAIN(TestImageDownloader)
#include "TestImageDownloader.moc"
