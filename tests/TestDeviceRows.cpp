// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "support/Probing.h"

#include <QMetaEnum>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace probing;

/// The list as its viewers see it, and the record of one device.
class TestDeviceRows : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void startsEmpty();
    void yieldsRoles_data();
    void yieldsRoles();
    void yieldsNothingForBadIndexes();
    void announcesWhatItDoes();
    void updatesInPlace();
    void addsByHand_data();
    void addsByHand();
    void recordCopiesAllButTheMachineId();
    void recordNotifiesOnChange();
    void recordKeepsSecondaryAddressesApart();

private:
    std::unique_ptr<DeviceDiscovery> m_discovery;
    std::unique_ptr<SimulatedDevice> m_devices[3]; // on 127.0.0.2 to 127.0.0.4, all answering
};

void TestDeviceRows::init()
{
    m_discovery = std::make_unique<DeviceDiscovery>();
    for (int number = 0; number < 3; ++number)
    {
        const QHostAddress address(u"127.0.0.%1"_s.arg(number + 2));
        m_devices[number] = std::make_unique<SimulatedDevice>(address, number);
        QVERIFY(m_devices[number]->start());
    }
}

void TestDeviceRows::cleanup()
{
    m_discovery.reset();
}

void TestDeviceRows::startsEmpty()
{
    QCOMPARE(m_discovery->rowCount(), 0);
    QCOMPARE(m_discovery->property("deviceCount").toInt(), 0);
    QCOMPARE(m_discovery->property("isScanning"), QVariant(false));
    QCOMPARE(m_discovery->property("statusText").toString(), u"Ready to scan for Noctaris devices"_s);
    QCOMPARE(m_discovery->property("hasWifiDongle"), QVariant(false));
    QCOMPARE(m_discovery->property("useInternalWifi"), QVariant(true));
}

void TestDeviceRows::yieldsRoles_data()
{
    QTest::addColumn<int>("role");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QVariant>("value");
    const auto row = [](int role, const char *name, const char *key, const QVariant &value) {
        QTest::addRow("role %d", role) << role << QByteArray(name) << QByteArray(key) << value;
    };
    row(257, "ipAddress", "IpAddressRole", u"127.0.0.2"_s);
    row(258, "hostname", "HostnameRole", u"astro"_s);
    row(259, "version", "VersionRole", u"2.3.1"_s);
    row(260, "model", "ModelRole", u"Mini"_s);
    row(261, "isOnline", "IsOnlineRole", true);
    row(262, "isLocal", "IsLocalRole", false);
    row(263, "statusText", "StatusTextRole", u"Online"_s);
    row(264, "secondaryIpAddresses", "SecondaryIpsRole", QStringList());
    row(Qt::DisplayRole, "", "", u"127.0.0.2 (astro)"_s);
    row(Qt::ToolTipRole, "", "", {});
    row(256, "", "", {});
    row(265, "", "", {});
}

void TestDeviceRows::yieldsRoles()
{
    QFETCH(const int, role);
    QFETCH(const QByteArray, name);
    QFETCH(const QByteArray, key);
    QFETCH(const QVariant, value);
    m_devices[0]->state() = {u"astro"_s, u"2.3.1"_s, u"Mini"_s, u"id"_s};
    QVERIFY(admit(*m_discovery, *m_devices[0]));
    const QVariant cell = m_discovery->data(m_discovery->index(0), role);
    QCOMPARE(cell, value);
    QCOMPARE(cell.metaType(), value.metaType());
    QCOMPARE(m_discovery->roleNames().value(role), name);
    QCOMPARE(QByteArray(QMetaEnum::fromType<DeviceDiscovery::Roles>().valueToKey(role)), key);
}

void TestDeviceRows::yieldsNothingForBadIndexes()
{
    QVERIFY(admit(*m_discovery, *m_devices[0]));
    QVERIFY(admit(*m_discovery, *m_devices[1]));
    const QModelIndex second = m_discovery->index(1);
    QVERIFY(m_discovery->data(second, 257).isValid());
    QVERIFY(!m_discovery->data(QModelIndex(), 257).isValid());
    // The list is flat, and says so no matter whose children are asked for.
    QCOMPARE(m_discovery->rowCount(second), 2);
    m_discovery->removeDevice(0);
    QVERIFY(!m_discovery->data(second, 257).isValid());
}

