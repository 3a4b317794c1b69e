// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "mdns/qMDNS.h"

#include "mdns/DnsMessage.h"
#include "mdns/DnsQuery.h"
#include "mdns/DnsResponse.h"
#include "mdns/HostAnswer.h"
#include "mdns/ThreadHandOver.h"

#include <QCoreApplication>
#include <QDebug>
#include <QNetworkInterface>
#include <QNetworkProxy>
#include <QUdpSocket>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {
constexpr quint16 mdnsPort = 5353;
constexpr qsizetype shortestDatagram = 14;

QHostAddress ipv4Group()
{
    return QHostAddress(u"224.0.0.251"_s);
}

QHostAddress ipv6Group()
{
    return QHostAddress(u"FF02::FB"_s);
}

/// A failure stays silent: nothing is received on that socket then.
void listen(QUdpSocket *socket, QHostAddress::SpecialAddress any, const QHostAddress &group)
{
    // Without this, Qt would ask the system for a proxy.
    socket->setProxy(QNetworkProxy::NoProxy);
    if (socket->bind(any, mdnsPort, QAbstractSocket::ShareAddress | QAbstractSocket::ReuseAddressHint))
        socket->joinMulticastGroup(group);
}

/// A socket that could not be bound stays so; writing would bind it to some other port.
void send(QUdpSocket *socket, const QByteArray &data, const QHostAddress &group)
{
    if (socket->state() == QAbstractSocket::BoundState)
        socket->writeDatagram(data, group, mdnsPort);
}
} // namespace

bool qMDNS::s_verboseLogging = false;

qMDNS *qMDNS::getInstance()
{
    static qMDNS instance;
    return &instance;
}

void qMDNS::setVerboseLogging(bool enabled)
{
    s_verboseLogging = enabled;
}

bool qMDNS::isVerboseLogging()
{
    return s_verboseLogging;
}

qMDNS::qMDNS() : ipv4Socket(new QUdpSocket(this)), ipv6Socket(new QUdpSocket(this))
{
    connect(ipv4Socket, &QUdpSocket::readyRead, this, &qMDNS::onReadyRead);
    connect(ipv6Socket, &QUdpSocket::readyRead, this, &qMDNS::onReadyRead);
    listen(ipv4Socket, QHostAddress::AnyIPv4, ipv4Group());
    listen(ipv6Socket, QHostAddress::AnyIPv6, ipv6Group());

    qAddPostRoutine(stopServingBeforeApplicationEnds);
    if (!QCoreApplication::instance())
    {
        // Made while the program ends: no event is delivered any more.
        closeSockets();
        return;
    }
    // The thread that makes the object has no event loop to serve the sockets.
    serviceThread.setObjectName(u"mdns"_s);
    connect(&serviceThread, &QThread::finished, this, &qMDNS::closeSockets, Qt::DirectConnection);
    moveToThread(&serviceThread);
    serviceThread.start();
}

qMDNS::~qMDNS()
{
    qRemovePostRoutine(stopServingBeforeApplicationEnds);
    stopServing();
}

void qMDNS::stopServingBeforeApplicationEnds()
{
    getInstance()->stopServing();
}

/// Events are delivered through the application object, so the thread ends before that does.
void qMDNS::stopServing()
{
    serviceThread.quit();
    serviceThread.wait();
    handover::take(this);
}

/// Runs on the object's thread as the last thing there: sockets are closed where they are served.
void qMDNS::closeSockets()
{
    ipv4Socket->close();
    ipv6Socket->close();
    handover::give(this);
}

/// Has the object's thread make a call; false on that thread, where the caller goes on by itself.
bool qMDNS::passOn(std::function<void()> call)
{
    if (QThread::currentThread() == thread())
        return false;
    handover::post(this, std::move(call));
    return true;
}

bool qMDNS::event(QEvent *event)
{
    return handover::run(event) || QObject::event(event);
}

void qMDNS::setTTL(uint seconds)
{
    if (!passOn([this, seconds] { setTTL(seconds); }))
        ttl = seconds;
}

