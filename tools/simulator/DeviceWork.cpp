// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/DeviceWork.h"

#include <utility>

using namespace Qt::StringLiterals;

bool ApplicationsState::has(const QString &wantedId, const QString &wantedBranch) const
{
    return std::ranges::any_of(installed, [&](const ApplicationBranch &each) {
        return each.id == wantedId && each.branch == wantedBranch;
    });
}

DeviceWork DeviceWork::believable(int number, const QString &version)
{
    // One in three is offered a delta, the next one an upgrade only, the third has the newest system.
    const bool isNewest = number % 3 == 2;
    const qint64 rustdeskId = 173939133 + qint64{73939133} * number % 800000000;
    return {.software = {.newestVersion = isNewest ? version : u"2.5.0"_s,
                         .offersDelta = number % 3 == 0,
                         .systems = {u"2.1.4"_s, version, u"2.0.1"_s, u"2.4.2"_s}},
            .applications = {.installed = {{u"org.stellarium.Stellarium"_s, u"stable"_s, u"24.4"_s, true},
                                           {u"org.kde.kstars"_s, u"stable"_s, u"3.7.6"_s, true}}},
            .services = {.rustdeskId = QString::number(rustdeskId)},
            .disk = DiskState::believable(number)};
}

void DeviceWork::settle()
{
    if (software.isBusy && software.progress.isDone())
    {
        software.isBusy = false;
        software.pendingVersion = software.newestVersion;
        software.systems.removeAll(software.newestVersion);
        software.systems.append(software.newestVersion);
    }
    if (applications.installation.isDone() && !applications.hasFailed() &&
        !applications.has(applications.id, applications.branch))
    {
        applications.installed.append({applications.id, applications.branch, u"3.8.0.beta"_s});
    }
}

void DeviceWork::restart(QString &version)
{
    settle();
    if (!software.pendingVersion.isEmpty())
    {
        version = std::exchange(software.pendingVersion, {});
    }
    software.isBusy = false;
    software.hasLooked = false;
    software.progress.cancel();
    applications.installation.cancel();
    services.regeneration.cancel();
    services.isActive = services.isEnabled;
}

void DeviceWork::restoreSettings()
{
    services.isEnabled = ServicesState().isEnabled;
    services.rustdeskPassword.clear();
    disk.picturesDirectory = DiskState::believable(0).picturesDirectory;
    restoreNetwork();
}

void DeviceWork::restoreNetwork()
{
    network.hotspotInterface = network.wlans.first();
    network.isDirectEthernet = false;
}
