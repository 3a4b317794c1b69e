// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/HttpMessage.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QMap>

#include <algorithm>

namespace {

constexpr qsizetype maxHeadBytes = qsizetype{64} * 1024;
constexpr qsizetype maxBodyBytes = qsizetype{4} * 1024 * 1024;

QByteArray reasonOf(int status)
{
    static const QMap<int, QByteArray> reasons = {{200, "OK"},
                                                  {302, "Found"},
                                                  {400, "Bad Request"},
                                                  {404, "Not Found"},
                                                  {500, "Internal Server Error"}};
    return reasons.value(status, "Status");
}

/// Reads the lines in front of the empty line; nothing if they are no request's head.
std::optional<HttpRequest> parseHead(const QByteArray &head)
{
    QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> words = lines.takeFirst().trimmed().split(' ');
    if (words.size() != 3 || words[0].isEmpty() || !words[1].startsWith('/') ||
        !words[2].startsWith("HTTP/1."))
    {
        return {};
    }
    HttpRequest request;
    request.method = words[0];
    request.target = words[1];
    for (const QByteArray &line : std::as_const(lines))
    {
        const qsizetype colon = line.indexOf(':');
        if (colon < 1)
        {
            return {};
        }
        // A header with an empty value is there all the same: its value is empty, not null.
        request.headers.append({line.first(colon).trimmed(), line.sliced(colon + 1).trimmed() + ""});
    }
    const QByteArray connection = request.header("Connection").toLower();
    request.keepAlive = words[2] == "HTTP/1.0" ? connection == "keep-alive" : connection != "close";
    return request;
}

} // namespace

QByteArray HttpRequest::path() const
{
    return target.split('?').first();
}

QByteArray HttpRequest::header(QByteArrayView name) const
{
    const auto found = std::ranges::find_if(
        headers, [name](const auto &header) { return header.first.compare(name, Qt::CaseInsensitive) == 0; });
    return found == headers.end() ? QByteArray() : found->second;
}

bool HttpRequest::matches(const QByteArray &key) const
{
    const qsizetype blank = key.indexOf(' ');
    const QByteArray wanted = key.sliced(blank + 1);
    return (blank < 0 || key.first(blank) == method) &&
           (wanted.isEmpty() || wanted == target || wanted == path());
}

qint64 HttpReply::bodyBytes() const
{
    if (!bodyFile.isEmpty())
    {
        return body.size() + QFileInfo(bodyFile).size();
    }
    return filledBytes < 0 ? -1 : std::max<qint64>(body.size(), filledBytes);
}

HttpReply HttpReply::json(const QJsonObject &object, int status)
{
    HttpReply reply;
    reply.status = status;
    reply.body = QJsonDocument(object).toJson(QJsonDocument::Compact);
    return reply;
}

QByteArray headOf(const HttpReply &reply, bool keepAlive)
{
    QByteArray head = "HTTP/1.1 " + QByteArray::number(reply.status) + ' ' + reasonOf(reply.status) + "\r\n";
    for (const auto &[name, value] : reply.headers)
    {
        head += name + ": " + value + "\r\n";
    }
    if (reply.bodyBytes() >= 0)
    {
        head += "Content-Length: " + QByteArray::number(reply.bodyBytes()) + "\r\n";
    }
    return head + "Connection: " + (keepAlive ? "keep-alive" : "close") + "\r\n\r\n";
}

HttpParse parseRequest(const QByteArray &buffer)
{
    const qsizetype headLength = buffer.indexOf("\r\n\r\n");
    if (headLength < 0)
    {
        return {.isRefused = buffer.size() > maxHeadBytes};
    }
    std::optional<HttpRequest> request = parseHead(buffer.first(headLength));
    if (!request)
    {
        return {.isRefused = true};
    }
    bool isNumber = true;
    const qint64 bodyLength =
        request->hasHeader("Content-Length") ? request->header("Content-Length").toLongLong(&isNumber) : 0;
    if (!isNumber || bodyLength < 0 || bodyLength > maxBodyBytes || request->hasHeader("Transfer-Encoding"))
    {
        return {.isRefused = true};
    }
    const qsizetype length = headLength + 4 + bodyLength;
    if (buffer.size() < length)
    {
        return {};
    }
    request->body = buffer.sliced(headLength + 4, bodyLength);
    return {.request = std::move(request), .length = length};
}
