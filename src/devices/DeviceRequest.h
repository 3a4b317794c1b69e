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
        GetWithBody, // an empty one, which some services insist on
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
        AcceptJson = 8,  // wants a JSON answer
        Bare = 0,
        Plain = UserAgent | Redirects,
        Json = Plain | JsonContent,
        Explicit = UserAgent | JsonContent | AcceptJson
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
    int abortMs;            // the one time limit of a request
    int headers;            // of Header
    Handler handler;
    std::initializer_list<const char *> properties = {}; // what else the reply remembers, by name
    Port port = DeviceApi;
    Bookkeeping bookkeeping = Counted;
    const char *abortWarning = nullptr; // for the log, when the time limit ends it

    static const Request table[];
};

/// What the caller adds to a row of the table.
struct DeviceDiscovery::RequestContent
{
    QString pathArgument = {};
    QByteArray body = {};
    QVariantList properties = {}; // the values of the row's properties, in its order
};
