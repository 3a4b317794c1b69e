// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/HttpServer.h"

#include <QNetworkProxy>
#include <QTcpSocket>

#include <algorithm>

namespace {
/// What may wait in a socket at once, so that bodies of any size take little memory.
constexpr qint64 pieceBytes = qint64{256} * 1024;
} // namespace

HttpConnection::HttpConnection(QTcpSocket *socket, QObject *parent) : QObject(parent), m_socket(socket)
{
    m_socket->setParent(this);
    m_socket->setReadBufferSize(pieceBytes);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(m_socket, &QTcpSocket::readyRead, this, &HttpConnection::readRequest);
    connect(m_socket, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    connect(m_socket, &QTcpSocket::bytesWritten, this, &HttpConnection::fill);
    connect(&m_trickleTimer, &QTimer::timeout, this, &HttpConnection::trickle);
}

void HttpConnection::abort()
{
    m_isAnswering = false;
    m_fillerBytes = 0;
    m_bodyFile.close();
    m_trickleTimer.stop();
    m_socket->abort();
}

void HttpConnection::readRequest()
{
    if (m_isAnswering || m_socket->state() != QAbstractSocket::ConnectedState)
    {
        return;
    }
    m_incoming += m_socket->readAll();
    HttpParse parse = parseRequest(m_incoming);
    if (parse.isRefused)
    {
        m_isAnswering = true;
        m_isKeptAlive = false;
        reply({.status = 400});
    }
    else if (parse.request)
    {
        m_incoming.remove(0, parse.length);
        m_isAnswering = true;
        m_isKeptAlive = parse.request->keepAlive;
        parse.request->port = m_socket->localPort();
        emit requestReceived(*parse.request);
    }
}

void HttpConnection::reply(const HttpReply &reply)
{
    if (!m_isAnswering)
    {
        return;
    }
    const bool isPartial = reply.delivery == HttpReply::Delivery::Partial;
    const bool isRaw = reply.delivery == HttpReply::Delivery::Raw;
    m_isKeptAlive = m_isKeptAlive && !isPartial && !isRaw && reply.bodyBytes() >= 0;
    const QByteArray head = isRaw ? QByteArray() : headOf(reply, m_isKeptAlive);
    switch (reply.delivery)
    {
    case HttpReply::Delivery::Drop:
        abort();
        break;
    case HttpReply::Delivery::Trickle:
        m_socket->write(head);
        m_trickling = reply.body;
        m_trickleTimer.start(reply.intervalMs);
        break;
    default:
        m_socket->write(head + (isPartial ? reply.body.first(reply.body.size() / 2) : reply.body));
        m_fillerBytes = reply.bodyBytes() < 0 ? -1 : reply.bodyBytes() - reply.body.size();
        m_bodyFile.setFileName(reply.bodyFile);
        if (!reply.bodyFile.isEmpty() && !m_bodyFile.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        {
            abort();
            return;
        }
        m_fillerBytes == 0 ? finish() : fill();
    }
}

/// Writes blanks as far as the socket takes them; called again when some of them have left.
void HttpConnection::fill()
{
    if (m_fillerBytes == 0)
    {
        return;
    }
    while (m_fillerBytes != 0 && m_socket->bytesToWrite() < pieceBytes)
    {
        const qint64 count = m_fillerBytes < 0 ? pieceBytes : std::min(pieceBytes, m_fillerBytes);
        const QByteArray piece = m_bodyFile.isOpen() ? m_bodyFile.read(count) : QByteArray(count, ' ');
        if (m_socket->write(piece) != count)
        {
            // The file is shorter than was announced.
            abort();
            return;
        }
        m_fillerBytes -= m_fillerBytes < 0 ? 0 : count;
    }
    if (m_fillerBytes == 0)
    {
        finish();
    }
}

void HttpConnection::trickle()
{
    m_socket->write(m_trickling.first(std::min<qsizetype>(1, m_trickling.size())));
    m_trickling.remove(0, 1);
    if (m_trickling.isEmpty())
    {
        m_trickleTimer.stop();
        finish();
    }
}

void HttpConnection::finish()
{
    m_isAnswering = false;
    m_bodyFile.close();
    if (m_isKeptAlive)
    {
        // Queued, so that a hundred requests that came together do not nest a hundred calls.
        QMetaObject::invokeMethod(this, &HttpConnection::readRequest, Qt::QueuedConnection);
    }
    else
    {
        m_socket->disconnectFromHost();
    }
}

HttpServer::HttpServer(QObject *parent) : QObject(parent), m_server(this)
{
    m_server.setProxy(QNetworkProxy::NoProxy);
    connect(&m_server, &QTcpServer::newConnection, this, &HttpServer::onNewConnection);
}

bool HttpServer::listen(const QHostAddress &address, quint16 port)
{
    return m_server.listen(address, port);
}

void HttpServer::close()
{
    m_server.close();
    const QList<HttpConnection *> connections = findChildren<HttpConnection *>(Qt::FindDirectChildrenOnly);
    for (HttpConnection *connection : connections)
    {
        connection->abort();
    }
}

void HttpServer::onNewConnection()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection())
    {
        auto *connection = new HttpConnection(socket, this);
        connect(
            connection, &HttpConnection::requestReceived, this,
            [this, connection](const HttpRequest &request) { emit requestReceived(connection, request); });
    }
}
