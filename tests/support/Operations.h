// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "support/Log.h"
#include "support/Probing.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <vector>

/// Devices on 127.0.0.2 and up, one a row in that order, and all that DeviceDiscovery says of its operations
/// on them. One at a time. Requests, log and lines are empty at the start.
class Operations : public QObject
{
    Q_OBJECT
public:
    explicit Operations(int deviceCount = 2);
    ~Operations() override { discovery.disconnect(this); }

    SimulatedDevice &device(int row = 0) { return *devices.at(static_cast<size_t>(row)); }
    /// Calls an operation by its name, as the documents do. Behind a blank stands its second argument, a
    /// text or true or false: call("updateDeviceHostname my box"). False if there is no such operation.
    bool call(const QString &operation, int row = 0);
    /// Waits until no request is under way.
    bool settle(int timeoutMs = 10000) const { return probing::settle(discovery, 0, timeoutMs); }

    Log log;
    DeviceDiscovery discovery;
    std::vector<std::unique_ptr<SimulatedDevice>> devices;
    bool isReady = true; ///< Whether all devices became rows.
    /// Every signal but those of rows: "hostnameUpdated(127.0.0.2, true, Well)"; lists and maps as JSON.
    QStringList said;
    QStringList statuses; ///< Every status line.
    QStringList lines;    ///< Both in their common order, a status line as "status: ...".

private slots:
    void record();

private:
    std::vector<std::unique_ptr<QSignalSpy>> m_spies;
};
