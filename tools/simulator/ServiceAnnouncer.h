// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

class QThread;

/// What one device tells the network about itself.
struct AnnouncedService
{
    /// The first label of the host name; also the service's own name.
    QString hostname;
    /// An IPv4 address in a network of this machine. It is announced on that network's interface alone.
    QString address;
    quint16 port = 8624;
    QMap<QString, QString> txtRecords = {};
    QString type = QStringLiteral("_http._tcp");
};

/// Announces one service and its host name by multicast DNS, as a real responder does: it probes,
/// announces, answers, and says goodbye. Each announcer has a responder on a thread of its own, so its
/// datagrams are one device's alone and leave whatever the program's other threads are doing.
/// For private networks only: see scripts/in-private-network.
class ServiceAnnouncer : public QObject
{
    Q_OBJECT
public:
    explicit ServiceAnnouncer(QObject *parent = nullptr);
    ~ServiceAnnouncer() override;

    /// Begins to announce; established() or failed() follows. A service announced before is withdrawn.
    void start(const AnnouncedService &service);
    /// Withdraws the service and returns when its goodbye has left.
    void stop();
    /// Whether the service's names are its own and the first announcement is out.
    bool isEstablished() const { return m_isEstablished; }
    /// Whether the announcements are over: from now on each query is answered at once, and only then.
    bool isSettled() const { return m_isEstablished && !m_settling.isActive(); }

signals:
    void established();
    void settled();
    void failed(const QString &reason);

private:
    void onReport(int run, const QString &failure);

    std::unique_ptr<QThread> m_thread;
    int m_stopEvent = -1;
    int m_run = 0;
    bool m_isEstablished = false;
    QTimer m_settling;
};
