// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

using HttpHeaders = QList<std::pair<QByteArray, QByteArray>>;

/// One request as it came over the wire.
struct HttpRequest
{
    QByteArray method;
    /// The path with its query, as the client wrote it.
    QByteArray target;
    HttpHeaders headers;
    QByteArray body;
    /// The port of the device that it came to.
    quint16 port = 0;
    /// Whether the client may send another request on the same connection.
    bool keepAlive = true;

    /// The target without its query.
    QByteArray path() const;
    /// The value of a header, whatever the letter case of its name; null if there is none.
    QByteArray header(QByteArrayView name) const;
    bool hasHeader(QByteArrayView name) const { return !header(name).isNull(); }
    /// Whether the request fits a key "[METHOD ]/path[?query]"; what the key leaves out is not compared,
    /// and the empty key fits every request.
    bool matches(const QByteArray &key) const;
};

/// An answer, and the way in which it leaves the device.
struct HttpReply
{
    enum class Delivery
    {
        Whole,
        /// The length is announced, half of the body follows, then the connection closes.
        Partial,
        /// The body leaves byte by byte, one in each interval.
        Trickle,
        /// The body's bytes are all that is sent, without a head, then the connection closes.
        Raw,
        /// The connection is reset without an answer.
        Drop,
    };

    int status = 200;
    QByteArray body = {};
    HttpHeaders headers = {{"Content-Type", "application/json"}};
    Delivery delivery = Delivery::Whole;
    /// Time between two bytes that trickle.
    int intervalMs = 0;
    /// The body is filled up to this size with blanks, which JSON permits at its end; -1 never ends.
    qint64 filledBytes = 0;
    /// A file whose bytes come behind the body, in place of blanks. They leave as they are read, so it may be
    /// of any size.
    QString bodyFile = {};

    /// The bytes of the whole body; -1 if it never ends.
    qint64 bodyBytes() const;

    static HttpReply json(const QJsonObject &object, int status = 200);
};

/// Status line and headers of a reply, as they stand in front of its body.
QByteArray headOf(const HttpReply &reply, bool keepAlive);

/// What stands at the front of the bytes that a client sent.
struct HttpParse
{
    /// The first request, once it is there with all of its body.
    std::optional<HttpRequest> request = {};
    /// The bytes that the request takes.
    qsizetype length = 0;
    /// Whether this can never become a request that is understood.
    bool isRefused = false;
};

/// Reads the first request of a buffer. Bodies need a Content-Length; chunks are refused.
HttpParse parseRequest(const QByteArray &buffer);
