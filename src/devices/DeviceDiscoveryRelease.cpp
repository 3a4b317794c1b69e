// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/DeviceRequest.h"
#include "devices/Verdicts.h"

#include <QDebug>
#include <QJsonArray>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
constexpr auto applicationId = "org.kde.kstars"_L1;
constexpr auto stableRelease = "stable"_L1;
constexpr auto betaRelease = "beta"_L1;
constexpr auto stableBranch = "stable"_L1;
constexpr auto masterBranch = "master"_L1;
constexpr int installPollIntervalMs = 2000;

QJsonObject branchCommand(const QString &branch)
{
    return {{u"application_id"_s, applicationId}, {u"branch"_s, branch}};
}

/// The applications that an answer lists: the whole of it, or its payload.
QJsonArray applicationsIn(const DeviceAnswer &answer)
{
    if (answer.json.isArray())
        return answer.json.array();
    return answer.isGranted() ? answer.object().value("payload"_L1).toArray() : QJsonArray();
}

bool isOurs(const QJsonObject &application)
{
    return application.value("application_id"_L1).toString() == applicationId;
}
} // namespace

void DeviceDiscovery::queryReleaseType(int deviceIndex)
{
    const auto ipAddress = addressForQuery(deviceIndex, "Invalid device index for release type query:");
    if (!ipAddress)
        return;
    send("get_release_type"_L1, *ipAddress);
    qInfo() << "Querying release type (flatpak apps) for device:" << *ipAddress;
}

verdict::ReleaseType verdict::releaseType(const DeviceAnswer &answer)
{
    ReleaseType release;
    const QJsonValue payload = answer.object().value("payload"_L1);
    if (answer.isGranted() && payload.isString())
    {
        release.type = payload.toString();
        return release;
    }
    const QJsonArray applications = applicationsIn(answer);
    for (const QJsonValue element : applications)
    {
        const QJsonObject application = element.toObject();
        const QString branch = application.value("branch"_L1).toString();
        const bool isStable = branch == stableBranch;
        if (!isOurs(application) || (!isStable && branch != masterBranch))
            continue;
        QString version = application.value("version"_L1).toString();
        if (version.isEmpty())
            version = application.value("current_version"_L1).toString();
        (isStable ? release.stableVersion : release.betaVersion) = version;
        if (application.value("active"_L1).toBool())
            release.type = isStable ? stableRelease : betaRelease;
    }
    return release;
}

void DeviceDiscovery::onReleaseTypeReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer(
        {"Release type query (flatpak apps) response - HTTP status:", "Raw flatpak apps response data:"},
        answer);
    const verdict::ReleaseType release = verdict::releaseType(answer);
    if (answer.hasFailed())
        qDebug() << "Network error getting flatpak apps for" << ipAddress << answer.errorText;
    else if (answer.json.isNull())
        qDebug() << "Failed to parse flatpak apps response for" << ipAddress << answer.jsonErrorText;
    else if (s_verboseLogging)
        qDebug() << "Determined release type for" << ipAddress << release.type
                 << "stable:" << release.stableVersion << "beta:" << release.betaVersion;
    reply->deleteLater();
    emit releaseTypeReceived(ipAddress, release.type, release.stableVersion, release.betaVersion);
}

void DeviceDiscovery::updateReleaseType(int deviceIndex, const QString &releaseType)
{
    const auto ipAddress = addressForCommand(deviceIndex, &DeviceDiscovery::releaseTypeUpdated);
    if (!ipAddress)
        return;
    const QString release = releaseType.simplified().toLower();
    if (release != stableRelease && release != betaRelease)
    {
        emit releaseTypeUpdated(*ipAddress, false, u"Invalid release type. Must be 'stable' or 'beta'"_s);
        return;
    }
    const QString branch = release == stableRelease ? stableBranch : masterBranch;
    setStatusText(u"Checking flatpak apps for %1 to switch to %2..."_s.arg(*ipAddress, release));
    send("check_before_release_update"_L1, *ipAddress, {.properties = {release, branch}});
}

bool verdict::isBranchInstalled(const DeviceAnswer &answer, const QString &branch)
{
    const QJsonArray applications = applicationsIn(answer);
    for (const QJsonValue element : applications)
    {
        const QJsonObject application = element.toObject();
        if (isOurs(application) && application.value("branch"_L1).toString() == branch)
            return true;
    }
    return false;
}

void DeviceDiscovery::onReleaseCheckReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    const QString release = answer.text("targetReleaseType");
    const QString branch = answer.text("flatpakBranch");
    logAnswer({"Check before release update response - HTTP status:",
               "Raw flatpak apps response for update check:"},
              answer);
    reply->deleteLater();
    if (answer.hasFailed())
    {
        qDebug() << "Network error checking flatpak apps for" << ipAddress << answer.errorText;
        emit releaseTypeUpdated(ipAddress, false,
                                u"Failed to check installed flatpak apps: "_s + answer.errorText);
    }
    else if (verdict::isBranchInstalled(answer, branch))
    {
        if (s_verboseLogging)
            qDebug() << "Branch" << branch << "already installed for" << ipAddress << "- setting as active";
        makeBranchDefault(ipAddress, release, branch);
    }
    else
    {
        if (s_verboseLogging)
            qDebug() << "Branch" << branch << "not installed for" << ipAddress << "- installing";
        setStatusText(u"Installing %1 release for %2..."_s.arg(release, ipAddress));
        send("install_flatpak_app"_L1, ipAddress,
             {.body = jsonBody(branchCommand(branch)), .properties = {release, branch}});
    }
}

