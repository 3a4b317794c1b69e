// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "devices/DeviceDiscovery.h"
#include "simulator/SimulatedDevice.h"

#include <QStringList>

/// What tests of DeviceDiscovery have in common: pretend devices that are probed, and what became of it.
namespace probing {
// The keys of the four identity questions
const QByteArray hostname = "/api/info/hostname";
const QByteArray version = "/api/info/version";
const QByteArray model = "/api/info/model";
const QByteArray machineId = "/api/info/machine-id";
const QList<QByteArray> machineIdLast = {hostname, version, model, machineId};
/// Every request of a device.
const QByteArray anything = {};

/// The rows as texts: address, host name, version, model, state, with a blank between each.
QStringList rows(const DeviceDiscovery &discovery);
/// The row that a device should have by what it answers, if it is online.
QString rowOf(const SimulatedDevice &device);

/// How many requests are under way, or answered and not dealt with and released yet.
int repliesUnderWay(const DeviceDiscovery &discovery);
/// Waits until no more than so many are left.
bool settle(const DeviceDiscovery &discovery, int left = 0, int timeoutMs = 10000);
/// Waits until so many requests that fit a key wait at a device.
bool waitForHeld(const SimulatedDevice &device, int count, const QByteArray &key = {});
/// Has a device that holds its answers give one after the other, each after the one before is dealt with.
bool answerInOrder(const DeviceDiscovery &discovery, SimulatedDevice &device, const QList<QByteArray> &keys);

/// "about N ms" if a time is the expected one, else the time. Timers may be off by a twentieth, and busy
/// machines are late.
QString timing(qint64 elapsedMs, qint64 expectedMs);

/// Has a device answer, and waits until it is listed.
bool admit(DeviceDiscovery &discovery, SimulatedDevice &device);

/// Keeps the status lines of an object, in their order.
class Statuses : public QObject
{
public:
    explicit Statuses(const DeviceDiscovery &discovery);
    QStringList lines;
};
} // namespace probing
