// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>
#include <QString>
#include <QVariantHash>

/// What became of a request: all that a verdict on it may look at, so that verdicts need no connection.
struct DeviceAnswer
{
    /// What a finished reply brought. Takes its body.
    static DeviceAnswer of(QNetworkReply *reply);
    /// An answer that came well, with this body.
    static DeviceAnswer withBody(const QString &ipAddress, const QByteArray &body);

    QString ipAddress;
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QString errorText;
    int httpStatus = 0;    // 0: none came
    QByteArray body;       // empty after an error
    QJsonDocument json;    // null if the body is no JSON
    QString jsonErrorText; // why it is none
    QVariantHash properties;

    bool hasFailed() const { return error != QNetworkReply::NoError; }
    bool isObject() const { return json.isObject(); }
    /// The body's object; an empty one if it is something else.
    QJsonObject object() const { return json.object(); }
    /// Whether the device says that it did as it was told.
    bool isGranted() const;
    /// A text that the request was to remember.
    QString text(const char *property) const
    {
        return properties.value(QString::fromLatin1(property)).toString();
    }
};
