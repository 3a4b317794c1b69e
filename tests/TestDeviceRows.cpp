// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "support/Probing.h"

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
    void yieldsRoles();
    void announcesWhatItDoes();
    void recordCopiesAllButTheMachineId();

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

void TestDeviceRows::yieldsRoles()
{
    const QList<std::pair<QByteArray, QVariant>> cells = {{"ipAddress", u"127.0.0.2"_s},
                                                          {"hostname", u"astro"_s},
                                                          {"version", u"2.3.1"_s},
                                                          {"model", u"Mini"_s},
                                                          {"isOnline", true},
                                                          {"isLocal", false},
                                                          {"statusText", u"Online"_s},
                                                          {"secondaryIpAddresses", QStringList()}};
    m_devices[0]->state() = {u"astro"_s, u"2.3.1"_s, u"Mini"_s, u"id"_s};
    QVERIFY(admit(*m_discovery, *m_devices[0]));
    QVERIFY(admit(*m_discovery, *m_devices[1]));
    const QModelIndex first = m_discovery->index(0);
    const QModelIndex second = m_discovery->index(1);
    QCOMPARE(m_discovery->roleNames().size(), cells.size());
    for (int number = 0; number < cells.size(); ++number)
    {
        QCOMPARE(m_discovery->roleNames().value(257 + number), cells[number].first);
        QCOMPARE(first.data(257 + number), cells[number].second);
        QCOMPARE(first.data(257 + number).metaType(), cells[number].second.metaType());
    }
    QCOMPARE(first.data(Qt::DisplayRole), QVariant(u"127.0.0.2 (astro)"_s));
    QVERIFY(!first.data(Qt::ToolTipRole).isValid());
    QVERIFY(!m_discovery->data(QModelIndex(), 257).isValid());
    // The list is flat, and says so no matter whose children are asked for.
    QCOMPARE(m_discovery->rowCount(second), 2);
    m_discovery->removeDevice(0);
    QVERIFY(!m_discovery->data(second, 257).isValid());
}

void TestDeviceRows::announcesWhatItDoes()
{
    QCOMPARE(m_discovery->isScanning(), false);
    QCOMPARE(m_discovery->statusText(), u"Ready to scan for Noctaris devices"_s);
    QCOMPARE(m_discovery->property("hasWifiDongle"), QVariant(false));
    QCOMPARE(m_discovery->property("useInternalWifi"), QVariant(true));
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
    QSignalSpy changed(discovery, &DeviceDiscovery::dataChanged);
    m_devices[2]->state() = {u"new"_s, u"9.9"_s, u"Max"_s, u"other"_s};
    m_discovery->refreshAllDevices();
    QVERIFY(settle(*m_discovery));
    // The order is that of admission, not of addresses, and an update keeps it.
    QCOMPARE(rows(*m_discovery), QStringList({rowOf(*m_devices[2]), rowOf(*m_devices[0])}));
    QCOMPARE(changed.value(0).value(2), QVariant::fromValue(QList<int>()));
    m_discovery->refreshDevice(-1);
    m_discovery->refreshDevice(2);
    m_discovery->removeDevice(-1);
    m_discovery->removeDevice(2);
    m_discovery->removeDevice(0);
    QVERIFY(admit(*m_discovery, *m_devices[2]));
    for (const QString &text : {u"127.0.0.2"_s, u"127.0.0.99"_s, u""_s, u"not an address/%2?"_s})
        m_discovery->addManualDevice(text);
    QVERIFY(settle(*m_discovery));
    QCOMPARE(changed.count(), 2);
    QCOMPARE(
        events,
        u"Adding device 127.0.0.4... 0|inserting 0|inserted 1|count 1|+127.0.0.4 1|"
        "Adding device 127.0.0.2... 1|inserting 1|inserted 2|count 2|+127.0.0.2 2|"
        "Refreshing all devices... 2|removing 2|removed 1|count 1|-127.0.0.4 1|Device 127.0.0.4 removed 1|"
        "Adding device 127.0.0.4... 1|inserting 1|inserted 2|count 2|+127.0.0.4 2|"
        "Device 127.0.0.2 already exists 2|Adding device 127.0.0.99... 2|Adding device ... 2|"
        "Adding device not an address/%2?... 2"_s.split(u'|'));
}

void TestDeviceRows::recordCopiesAllButTheMachineId()
{
    QObject parent;
    NoctarisDevice source(&parent);
    source.setIpAddress(u"10.0.0.5"_s);
    source.setSecondaryIps({u"b"_s, u"10.0.0.5"_s, u"a"_s, u"b"_s, u"A"_s});
    QCOMPARE(source.secondaryIps(), QStringList({u"b"_s, u"a"_s, u"A"_s}));
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
    target.setSecondaryIps({u"c"_s});
    QSignalSpy renamed(&target, &NoctarisDevice::hostnameChanged);
    QSignalSpy told(&target, &NoctarisDevice::secondaryIpsChanged);
    target = source;
    target = source;
    QCOMPARE(shown(target), shown(source));
    QCOMPARE(target.machineId(), u"own"_s);
    QVERIFY(!target.parent());
    QCOMPARE(renamed.count(), 1);
    QCOMPARE(told.count(), 2);
}

QTEST_GUILESS_MAIN(TestDeviceRows)
#include "TestDeviceRows.moc"
