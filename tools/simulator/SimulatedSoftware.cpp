// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/SimulatedEndpoints.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace endpoints {
namespace {

/// The answer to a request that begins an upgrade or a delta.
HttpReply begin(SoftwareState &software, const QJsonObject &members)
{
    software.isBusy = true;
    software.progress.begin();
    return done(members);
}

HttpReply upgradable(SimulatedDevice &device, const Call &call)
{
    SoftwareState &software = device.work().software;
    const QString version = device.state().version;
    software.hasLooked = software.hasLooked || call.query == "force_check=true";
    const bool isUpgradable = software.hasLooked && software.newestVersion != version &&
                              software.newestVersion != software.pendingVersion;
    QJsonObject payload{{u"upgradable"_s, isUpgradable}};
    if (isUpgradable && software.offersDelta)
    {
        payload["delta_metadata"_L1] =
            QJsonObject{{u"available"_s, true},
                        {u"current_version"_s, version},
                        {u"target_version"_s, software.newestVersion},
                        {u"size_mb"_s, 48.3},
                        {u"release_title"_s, u"Clearer nights"_s},
                        {u"release_date"_s, u"2025-09-14"_s},
                        {u"changelog"_s, QJsonArray{u"**Focus** finds its way in half the time"_s,
                                                    u"Recordings of more than 4 GB are listed"_s}}};
    }
    return found(payload);
}

HttpReply startUpgrade(SimulatedDevice &device, const Call & /*call*/)
{
    SoftwareState &software = device.work().software;
    if (software.isBusy || software.newestVersion == device.state().version)
    {
        return HttpReply::json(
            {{u"result"_s, false}, {u"upgrade"_s, software.isBusy ? u"busy"_s : u"not available"_s}});
    }
    return begin(software, {{u"upgrade"_s, u"started"_s}});
}

HttpReply softwareProgress(SimulatedDevice &device, const Call & /*call*/)
{
    const TimedProgress &progress = device.work().software.progress;
    const double percent = progress.percent();
    const QString message = !progress.hasBegun() ? QString()
                            : percent < 40       ? u"Downloading..."_s
                            : percent < 100      ? u"Applying..."_s
                                                 : u"Done"_s;
    // Rounded down, for whoever reads 100 may ask at once for what comes after the end.
    return done({{u"progress"_s, std::floor(percent)}, {u"payload"_s, QJsonObject{{u"message"_s, message}}}});
}

HttpReply applyDelta(SimulatedDevice &device, const Call &call)
{
    SoftwareState &software = device.work().software;
    const QString version = call.text("target_version"_L1);
    if (!software.pendingVersion.isEmpty())
    {
        return refused(u"pending_reboot"_s);
    }
    if (software.isBusy || !software.offersDelta || version != software.newestVersion)
    {
        return refused(u"There is no delta update to \"%1\" now"_s.arg(version));
    }
    return begin(software, {{u"message"_s, u"Delta update to %1 started"_s.arg(version)}});
}

HttpReply deltaStatus(SimulatedDevice &device, const Call & /*call*/)
{
    const SoftwareState &software = device.work().software;
    const bool isPending = !software.pendingVersion.isEmpty();
    const QString state = software.isBusy ? u"applying"_s : isPending ? u"completed"_s : u"idle"_s;
    return found(QJsonObject{{u"pending_reboot"_s, isPending}, {u"state"_s, state}});
}

HttpReply rollBack(SimulatedDevice &device, const Call &call)
{
    SoftwareState &software = device.work().software;
    const QString version = call.text("target_version"_L1);
    if (!software.systems.contains(version) || version == device.state().version)
    {
        const QString message = u"Version \"%1\" is not there to be switched to"_s.arg(version);
        return HttpReply::json({{u"result"_s, false}, {u"message"_s, message}});
    }
    software.pendingVersion = version;
    return done({{u"message"_s, u"Rollback to %1 prepared. Please reboot."_s.arg(version)}});
}

HttpReply subvolumes(SimulatedDevice &device, const Call & /*call*/)
{
    QJsonArray names{u"@"_s, u"@home"_s};
    for (const QString &version : std::as_const(device.work().software.systems))
    {
        names.append("@system-"_L1 + version);
    }
    names.append(u"@snapshots"_s);
    return found(QJsonObject{{u"subvolumes"_s, names}, {u"active_version"_s, device.state().version}});
}

/// The notes of every system but each third one, which has none.
HttpReply changelogs(SimulatedDevice &device, const Call & /*call*/)
{
    static const QJsonObject notes[] = {
        {{u"release_title"_s, u"Steadier tracking"_s},
         {u"release_date"_s, u"2025-03-02"_s},
         {u"changelog"_s, QJsonArray{u"**Guiding** recovers by itself after clouds"_s,
                                     u"The hotspot starts ten seconds earlier"_s}}},
        {{u"release_title"_s, u"Quiet nights"_s},
         {u"releaseDate"_s, u"2025-06-21"_s},
         {u"changelog"_s,
          QJsonArray{u"**Cameras**: four **new** models"_s, u"Fans stop while an exposure runs"_s,
                     u"Remote support asks for a password"_s}}}};
    QJsonObject map;
    int index = 0;
    for (const QString &version : std::as_const(device.work().software.systems))
    {
        const int kind = index++ % 3;
        if (kind < std::ssize(notes))
        {
            map[version] = notes[kind];
        }
    }
    return device.work().answersInOldShape ? HttpReply::json(map) : found(map);
}

HttpReply applications(SimulatedDevice &device, const Call & /*call*/)
{
    QJsonArray list;
    for (const ApplicationBranch &each : std::as_const(device.work().applications.installed))
    {
        list.append(QJsonObject{{u"application_id"_s, each.id},
                                {u"branch"_s, each.branch},
                                {u"version"_s, each.version},
                                {u"current_version"_s, each.version},
                                {u"active"_s, each.isActive}});
    }
    return listed(device, u"payload"_s, list);
}

HttpReply installApplication(SimulatedDevice &device, const Call &call)
{
    ApplicationsState &state = device.work().applications;
    const QString id = call.text("application_id"_L1);
    const QString branch = call.text("branch"_L1);
    const bool isBusy = state.installation.isRunning() && !state.hasFailed();
    if (isBusy || id != "org.kde.kstars"_L1 || (branch != "stable"_L1 && branch != "master"_L1))
    {
        return refused(u"\"%1//%2\" cannot be installed now"_s.arg(id, branch));
    }
    state.id = id;
    state.branch = branch;
    state.installation.begin();
    return done();
}

HttpReply installationProgress(SimulatedDevice &device, const Call & /*call*/)
{
    const ApplicationsState &state = device.work().applications;
    constexpr int steps = 10;
    const int percent = static_cast<int>(state.installation.percent()) / steps * steps;
    const QString ref = state.id + "//"_L1 + state.branch;
    const bool isDone = state.installation.isDone();
    const QString status = state.hasFailed()               ? u"Error"_s
                           : isDone                        ? u"Success"_s
                           : state.installation.hasBegun() ? u"installing"_s
                                                           : u"idle"_s;
    const QString message = state.hasFailed()               ? state.failure
                            : isDone                        ? ref + " installed successfully"_L1
                            : state.installation.hasBegun() ? "Installing "_L1 + ref
                                                            : QString();
    return found(QJsonObject{{u"progress"_s, percent}, {u"status"_s, status}, {u"message"_s, message}});
}

HttpReply setDefaultBranch(SimulatedDevice &device, const Call &call)
{
    const QString id = call.text("application_id"_L1);
    const QString branch = call.text("branch"_L1);
    if (!device.work().applications.has(id, branch))
    {
        return refused(u"\"%1//%2\" is not installed"_s.arg(id, branch));
    }
    for (ApplicationBranch &each : device.work().applications.installed)
    {
        each.isActive = each.id == id ? each.branch == branch : each.isActive;
    }
    return done();
}

const Endpoint table[] = {
    {"GET", api, "/api/software/upgradable", upgradable},
    {"GET", api, "/api/software/upgrade", startUpgrade},
    {"GET", api, "/api/software/progress", softwareProgress},
    {"POST", api, "/api/software/delta/apply", applyDelta},
    {"GET", api, "/api/software/delta/status", deltaStatus},
    {"POST", api, "/api/software/delta/rollback", rollBack},
    {"GET", api, "/api/software/delta/subvolumes", subvolumes},
    {"GET", api, "/api/software/delta/changelogs", changelogs},
    {"GET", api, "/api/flatpak/app", applications},
    {"POST", api, "/api/flatpak/app", installApplication},
    {"GET", api, "/api/flatpak/app/progress", installationProgress},
    {"PUT", api, "/api/flatpak/default", setDefaultBranch},
};

} // namespace

const std::span<const Endpoint> ofSoftware = table;

} // namespace endpoints
