// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/Documents.h"
#include "app/MessageHandler.h"
#include "devices/DeviceDiscovery.h"
#include "theme/ThemeManager.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <csignal>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
const QString executable = QStringLiteral(NOCTARIS_TOOLS);
constexpr int patienceMs = 30000;

/// The program as a user starts it, in a network where only its own machine has an address: 10.77.0.1,
/// which refuses connections. So its probe of that address fails at once, and says so four times.
class Program : public QProcess
{
public:
    explicit Program(const QString &home)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const auto *name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
            environment.insert(QLatin1StringView(name), home);
        setProcessEnvironment(environment);
        setWorkingDirectory(home);
    }
    ~Program() override
    {
        kill();
        waitForFinished();
    }

    void startWith(const QStringList &arguments, const QString &file = executable)
    {
        start(QStringLiteral(IN_PRIVATE_NETWORK),
              QStringList{u"--subnet"_s, u"10.77.0.1/28"_s, file} + arguments);
    }

    /// Its lines, without the time in front.
    QStringList log()
    {
        m_log += QString::fromUtf8(readAllStandardError());
        QStringList lines = m_log.left(m_log.lastIndexOf(u'\n')).split(u'\n', Qt::SkipEmptyParts);
        static const QRegularExpression time(uR"(^\[\d\d:\d\d:\d\d\.\d{3}\] )"_s);
        return lines.replaceInStrings(time, QString());
    }
    qsizetype count(const QString &start)
    {
        return log().filter(QRegularExpression(u"^[A-Z]+: "_s + QRegularExpression::escape(start))).size();
    }
    bool isUp() { return count(u"Network error for \"10.77.0.1\""_s) >= 4; }
    QString written() const { return m_log; }

private:
    QString m_log;
};
} // namespace

/// Start, log and end of the real executable.
class TestProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();
    // First, for ThreadSanitizer lets no thread start once a process of several has been forked.
    void versionAndWindow();
    void saysLittleByItself();
    void logLinesAtStart();
    void endsWithoutAWindow();
    void logForms();

private:
    std::unique_ptr<QTemporaryDir> m_home;
};

void TestProgram::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_home->path()));
}

/// Through a whole search by multicast DNS until the deep scan: what is always written, and nothing else.
/// The executable needs nothing of its folder, and what only looks like the option is none.
void TestProgram::saysLittleByItself()
{
    const QString copy = m_home->filePath(u"copy"_s);
    QVERIFY(QFile::copy(executable, copy));
    Program program(m_home->path());
    program.startWith({u"-V"_s, u"--VERBOSE"_s, u"--verb"_s, u"--verbose=1"_s, u"verbose"_s}, copy);
    QTRY_COMPARE_WITH_TIMEOUT(program.count(u"Scanning network:"_s), 1, patienceMs);
    QStringList lines = program.log().filter(QRegularExpression(u"^(DEBUG|INFO): "_s)).mid(0, 6);
    QCOMPARE(lines.size(), 6);
    std::sort(lines.begin(), lines.begin() + 4);
    const QString error = u"DEBUG: Network error for \"10.77.0.1\" \"%1\" : \"Connection refused\" (:0, )"_s;
    QCOMPARE(lines,
             QStringList({error.arg("hostname"_L1), error.arg("machine_id"_L1), error.arg("model"_L1),
                          error.arg("version"_L1),
                          u"DEBUG: Starting network scan (brute force discovery) (:0, )"_s,
                          u"DEBUG: Scanning network: \"10.77.0.0\" to \"10.77.0.15\" size: 15 (:0, )"_s}));
    QVERIFY2(program.count(u"Failed to load"_s) == 0, qPrintable(program.written()));
}

void TestProgram::logLinesAtStart()
{
    Program program(m_home->path());
    program.startWith({u"foo"_s, u"--help"_s, u"--verbose"_s});
    QTRY_VERIFY_WITH_TIMEOUT(program.isUp(), patienceMs);
    QTRY_COMPARE(program.count(u"Starting mDNS service lookup for type: \"_http._tcp.local\""_s), 1);
    // The program's own lines name no place in its sources. The one warning of a start names its document:
    // the page's downloader is bound to itself.
    QStringList warnings = program.log();
    warnings.removeIf([](const QString &line) {
        return (line.startsWith("DEBUG: "_L1) || line.startsWith("INFO: "_L1)) && line.endsWith(" (:0, )"_L1);
    });
    const QString document = QRegularExpression::escape(documents::mainDocument().toString());
    // Newer Qt adds the place of the binding on a line of its own.
    const QRegularExpression warning(
        u"^WARNING: [^ ]+ QML SettingsPage: Binding loop detected for property \"imageDownloader\"(: [^ ]+)? "
        "\\(%1:[1-9]\\d*, \\)$"_s.arg(document));
    QVERIFY2(warning.match(warnings.join(u' ')).hasMatch(), qPrintable(program.written()));

    program.terminate();
    QVERIFY(program.waitForFinished(5000));
    QCOMPARE(program.exitCode(), SIGTERM);
}