void TestDeviceRows::announcesWhatItDoes()
{
    QStringList events;
    const auto note = [&](const QString &event) {
        events.append(event + u' ' + QString::number(m_discovery->deviceCount()));
    };
    DeviceDiscovery *discovery = m_discovery.get();
    connect(discovery, &DeviceDiscovery::rowsAboutToBeInserted, this, [&] { note(u"inserting"_s); });
    connect(discovery, &DeviceDiscovery::rowsInserted, this, [&] { note(u"inserted"_s); });
    connect(discovery, &DeviceDiscovery::rowsAboutToBeRemoved, this, [&] { note(u"removing"_s); });
    connect(discovery, &DeviceDiscovery::rowsRemoved, this, [&] { note(u"removed"_s); });
    connect(discovery, &DeviceDiscovery::deviceCountChanged, this, [&] { note(u"count"_s); });
    connect(discovery, &DeviceDiscovery::deviceAdded, this, [&](const QString &ip) { note(u"+"_s + ip); });
    connect(discovery, &DeviceDiscovery::deviceRemoved, this, [&](const QString &ip) { note(u"-"_s + ip); });
    connect(discovery, &DeviceDiscovery::statusTextChanged, this, [&] { note(discovery->statusText()); });
    QVERIFY(admit(*m_discovery, *m_devices[2]));
    QVERIFY(admit(*m_discovery, *m_devices[0]));
    m_discovery->removeDevice(-1);
    m_discovery->removeDevice(2);
    m_discovery->removeDevice(0);
    QVERIFY(admit(*m_discovery, *m_devices[2]));
    QCOMPARE(events,
             u"Adding device 127.0.0.4... 0|inserting 0|inserted 1|count 1|+127.0.0.4 1|"
             "Adding device 127.0.0.2... 1|inserting 1|inserted 2|count 2|+127.0.0.2 2|"
             "removing 2|removed 1|count 1|-127.0.0.4 1|Device 127.0.0.4 removed 1|"
             "Adding device 127.0.0.4... 1|inserting 1|inserted 2|count 2|+127.0.0.4 2"_s.split(u'|'));
}

void TestDeviceRows::updatesInPlace()
{
    for (const int number : {1, 0, 2})
        QVERIFY(admit(*m_discovery, *m_devices[number]));
    QSignalSpy changed(m_discovery.get(), &DeviceDiscovery::dataChanged);
    QSignalSpy added(m_discovery.get(), &DeviceDiscovery::deviceAdded);
    QSignalSpy counted(m_discovery.get(), &DeviceDiscovery::deviceCountChanged);
    m_devices[0]->state() = {u"new"_s, u"9.9"_s, u"Max"_s, u"other"_s};
    m_discovery->refreshDevice(1);
    QVERIFY(settle(*m_discovery));
    // The order is that of admission, not of addresses.
    QCOMPARE(rows(*m_discovery),
             QStringList({rowOf(*m_devices[1]), u"127.0.0.2 new 9.9 Max Online"_s, rowOf(*m_devices[2])}));
    const QModelIndex row = m_discovery->index(1);
    QCOMPARE(changed, QList<QVariantList>({{row, row, QVariant::fromValue(QList<int>())}}));
    QCOMPARE(added.count() + counted.count(), 0);
}

void TestDeviceRows::addsByHand_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("status");
    QTest::newRow("listed") << u"127.0.0.2"_s << u"Device 127.0.0.2 already exists"_s;
    QTest::newRow("unlisted, nobody there") << u"127.0.0.99"_s << u"Adding device 127.0.0.99..."_s;
    QTest::newRow("empty") << u""_s << u"Adding device ..."_s;
    QTest::newRow("no address") << u"not an address/%2?"_s << u"Adding device not an address/%2?..."_s;
}

void TestDeviceRows::addsByHand()
{
    QFETCH(const QString, text);
    QFETCH(const QString, status);
    QVERIFY(admit(*m_discovery, *m_devices[0]));
    m_devices[0]->clearRequests();
    m_discovery->addManualDevice(text);
    QCOMPARE(m_discovery->statusText(), status);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(m_devices[0]->requestCount(), 0);
    QCOMPARE(m_discovery->deviceCount(), 1);
    QCOMPARE(m_discovery->statusText(), status);
}

