// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "devices/DeviceAnswer.h"

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <optional>

/// How an operation ended, in words for the user.
struct Outcome
{
    bool success = false;
    QString message = {};
    /// The device said something, and it was not what it should be.
    bool isUnreadable = false;
};

/// What an answer means for the operation that asked: functions of the answer alone. Each stands in the
/// source file of its operation, next to the handler that acts on it.
namespace verdict {

// Common to many operations: Verdicts.cpp. A failure is told in a sentence that begins with the operation's
// own words, such as "Failed to update hostname for 10.0.0.2".
/// " (HTTP 500)" if the device sent a status.
QString httpStatusWords(const DeviceAnswer &answer);
/// After a network error.
Outcome networkError(const DeviceAnswer &answer, const QString &failure);
/// After a body that is no JSON object.
Outcome invalidJson(const DeviceAnswer &answer, const QString &failure);
/// After an answer that says no.
Outcome refusal(const QString &failure);
/// Of an answer that says yes with {"result": true} and no with everything else.
Outcome common(const DeviceAnswer &answer, const QString &failure, const QString &success);

// DeviceDiscoveryHostname.cpp
Outcome hostnameUpdate(const DeviceAnswer &answer);

// DeviceDiscoveryPictures.cpp
/// The directory that an answer names; empty if it names none.
QString picturesDirectory(const DeviceAnswer &answer);
Outcome picturesDirectoryUpdate(const DeviceAnswer &answer);

// DeviceDiscoveryUpgrade.cpp
struct UpgradeCheck
{
    bool success = false;
    bool isUpgradable = false;
    QString message = {};
    bool hasDelta = false;
    QVariantMap delta = {};
};
UpgradeCheck upgradeCheck(const DeviceAnswer &answer);
Outcome upgradeStart(const DeviceAnswer &answer);

// DeviceDiscoveryDelta.cpp
struct DeltaProgress
{
    int percent = 0;
    QString message = {};
};
struct DeltaStatus
{
    bool pendingReboot = false;
    QString state = {};
};
Outcome deltaApply(const DeviceAnswer &answer);
DeltaProgress deltaProgress(const DeviceAnswer &answer);
DeltaStatus deltaStatus(const DeviceAnswer &answer);
Outcome rollback(const DeviceAnswer &answer);

// DeviceDiscoveryPower.cpp
Outcome reboot(const DeviceAnswer &answer);
Outcome shutdown(const DeviceAnswer &answer);
/// Whether an error is what a device that goes down leaves behind.
bool isExpectedLoss(QNetworkReply::NetworkError error);
Outcome factoryReset(const DeviceAnswer &answer);
Outcome networkReset(const DeviceAnswer &answer);

// DeviceDiscoveryLumarc.cpp
struct RegenerationProgress
{
    int percent = 0;
    QString message = QStringLiteral("Regenerating...");
    bool inProgress = false;

    bool isComplete() const { return percent >= 100 && !inProgress; }
};
Outcome lumarcReset(const DeviceAnswer &answer);
Outcome lumarcRestart(const DeviceAnswer &answer);
RegenerationProgress regenerationProgress(const DeviceAnswer &answer);

// DeviceDiscoveryRelease.cpp
struct ReleaseType
{
    QString type = QStringLiteral("stable");
    QString stableVersion = {};
    QString betaVersion = {};
};
struct InstallProgress
{
    enum State
    {
        Running,
        Finished,
        Failed
    };
    int percent = 0;
    QString status = {};
    QString message = {};
    State state = Running;
};
ReleaseType releaseType(const DeviceAnswer &answer);
/// Whether the application's branch is on the device already.
bool isBranchInstalled(const DeviceAnswer &answer, const QString &branch);
Outcome installStart(const DeviceAnswer &answer);
/// Nothing if the answer tells nothing.
std::optional<InstallProgress> installProgress(const DeviceAnswer &answer);
Outcome releaseUpdate(const DeviceAnswer &answer);

// DeviceDiscoveryNetwork.cpp
struct NetworkInterfaces
{
    bool result = false;
    QVariantList interfaces = {}; // maps of interface and ip
};
/// Whether the hotspot runs on the built-in WiFi; in doubt it does.
bool isHotspotInternal(const DeviceAnswer &answer);
Outcome hotspotUpdate(const DeviceAnswer &answer);
NetworkInterfaces networkInterfaces(const DeviceAnswer &answer);
Outcome ethernetActivation(const DeviceAnswer &answer);
Outcome ethernetDeactivation(const DeviceAnswer &answer);

// DeviceDiscoverySupport.cpp
bool isServiceActive(const DeviceAnswer &answer);
/// The id that an answer names; empty if it names none. Writes on the log how it was found.
QString rustdeskId(const DeviceAnswer &answer);

// DeviceDiscoveryViewers.cpp
/// Where the device's external drives are mounted, in its order.
QStringList externalDrives(const DeviceAnswer &answer);

} // namespace verdict