void DeviceDiscovery::makeBranchDefault(const QString &ipAddress, const QString &release,
                                        const QString &branch)
{
    send("update_release_type"_L1, ipAddress,
         {.body = jsonBody(branchCommand(branch)), .properties = {release}});
}

Outcome verdict::installStart(const DeviceAnswer &answer)
{
    if (answer.hasFailed())
        return {false, u"Network error installing flatpak app: "_s + answer.errorText};
    if (!answer.isObject())
        return {false, u"Invalid response from flatpak install"_s};
    if (!answer.isGranted())
        return {false, u"Failed to start flatpak installation"_s};
    return {true, u"Installation started..."_s};
}

void DeviceDiscovery::onInstallReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer({"Install flatpak app response - HTTP status:", "Raw install flatpak app response:"}, answer);
    const Outcome outcome = verdict::installStart(answer);
    reply->deleteLater();
    if (!outcome.success)
    {
        emit releaseTypeUpdated(ipAddress, false, outcome.message);
        return;
    }
    const int row = rowOfAddress(ipAddress);
    if (row < 0)
        return;
    if (s_verboseLogging)
        qDebug() << "Flatpak installation started for" << ipAddress << "- tracking progress";
    // The polls hold the row, whatever device stands there. An earlier installation's go on beside them.
    auto *timer = new QTimer(this);
    timer->setObjectName(u"flatpak_progress_"_s + ipAddress);
    connect(timer, &QTimer::timeout, this, [this, row] { checkFlatpakProgress(row); });
    timer->start(installPollIntervalMs);
    m_flatpakProgressTimers.insert(ipAddress, timer);
    m_pendingReleases.insert(ipAddress, {answer.text("targetReleaseType"), answer.text("flatpakBranch")});
    emit flatpakProgressReceived(ipAddress, 0, u"installing"_s, outcome.message);
}

void DeviceDiscovery::checkFlatpakProgress(int deviceIndex)
{
    const QString ipAddress = addressOfRow(deviceIndex);
    if (!ipAddress.isEmpty())
        send("flatpak_progress"_L1, ipAddress, {.properties = {deviceIndex}});
}

std::optional<verdict::InstallProgress> verdict::installProgress(const DeviceAnswer &answer)
{
    const QJsonObject object = answer.object();
    if (!answer.isGranted() || !object.contains("payload"_L1))
        return {};
    const QJsonObject payload = object.value("payload"_L1).toObject();
    InstallProgress progress{payload.value("progress"_L1).toInt(), payload.value("status"_L1).toString(),
                             payload.value("message"_L1).toString()};
    const bool isComplete = progress.status == "Success"_L1 && progress.percent == 100;
    if (isComplete || progress.message.contains("installed successfully"_L1))
        progress.state = InstallProgress::Finished;
    else if (progress.status == "Error"_L1)
        progress.state = InstallProgress::Failed;
    return progress;
}

void DeviceDiscovery::onInstallProgressReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    reply->deleteLater();
    if (answer.hasFailed())
        qDebug() << "Flatpak progress check failed for" << ipAddress << answer.errorText;
    else if (s_verboseLogging)
        qDebug() << "Flatpak progress response:" << answer.body;
    const std::optional<verdict::InstallProgress> progress = verdict::installProgress(answer);
    if (!progress)
        return;
    emit flatpakProgressReceived(ipAddress, progress->percent, progress->status, progress->message);
    if (progress->state == verdict::InstallProgress::Running)
        return;

    endPolls(m_flatpakProgressTimers, ipAddress);
    const PendingRelease release = m_pendingReleases.take(ipAddress);
    if (progress->state == verdict::InstallProgress::Finished)
    {
        if (s_verboseLogging)
            qDebug() << "Flatpak installation completed for" << ipAddress << "- setting active branch";
        makeBranchDefault(ipAddress, release.releaseType, release.branch);
        emit flatpakInstallCompleted(ipAddress, true, u"Installation completed successfully"_s);
        return;
    }
    const QString message = progress->message;
    emit flatpakInstallCompleted(ipAddress, false, message.isEmpty() ? u"Installation failed"_s : message);
    emit releaseTypeUpdated(ipAddress, false, u"Installation failed: "_s + message);
}

Outcome verdict::releaseUpdate(const DeviceAnswer &answer)
{
    return common(answer, u"Failed to update release type for %1"_s.arg(answer.ipAddress),
                  u"Release type successfully updated to '%1' for device %2."_s.arg(
                      answer.text("newReleaseType"), answer.ipAddress));
}

void DeviceDiscovery::onReleaseUpdateReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer({"Release type update response - HTTP status:", "Raw release type update response data:"},
              answer);
    report(&DeviceDiscovery::releaseTypeUpdated, ipAddress, verdict::releaseUpdate(answer));
    reply->deleteLater();
}

void DeviceDiscovery::cancelFlatpakOperation(int deviceIndex)
{
    if (s_verboseLogging)
        qDebug() << "Cancelling flatpak operation for device index:" << deviceIndex;
}
