// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/DeviceAnswer.h"

using namespace Qt::StringLiterals;

static void readJson(DeviceAnswer &answer)
{
    QJsonParseError error;
    answer.json = QJsonDocument::fromJson(answer.body, &error);
    answer.jsonErrorText = error.errorString();
}

DeviceAnswer DeviceAnswer::of(QNetworkReply *reply)
{
    DeviceAnswer answer;
    answer.ipAddress = reply->property("ipAddress").toString();
    answer.error = reply->error();
    answer.errorText = reply->errorString();
    answer.httpStatus = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QList<QByteArray> names = reply->dynamicPropertyNames();
    for (const QByteArray &name : names)
        answer.properties.insert(QString::fromLatin1(name), reply->property(name.constData()));
    if (!answer.hasFailed())
    {
        answer.body = reply->readAll();
        readJson(answer);
    }
    return answer;
}

DeviceAnswer DeviceAnswer::withBody(const QString &ipAddress, const QByteArray &body)
{
    DeviceAnswer answer;
    answer.ipAddress = ipAddress;
    answer.body = body;
    readJson(answer);
    return answer;
}

bool DeviceAnswer::isGranted() const
{
    return object().value("result"_L1).toBool();
}
