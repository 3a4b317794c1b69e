// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceDiscovery.h"
#include "devices/DeviceRequest.h"
#include "devices/Verdicts.h"

#include <QDebug>
#include <QDesktopServices>
#include <QJsonArray>
#include <QProcess>
#include <QUrl>

using namespace Qt::StringLiterals;

void DeviceDiscovery::queryExternalStorage(int deviceIndex)
{
    const auto ipAddress = addressForQuery(deviceIndex, "Invalid device index for external storage query:");
    if (!ipAddress)
        return;
    if (s_verboseLogging)
        qDebug() << "Querying external storage for device:" << *ipAddress;
    send("get_external_storage"_L1, *ipAddress);
}

QStringList verdict::externalDrives(const DeviceAnswer &answer)
{
    QStringList drives;
    if (!answer.isGranted())
        return drives;
    constexpr qsizetype mountPointAt = 1;
    const QJsonArray fileSystems = answer.object().value("payload"_L1).toArray();
    for (const QJsonValue fileSystem : fileSystems)
    {
        const QString mountPoint = fileSystem.toArray().at(mountPointAt).toString();
        if (mountPoint.startsWith("/media/noctaris"_L1) || mountPoint.startsWith("/run/media"_L1))
            drives.append(mountPoint);
    }
    return drives;
}

void DeviceDiscovery::onStorageReply(QNetworkReply *reply, const QString &ipAddress)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    if (answer.hasFailed())
        qDebug() << "Network error getting external storage for" << ipAddress << answer.errorText;
    else if (s_verboseLogging)
        qDebug() << "Raw external storage response data:" << answer.body;
    if (!answer.hasFailed() && !answer.isObject())
        qDebug() << "Failed to parse external storage response for" << ipAddress << answer.jsonErrorText;
    else if (!answer.hasFailed() && (!answer.isGranted() || !answer.object().contains("payload"_L1)))
        qDebug() << "Failed to get external storage for" << ipAddress << ": Server returned result=false";

    const QStringList drives = verdict::externalDrives(answer);
    for (const QString &drive : drives)
        qDebug() << "Found external storage device:" << drive;
    if (s_verboseLogging)
        qDebug() << "Emitting externalStorageReceived for" << ipAddress << "with" << drives.size()
                 << "devices";
    emit externalStorageReceived(ipAddress, drives);
    reply->deleteLater();
}

void DeviceDiscovery::openNoctarisWebUI(int deviceIndex)
{
    if (const auto ipAddress = addressForQuery(deviceIndex, "Invalid device index:"))
        QDesktopServices::openUrl(QUrl(u"http://%1:8624"_s.arg(*ipAddress)));
}

void DeviceDiscovery::openCustomPort(int deviceIndex, int /*port*/)
{
    // The Lumarc page is on the same port everywhere, whichever the caller has in mind.
    if (const auto ipAddress = addressForQuery(deviceIndex, "Invalid device index:"))
        QDesktopServices::openUrl(QUrl(u"http://%1:3000"_s.arg(*ipAddress)));
}

void DeviceDiscovery::openVNCViewer(int deviceIndex)
{
    const auto ipAddress = addressForQuery(deviceIndex, "Invalid device index:");
    if (!ipAddress || QDesktopServices::openUrl(QUrl(u"http://%1:6080"_s.arg(*ipAddress))))
        return;
    // Each is the name of one program, blanks included: users put a script of that name into their path.
    for (const QString &viewer : {u"vncviewer %1:6080"_s, u"tightvncviewer %1:6080"_s,
                                  u"krdc http://%1:6080"_s, u"remmina -c vnc://%1:6080"_s})
    {
        if (QProcess::startDetached(viewer.arg(*ipAddress), {}, {}, nullptr))
            return;
    }
    qWarning() << "Failed to start VNC viewer. Please install a VNC client.";
    QDesktopServices::openUrl(QUrl(u"http://%1:6080/vnc.html"_s.arg(*ipAddress)));
}
