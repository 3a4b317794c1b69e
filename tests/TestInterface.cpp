// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/Documents.h"
#include "devices/DeviceDiscovery.h"
#include "simulator/SimulatedDevice.h"
#include "theme/ThemeManager.h"

#include <QCryptographicHash>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QQmlContext>
#include <QQmlEngine>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QtQuickTest>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

/// The network of the interface tests: three pretend devices, at 127.0.0.2 and on.
class Lab : public QObject
{
    Q_OBJECT
public:
    Lab()
    {
        for (int number = 0; number < 3; ++number)
        {
            m_devices.push_back(
                std::make_unique<SimulatedDevice>(QHostAddress(0x7F000002U + quint32(number)), number));
        }
    }
    ~Lab() override
    {
        QDesktopServices::unsetUrlHandler(u"http"_s);
        QDesktopServices::unsetUrlHandler(u"https"_s);
    }

    /// Puts a device on the network, as it was when new.
    Q_INVOKABLE bool start(int number)
    {
        m_devices[number]->clearFaults();
        m_devices[number]->clearRequests();
        m_devices[number]->state() = DeviceState::believable(number);
        // Long work is over before anybody asks a second time.
        DeviceWork &work = m_devices[number]->work();
        work = DeviceWork::believable(number, m_devices[number]->state().version);
        work.software.progress.durationMs = work.applications.installation.durationMs =
            work.services.regeneration.durationMs = 300;
        return m_devices[number]->start();
    }
    Q_INVOKABLE void stop(int number) { m_devices[number]->stop(); }
    Q_INVOKABLE void stopAll()
    {
        for (const auto &device : m_devices)
            device->stop();
    }
    Q_INVOKABLE QString address(int number) const { return m_devices[number]->address(); }
    Q_INVOKABLE QString hostname(int number) const { return m_devices[number]->state().hostname; }
    Q_INVOKABLE void rename(int number, const QString &hostname)
    {
        m_devices[number]->state().hostname = hostname;
    }
    Q_INVOKABLE void setVersion(int number, const QString &version)
    {
        m_devices[number]->state().version = version;
    }
    Q_INVOKABLE void setModel(int number, const QString &model) { m_devices[number]->state().model = model; }
    /// Has the device keep everyone waiting who asks for this, or for anything, until it answers all of them.
    Q_INVOKABLE void hold(int number, const QString &key = {}) { setFault(number, key, u"hold"_s); }
    Q_INVOKABLE int release(int number, const QString &key = {}, const QString &fault = {})
    {
        return m_devices[number]->release(key.toUtf8(), Fault::fromText(fault).value_or(Fault()));
    }
    Q_INVOKABLE int requestCount(int number) const { return m_devices[number]->requestCount(); }
    /// What a device does wrong from now on, or answers: "status:500", "drop", "body:{}".
    Q_INVOKABLE void setFault(int number, const QString &key, const QString &kind)
    {
        m_devices[number]->setFault(key.toUtf8(), Fault::fromText(kind).value());
    }
    /// What a device answers to this from now on.
    Q_INVOKABLE void setAnswer(int number, const QString &key, int status, const QString &body)
    {
        m_devices[number]->setFault(key.toUtf8(), Fault::answer(status, body.toUtf8()));
    }
    Q_INVOKABLE void fillDisk(int number, int pictures, int videos)
    {
        m_devices[number]->work().disk = DiskState::believable(number, pictures, videos);
    }
    /// The name that a device gives itself in the URLs of its pictures.
    Q_INVOKABLE void setUrlHost(int number, const QString &host)
    {
        m_devices[number]->work().disk.urlHost = host;
    }
    /// The versions of the systems that are installed on a device, beside the one in use.
    Q_INVOKABLE void setSystems(int number, const QStringList &versions)
    {
        m_devices[number]->work().software.systems = versions;
    }
    /// The raw files on a device's disk, by their names, each with its hash.
    Q_INVOKABLE QVariantMap picturesOf(int number) const
    {
        QVariantMap hashes;
        for (const Picture &picture : m_devices[number]->work().disk.pictures)
            hashes[picture.filename] = hash(picture.file(u"raw"_s));
        return hashes;
    }
    /// The files in a folder of this machine, likewise.
    Q_INVOKABLE QVariantMap filesIn(const QString &folder) const
    {
        QVariantMap hashes;
        for (const QString &name : QDir(folder).entryList(QDir::Files | QDir::Hidden))
        {
            QFile file(folder + u'/' + name);
            hashes[name] = file.open(QIODevice::ReadOnly) ? hash(file.readAll()) : QString();
        }
        return hashes;
    }
    /// An empty folder, another one at each call.
    Q_INVOKABLE QString newFolder()
    {
        const QString path = m_folders.filePath(QString::number(++m_folderCount));
        return QDir().mkpath(path) ? path : QString();
    }
    /// What a device was asked since the last call, as "METHOD /target" or "METHOD /target {body}".
    Q_INVOKABLE QStringList takeRequests(int number)
    {
        QStringList lines;
        for (const auto &[method, target, headers, body, port, keepAlive] : m_devices[number]->requests())
        {
            const QByteArray json = QJsonDocument::fromJson(body).toJson(QJsonDocument::Compact);
            lines.append(QString::fromUtf8((method + ' ' + target + ' ' + json).trimmed()));
        }
        m_devices[number]->clearRequests();
        return lines;
    }
    /// Listens to an engine, and opens what is to be opened in a browser.
    void attach(QQmlEngine *engine)
    {
        m_engine = engine;
        QDesktopServices::setUrlHandler(u"http"_s, this, "openUrl");
        QDesktopServices::setUrlHandler(u"https"_s, this, "openUrl");
        connect(engine, &QQmlEngine::warnings, this, [this](const auto &errors) {
            for (const QQmlError &error : errors)
                m_warnings.append(error.toString());
        });
    }
    /// A gateway without devices, timers and answers that belong to an earlier test.
    Q_INVOKABLE void renewGateway()
    {
        QQmlContext *context = m_engine->rootContext();
        delete context->contextProperty(u"deviceDiscovery"_s).value<QObject *>();
        context->setContextProperty(u"deviceDiscovery"_s, new DeviceDiscovery(m_engine));
    }
    /// What the engine has complained about since the last call.
    Q_INVOKABLE QStringList takeWarnings() { return std::exchange(m_warnings, {}); }
    /// The pages that were opened in a browser since the last call.
    Q_INVOKABLE QStringList takeUrls() { return std::exchange(m_urls, {}); }

public slots:
    void openUrl(const QUrl &url) { m_urls.append(url.toString()); }

private:
    static QString hash(const QByteArray &bytes)
    {
        return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
    }

