// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "support/MulticastResponder.h"

#include "support/Packets.h"

#include <QNetworkDatagram>
#include <QNetworkProxy>

using namespace Qt::StringLiterals;

// Of datagrams that wait together only the last one counts, so answers keep a distance as real ones do.
constexpr int pauseMs = 50;
constexpr quint16 port = 5353;

static QHostAddress group()
{
    return QHostAddress(u"224.0.0.251"_s);
}

MulticastResponder::MulticastResponder()
{
    m_socket.setProxy(QNetworkProxy::NoProxy);
    m_pause.setInterval(pauseMs);
    connect(&m_socket, &QUdpSocket::readyRead, this, &MulticastResponder::onReadyRead);
    connect(&m_pause, &QTimer::timeout, this, &MulticastResponder::sayNext);
}

bool MulticastResponder::listen()
{
    return m_socket.bind(QHostAddress::AnyIPv4, port,
                         QAbstractSocket::ShareAddress | QAbstractSocket::ReuseAddressHint) &&
           m_socket.joinMulticastGroup(group());
}

void MulticastResponder::say(const QByteArray &datagram)
{
    m_socket.writeDatagram(datagram, group(), port);
}

void MulticastResponder::onReadyRead()
{
    static const QByteArray question = packets::header(0, 0, {1, 0, 0, 0}) +
                                       packets::name("_http._tcp.local") + packets::u16(12) + packets::u16(1);
    while (m_socket.hasPendingDatagrams())
    {
        if (m_socket.receiveDatagram().data() != question)
            continue;
        ++m_questionCount;
        m_unsaid += m_answers;
        m_pause.start();
    }
}

void MulticastResponder::sayNext()
{
    if (m_unsaid.isEmpty())
        m_pause.stop();
    else
        say(m_unsaid.takeFirst());
}