void TestDeviceRows::recordCopiesAllButTheMachineId()
{
    QObject parent;
    NoctarisDevice source(&parent);
    source.setIpAddress(u"10.0.0.5"_s);
    source.setSecondaryIps({u"10.0.0.6"_s});
    source.setHostname(u"astro"_s);
    source.setVersion(u"1"_s);
    source.setModel(u"Pro"_s);
    source.setMachineId(u"id"_s);
    source.setIsOnline(true);
    source.setIsLocal(true);
    const auto shown = [](const NoctarisDevice &device) {
        return QVariantList{device.ipAddress(), device.secondaryIps(), device.hostname(), device.version(),
                            device.model(),     device.isOnline(),     device.isLocal()};
    };

    const NoctarisDevice copy(source);
    QCOMPARE(copy.parent(), &parent);
    QCOMPARE(shown(copy), shown(source));
    QCOMPARE(copy.machineId(), QString());

    NoctarisDevice target;
    target.setMachineId(u"own"_s);
    QStringList told;
    connect(&target, &NoctarisDevice::ipAddressChanged, this, [&] { told.append(u"ip"_s); });
    connect(&target, &NoctarisDevice::secondaryIpsChanged, this, [&] { told.append(u"secondary"_s); });
    connect(&target, &NoctarisDevice::hostnameChanged, this, [&] { told.append(u"hostname"_s); });
    connect(&target, &NoctarisDevice::versionChanged, this, [&] { told.append(u"version"_s); });
    connect(&target, &NoctarisDevice::modelChanged, this, [&] { told.append(u"model"_s); });
    connect(&target, &NoctarisDevice::isOnlineChanged, this, [&] { told.append(u"online"_s); });
    connect(&target, &NoctarisDevice::isLocalChanged, this, [&] { told.append(u"local"_s); });
    target = source;
    QCOMPARE(shown(target), shown(source));
    QCOMPARE(target.machineId(), u"own"_s);
    QVERIFY(!target.parent());
    QCOMPARE(told.join(u' '), u"ip secondary hostname version model online local"_s);
    target = source;
    QCOMPARE(told.mid(7), QStringList{u"secondary"_s});
    const NoctarisDevice &itself = target;
    target = itself;
    QCOMPARE(told.size(), 8);
}

void TestDeviceRows::recordNotifiesOnChange()
{
    NoctarisDevice device;
    for (const char *name : {"ipAddress", "hostname", "version", "model", "isOnline", "isLocal"})
    {
        const QMetaProperty property =
            device.metaObject()->property(device.metaObject()->indexOfProperty(name));
        QCOMPARE(property.notifySignal().methodSignature(), QByteArray(name) + "Changed()");
        QSignalSpy changed(&device, ('2' + property.notifySignal().methodSignature()).constData());
        const bool isFlag = property.metaType() == QMetaType::fromType<bool>();
        QCOMPARE(property.read(&device), isFlag ? QVariant(false) : QVariant(QString()));
        const QVariant value = isFlag ? QVariant(true) : QVariant(u"x"_s);
        property.write(&device, value);
        property.write(&device, value);
        QCOMPARE(property.read(&device), value);
        QCOMPARE(changed.count(), 1);
    }
}

void TestDeviceRows::recordKeepsSecondaryAddressesApart()
{
    NoctarisDevice device;
    device.setIpAddress(u"10.0.0.5"_s);
    QSignalSpy changed(&device, &NoctarisDevice::secondaryIpsChanged);
    device.setSecondaryIps({u"b"_s, u"10.0.0.5"_s, u"a"_s, u"b"_s, u"A"_s});
    QCOMPARE(device.secondaryIps(), QStringList({u"b"_s, u"a"_s, u"A"_s}));
    device.setSecondaryIps({u"c"_s});
    QCOMPARE(device.secondaryIps(), QStringList{u"c"_s});
    device.setSecondaryIps({u"c"_s});
    QCOMPARE(changed.count(), 3);
}

QTEST_GUILESS_MAIN(TestDeviceRows)
#include "TestDeviceRows.moc"
