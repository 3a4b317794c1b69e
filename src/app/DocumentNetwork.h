// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QQmlNetworkAccessManagerFactory>

/// The network of the documents: what they ask a device by themselves, and the pictures they show. A device
/// may answer with anything, so each answer has an end; one that goes beyond it ends as a failure. The mark
/// behind a URL's "#" says what is expected there: "thumbnail", "preview" (a whole picture in the place of
/// its thumbnail) or "full". Devices are never asked through a proxy.
class DocumentNetwork : public QQmlNetworkAccessManagerFactory
{
public:
    /// Called from the engine's threads.
    QNetworkAccessManager *create(QObject *parent) override;
};
