// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/HttpMessage.h"

#include <QFile>
#include <QTcpServer>
#include <QTimer>

class QTcpSocket;

/// One client's connection. It reads one request at a time and goes on to the next when that one is
/// answered, so requests that came together are answered in their order.
class HttpConnection : public QObject
{
    Q_OBJECT
public:
    HttpConnection(QTcpSocket *socket, QObject *parent);

    /// Answers the request that waits; without one it does nothing.
    void reply(const HttpReply &reply);
    /// Resets the connection.
    void abort();

signals:
    void requestReceived(const HttpRequest &request);

private:
    void readRequest();
    void fill();
    void trickle();
    void finish();

    QTcpSocket *m_socket;
    QByteArray m_incoming;
    QByteArray m_trickling;
    /// The file that the filling is read from; blanks if it is not open.
    QFile m_bodyFile;
    qint64 m_fillerBytes = 0;
    QTimer m_trickleTimer;
    bool m_isAnswering = false;
    bool m_isKeptAlive = true;
};

/// Listens on one address and port.
class HttpServer : public QObject
{
    Q_OBJECT
public:
    explicit HttpServer(QObject *parent = nullptr);

    bool listen(const QHostAddress &address, quint16 port);
    QString errorString() const { return m_server.errorString(); }
    /// Stops listening and resets every open connection.
    void close();

signals:
    /// The receiver answers with HttpConnection::reply(), now or later.
    void requestReceived(HttpConnection *connection, const HttpRequest &request);

private:
    void onNewConnection();

    QTcpServer m_server;
};
