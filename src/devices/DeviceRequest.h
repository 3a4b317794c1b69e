// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "devices/DeviceDiscovery.h"

#include <QFlags>

#include <initializer_list>

/// What one kind of request is: a row of the request table in DeviceDiscoveryRequests.cpp.
struct DeviceDiscovery::Request
{
    enum Method
    {
        Get,
        Post,
        Put
    };
    enum Port
    {
        DeviceApi = 8624,
        Companion = 3000
    };
    enum Header
    {
        UserAgent = 1,   // names the program
        Redirects = 2,   // follows redirects that are no less safe
        JsonContent = 4, // announces a JSON body
        Plain = UserAgent | Redirects,
        Json = Plain | JsonContent
    };
    enum Bookkeeping
    {
        Counted,      // counts as a pending request of a run, and is listened to at once
        LeftToCaller, // is neither counted nor listened to: the caller connects it when it sees fit
    };
    static constexpr int NoAbort = 0;

    using Handler = void (DeviceDiscovery::*)(QNetworkReply *reply, const QString &ipAddress);

    QLatin1StringView tag;
    Method method;
    QLatin1StringView path; // with %1 where the caller's path argument goes
    Port port;
    int abortMs; // the one time limit of a request
    int headers; // of Header
    Bookkeeping bookkeeping;
    std::initializer_list<const char *> properties; // what else the reply remembers, by name
    Handler handler;
};

/// What the caller adds to a row of the table.
struct DeviceDiscovery::RequestContent
{
    QString pathArgument;
    QByteArray body;
    QVariantList properties; // the values of the row's properties, in its order
};
