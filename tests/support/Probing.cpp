// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "support/Probing.h"

#include <QNetworkReply>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace probing {
QStringList rows(const DeviceDiscovery &discovery)
{
    QStringList texts;
    for (int row = 0; row < discovery.rowCount(); ++row)
    {
        QStringList cells;
        for (const int role : {257, 258, 259, 260, 263})
            cells.append(discovery.data(discovery.index(row), role).toString());
        texts.append(cells.join(u' '));
    }
    return texts;
}

QString rowOf(const SimulatedDevice &device)
{
    const DeviceState &state = device.state();
    return QStringList{device.address(), state.hostname, state.version, state.model, u"Online"_s}.join(u' ');
}

int repliesUnderWay(const DeviceDiscovery &discovery)
{
    return static_cast<int>(discovery.findChildren<QNetworkReply *>().size());
}

bool settle(const DeviceDiscovery &discovery, int left, int timeoutMs)
{
    return QTest::qWaitFor([&] { return repliesUnderWay(discovery) <= left; }, timeoutMs);
}

bool waitForHeld(const SimulatedDevice &device, int count, const QByteArray &key)
{
    return QTest::qWaitFor([&] { return device.heldCount(key) == count; });
}

bool answerInOrder(const DeviceDiscovery &discovery, SimulatedDevice &device, const QList<QByteArray> &keys)
{
    return std::ranges::all_of(keys, [&](const QByteArray &key) {
        return QTest::qWaitFor([&] { return device.heldCount(key) > 0; }) && device.releaseOne(key) &&
               settle(discovery, repliesUnderWay(discovery) - 1);
    });
}

QString timing(qint64 elapsedMs, qint64 expectedMs)
{
    const bool isAbout = elapsedMs >= expectedMs * 94 / 100 && elapsedMs <= expectedMs * 106 / 100 + 2000;
    return isAbout ? u"about %1 ms"_s.arg(expectedMs) : u"%1 ms"_s.arg(elapsedMs);
}

bool admit(DeviceDiscovery &discovery, SimulatedDevice &device)
{
    const int count = discovery.deviceCount();
    if (!device.start())
        return false;
    discovery.addManualDevice(device.address());
    return settle(discovery) && discovery.deviceCount() == count + 1;
}

Statuses::Statuses(const DeviceDiscovery &discovery)
{
    connect(&discovery, &DeviceDiscovery::statusTextChanged, this,
            [this, &discovery] { lines.append(discovery.statusText()); });
}
} // namespace probing