    std::vector<std::unique_ptr<SimulatedDevice>> m_devices;
    QTemporaryDir m_folders;
    int m_folderCount = 0;
    QQmlEngine *m_engine = nullptr;
    QStringList m_warnings;
    QStringList m_urls;
};

/// A model of rows with the roles of a device, written by the test, aloud or without a word.
class RowModel : public QStandardItemModel
{
    Q_OBJECT
public:
    Q_INVOKABLE void fill(int rows)
    {
        clear();
        for (int row = 0; row < rows; ++row)
            appendRow(new QStandardItem);
    }
    Q_INVOKABLE void write(int row, int role, const QVariant &value) { item(row)->setData(value, role); }
    Q_INVOKABLE void writeAddresses(int row, const QStringList &addresses)
    {
        write(row, DeviceDiscovery::SecondaryIpsRole, addresses);
    }
    /// As if the notification of the next change were missed.
    Q_INVOKABLE void mute(bool isMuted) { blockSignals(isMuted); }
};

/// Every test file has an engine, a gateway and a theme of its own, made the way the program makes them.
class Setup : public QObject
{
    Q_OBJECT
public slots:
    void applicationAvailable()
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
        documents::prepareApplication();
        documents::registerTypes();
    }
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        auto *deviceDiscovery = new DeviceDiscovery(engine);
        auto *themeManager = new ThemeManager(engine);
        documents::publish(*engine, *deviceDiscovery, *themeManager);
        m_lab.attach(engine);
        engine->rootContext()->setContextProperty(u"lab"_s, &m_lab);
        engine->rootContext()->setContextProperty(u"rowModel"_s, &m_rowModel);
    }

private:
    QTemporaryDir m_settings;
    Lab m_lab;
    RowModel m_rowModel;
};

QUICK_TEST_MAIN_WITH_SETUP(TestInterface, Setup)
#include "TestInterface.moc"
