// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/HttpMessage.h"

#include <QString>

#include <optional>

/// What a device does with a request instead of answering it at once and well. A small value:
/// `Fault::status(500)`, `Fault::answer(200, "[]").after(300)`, `Fault::drop().next(1)`.
struct Fault
{
    /// The answer to give in place of the endpoint's own, which is then not even asked.
    std::optional<HttpReply> instead = {};
    /// The status to give with the body that was due; 0 leaves it.
    int statusOverride = 0;
    HttpReply::Delivery delivery = HttpReply::Delivery::Whole;
    int intervalMs = 0;
    qint64 filledBytes = 0;
    int delayMs = 0;
    bool isHeld = false;
    /// How many more requests meet the fault; negative: all until it is cleared.
    int remaining = -1;

    /// The endpoint's own body under another status.
    static Fault status(int status) { return {.statusOverride = status}; }
    /// Another answer altogether, as application/json.
    static Fault answer(int status, const QByteArray &body)
    {
        return {.instead = HttpReply{.status = status, .body = body}};
    }
    /// Another body under status 200.
    static Fault body(const QByteArray &body) { return answer(200, body); }
    /// A "302 Found" to a path of the same device or to a whole URL; to its own path it never ends.
    static Fault redirect(const QByteArray &location)
    {
        return {.instead = HttpReply{.status = 302, .headers = {{"Location", location}}}};
    }
    /// These bytes in place of an answer, then the connection closes.
    static Fault raw(const QByteArray &bytes)
    {
        return {.instead = HttpReply{.body = bytes}, .delivery = HttpReply::Delivery::Raw};
    }
    /// Bytes that are no HTTP.
    static Fault broken() { return raw("HTTQ/x.y nonsense\r\n\x01\x02\x03\r\n\r\n"); }
    /// The proper answer's length, half of its body, then the end of the connection.
    static Fault partial() { return {.delivery = HttpReply::Delivery::Partial}; }
    /// The proper answer, its body one byte in each interval.
    static Fault trickle(int intervalMs)
    {
        return {.delivery = HttpReply::Delivery::Trickle, .intervalMs = intervalMs};
    }
    /// The proper answer, its body filled up to this size with blanks; -1 for one that never ends.
    static Fault huge(qint64 bytes) { return {.filledBytes = bytes}; }
    /// The connection is reset without an answer.
    static Fault drop() { return {.instead = HttpReply(), .delivery = HttpReply::Delivery::Drop}; }
    /// The proper answer, late.
    static Fault delay(int ms) { return {.delayMs = ms}; }
    /// No answer until SimulatedDevice::release().
    static Fault hold() { return {.isHeld = true}; }

    /// The same fault after a delay.
    Fault after(int ms) const;
    /// The same fault for the next requests only.
    Fault next(int count) const;

    /// Reads "KIND" or "KIND:ARGUMENT"; nothing if it is neither.
    static std::optional<Fault> fromText(const QString &text);
    /// The kinds that fromText() knows, for people.
    static QString kinds();
};