/// A broken installation: a module that the main document needs names a document that is not there.
void TestProgram::endsWithoutAWindow()
{
    QVERIFY(QDir(m_home->path()).mkpath(u"QtQuick/Layouts"_s));
    QFile module(m_home->filePath(u"QtQuick/Layouts/qmldir"_s));
    QVERIFY(module.open(QIODevice::WriteOnly));
    module.write("module QtQuick.Layouts\nRowLayout 1.0 Missing.qml\n");
    module.close();
    Program program(m_home->path());
    QProcessEnvironment environment = program.processEnvironment();
    environment.insert(u"QML2_IMPORT_PATH"_s, m_home->path());
    program.setProcessEnvironment(environment);
    program.startWith({u"-v"_s});
    QTRY_COMPARE_WITH_TIMEOUT(program.state(), QProcess::NotRunning, patienceMs);
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 255);
    QCOMPARE(program.count(u"Failed to load from resource, trying module import..."_s), 1);
    QCOMPARE(program.count(u"Starting device discovery"_s), 1);
}

/// A main document that is not where it should be is had from its module. Closing the window ends it all.
void TestProgram::versionAndWindow()
{
    documents::prepareApplication();
    documents::registerTypes();
    ThemeManager themeManager;
    DeviceDiscovery deviceDiscovery;
    QQmlApplicationEngine engine;
    documents::publish(engine, deviceDiscovery, themeManager);
    documents::loadMain(engine, QUrl(u"qrc:/elsewhere/Main.qml"_s));
    QCOMPARE(engine.rootContext()->contextProperty(u"appVersion"_s), QVariant(u"2.4.4"_s));

    QCOMPARE(engine.rootObjects().size(), 1);
    auto *window = qobject_cast<QWindow *>(engine.rootObjects().first());
    QVERIFY(window);
    QTimer::singleShot(0, window, &QWindow::close);
    QTimer::singleShot(patienceMs, &engine, [] { QCoreApplication::exit(1); });
    QCOMPARE(QGuiApplication::exec(), 0);
}

/// Writes a message of each kind through the program's log and dies of the last one.
static void speakAndDie()
{
    qInstallMessageHandler(writeLogLine);
    const QMessageLogger log("Somewhere.qml", 12, "onClicked");
    log.debug("%s", "100 %4 \xc3\xbc");
    log.info("told");
    log.warning("warned");
    log.critical("%s", "%1%2%3");
    log.fatal("dying");
}

void TestProgram::logForms()
{
    QProcess process;
    process.setWorkingDirectory(m_home->path());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TZ"_s, u"HERE-9:30"_s);
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {u"--speak-and-die"_s});
    QVERIFY(process.waitForFinished(patienceMs));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGABRT);

    QStringList lines = QString::fromUtf8(process.readAllStandardError()).split(u'\n');
    const QTime time = QTime::fromString(lines.first().left(14), u"'['hh:mm:ss.zzz']'"_s);
    const int distance = qAbs(time.secsTo(QDateTime::currentDateTimeUtc().addSecs(9 * 3600 + 1800).time()));
    QVERIFY2(time.isValid() && (distance < 60 || distance > 86340), qPrintable(lines.first()));
    for (QString &line : lines)
        line.remove(0, 14);
    // The fatal one is not among them: it is lost with the process.
    QCOMPARE(lines, QStringList({u" DEBUG: 100 %4 ü (Somewhere.qml:12, onClicked)"_s,
                                 u" INFO: told (Somewhere.qml:12, onClicked)"_s,
                                 u" WARNING: warned (Somewhere.qml:12, onClicked)"_s,
                                 u" CRITICAL: %1%2%3 (Somewhere.qml:12, onClicked)"_s, QString()}));
}

int main(int argc, char *argv[])
{
    if (argc == 2 && qstrcmp(argv[1], "--speak-and-die") == 0)
        speakAndDie();
    QGuiApplication application(argc, argv);
    TestProgram test;
    return QTest::qExec(&test, argc, argv);
}
#include "TestProgram.moc"
