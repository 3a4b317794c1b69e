// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QHostInfo>
#include <QMap>
#include <QObject>
#include <QString>
#include <QThread>

#include <functional>

class QUdpSocket;

/// The program's multicast DNS client and responder, one for the whole process. A lookup sends one
/// question and ends there: whatever responses arrive, asked for or not, are judged by the last lookup
/// and become signals. Nothing is cached or repeated.
///
/// The object lives on a thread of its own, for only the last of several waiting datagrams is looked at,
/// and a busy main thread must not cost a device. The slots may be called from any thread.
class qMDNS : public QObject
{
    Q_OBJECT

public:
    /// Made by the first call, which may come from any thread that has an event dispatcher.
    static qMDNS *getInstance();

    /// Whether the debug lines are written. To be set before the first lookup.
    static void setVerboseLogging(bool enabled);
    static bool isVerboseLogging();

signals:
    /// A host answered, or the system's resolver is done with a name that is not of the local network.
    void hostFound(QHostInfo info);
    /// One response told all there is to know of a service instance.
    void serviceFound(QString serviceType, QString serviceName, QString host, QHostAddress address,
                      ushort port, QMap<QString, QString> txtRecords);

public slots:
    /// The time to live of all later answers, in seconds.
    void setTTL(uint seconds);
    /// Asks for the addresses of a host; the result is hostFound().
    void lookup(QString name);
    /// Asks who offers a service type, for example "_http._tcp.local"; each result is serviceFound().
    void lookupService(QString serviceType);
    /// The name this program answers to. Without one, as it stands at first, it answers nothing.
    void setHostName(const QString &name);

private slots:
    void onReadyRead();
    void readQuery(const QByteArray &data);
    void sendPacket(const QByteArray &data);
    void readResponse(const QByteArray &data);
    void sendResponse(ushort query_id);

protected:
    bool event(QEvent *event) override;

private:
    qMDNS();
    ~qMDNS() override;

    bool passOn(std::function<void()> call);
    void stopServing();
    void closeSockets();
    static void stopServingBeforeApplicationEnds();

    static bool s_verboseLogging;

    quint32 ttl = 4500;
    QString hostName;
    QString lookupName;
    QString lookupServiceType;
    QUdpSocket *ipv4Socket;
    QUdpSocket *ipv6Socket;
    QThread serviceThread;
};