void qMDNS::lookup(QString name)
{
    if (passOn([this, name] { lookup(name); }))
        return;
    if (name.isEmpty())
    {
        qWarning() << Q_FUNC_INFO << "Empty host name specified";
        return;
    }
    if (s_verboseLogging)
        qDebug() << "Starting mDNS lookup for service" << name;
    lookupName = std::move(name);
    lookupServiceType.clear();

    const QString address = mdns::normalizeName(lookupName);
    if (address.isEmpty())
        return;
    if (!address.endsWith(".local"_L1, Qt::CaseInsensitive))
    {
        QHostInfo::lookupHost(address, this, SIGNAL(hostFound(QHostInfo)));
        return;
    }
    const mdns::HostLabels labels = mdns::hostLabels(address);
    if (labels.isTooLong())
        qWarning() << Q_FUNC_INFO << labels.first << "is too long!";
    else
        sendPacket(mdns::hostQuery(labels));
}

void qMDNS::lookupService(QString serviceType)
{
    if (passOn([this, serviceType] { lookupService(serviceType); }))
        return;
    if (serviceType.isEmpty())
    {
        qWarning() << Q_FUNC_INFO << "Empty service type specified";
        return;
    }
    if (s_verboseLogging)
        qDebug() << "Starting mDNS service lookup for type:" << serviceType;
    lookupServiceType = std::move(serviceType);
    lookupName.clear();
    sendPacket(mdns::serviceQuery(lookupServiceType));
}

void qMDNS::setHostName(const QString &name)
{
    if (passOn([this, name] { setHostName(name); }))
        return;
    if (name.contains('.'_L1) && !name.endsWith(".local"_L1))
        qWarning() << "Invalid domain name";
    else
        hostName = mdns::normalizeName(name);
}

void qMDNS::onReadyRead()
{
    auto *socket = qobject_cast<QUdpSocket *>(sender());
    QByteArray buffer;
    // Of several datagrams that wait, only the last is looked at.
    while (socket && socket->hasPendingDatagrams())
    {
        buffer.resize(std::max<qint64>(socket->pendingDatagramSize(), 0));
        buffer.truncate(std::max<qint64>(socket->readDatagram(buffer.data(), buffer.size()), 0));
    }
    if (buffer.size() < shortestDatagram)
        return;
    const quint16 flags = mdns::readU16(buffer, 2);
    if (flags == 0)
        readQuery(buffer);
    else if (flags >= mdns::responseFlag)
        readResponse(buffer);
}

void qMDNS::sendPacket(const QByteArray &data)
{
    if (data.isEmpty())
        return;
    send(ipv4Socket, data, ipv4Group());
    send(ipv6Socket, data, ipv6Group());
}

void qMDNS::readResponse(const QByteArray &data)
{
    if (data.length() < mdns::headerSize + 1)
        return;
    if (s_verboseLogging)
        qDebug() << "mDNS response data:" << data.toHex();
    if (mdns::readU16(data, 2) < mdns::responseFlag)
        return;

    const mdns::Response response =
        mdns::readResponse(data, {lookupServiceType, lookupName}, s_verboseLogging);
    for (const mdns::FoundService &service : response.services)
    {
        if (s_verboseLogging)
            qDebug() << "Found mDNS service:" << service.name << "on host:" << service.host
                     << "IP:" << service.address.toString() << "Port:" << service.port
                     << "TXT records:" << service.txtRecords;
        emit serviceFound(service.type, service.name, service.host, service.address, service.port,
                          service.txtRecords);
    }
    if (response.host)
        emit hostFound(*response.host);
}

void qMDNS::readQuery(const QByteArray &data)
{
    if (data.length() < mdns::headerSize + 1)
        return;
    if (hostName.toLower() == mdns::questionName(data).toLower())
        sendResponse(mdns::readU16(data, 0));
}

void qMDNS::sendResponse(ushort query_id)
{
    if (hostName.isEmpty() || !hostName.endsWith(".local"_L1))
        return;
    const mdns::HostLabels labels = mdns::hostLabels(hostName);
    if (labels.isTooLong())
        qWarning() << Q_FUNC_INFO << labels.first << "is too long!";
    else
        sendPacket(mdns::hostAnswer(query_id, labels, ttl, QNetworkInterface::allAddresses()));
}
