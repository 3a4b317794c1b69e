// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/Documents.h"
#include "devices/DeviceDiscovery.h"
#include "simulator/SimulatedDevice.h"
#include "theme/ThemeManager.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QtQuickTest>

#include <memory>

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

    /// Puts a device on the network, as it was when new.
    Q_INVOKABLE bool start(int number)
    {
        m_devices[number]->clearFaults();
        m_devices[number]->clearRequests();
        m_devices[number]->state() = DeviceState::believable(number);
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
    /// Has the device keep everyone waiting, until it answers all of them.
    Q_INVOKABLE void hold(int number) { m_devices[number]->hold({}); }
    Q_INVOKABLE int release(int number) { return m_devices[number]->release({}); }
    Q_INVOKABLE int requestCount(int number) const { return m_devices[number]->requestCount(); }

private:
    std::vector<std::unique_ptr<SimulatedDevice>> m_devices;
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
